// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Model.h"

#include <zav/MsMsFragmentationPredictomatic.h>

#include <QtCore/QMap>

namespace zav {

/// One slot of the fragment ladder. The defaults are those of a placeholder: a slot beyond the end of the peptide,
/// which keeps the ladder in step with the network's output.
struct MsMsFragmentationPredictomatic::Fragment
{
    double mz = -1.0;    ///< m/z
    int charge = 0;      ///< 1, 2 or 3
    QChar ionType;       ///< 'y', 'b' or 'a'
    int ionNumber = -1;  ///< residues in the fragment
    QString neutralLoss; ///< "-H2O", "-NH3" or empty
};

class MsMsFragmentationPredictomatic::Private
{
public:
    Private() = default;
    ~Private();

    Private(const Private &) = delete;
    Private &operator=(const Private &) = delete;

    Error init(const QString &modelPath1, QString modelPath2, QString modelPath3, QString modelPath4,
               QString modelPath5);

    /// The network of a precursor charge, or why there is none.
    Result<Model *> model(int charge) const;

    QMap<int, Model *> models; ///< by precursor charge; owned
};

} // namespace zav
