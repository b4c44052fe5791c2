// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MsMsFragmentationPredictomatic_p.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

namespace zav {

/// The benchmarks' view of a predictor: its networks, to be run without it.
class MsMsFragmentationPredictomaticInspector
{
public:
    static Model &model(const MsMsFragmentationPredictomatic &predictor, int charge)
    {
        return *predictor.d->models.value(charge);
    }
};

/// What the benchmarks share. Each ends the program with a message where a step fails.
namespace benchmarkSetting {

/// Seconds on a clock that only runs forward, and seconds that all threads of this program have computed. On a machine
/// with other work the second says more.
struct Moment
{
    double wall;
    double computed;

    static Moment now();
    Moment since(const Moment &earlier) const { return {wall - earlier.wall, computed - earlier.computed}; }
};

double median(std::vector<double> values);

/// Prints processor, cores in use, TensorFlow's version and what is measured.
void printSetting(const QString &subject);

/// The folder of the networks: the first argument of the program, or that of the source tree.
QString modelFolder(int argumentCount, char **arguments);

void loadAll(MsMsFragmentationPredictomatic *predictor, const QString &folder);

/// Ends the program with a message unless the condition holds.
void require(bool condition, const char *failure);

/// Random peptides of the twenty residues, the same ones everywhere: 7 to 25 residues, the short ones more often, 13
/// on average, as in a tryptic digest.
QStringList peptides(int count);

} // namespace benchmarkSetting

} // namespace zav
