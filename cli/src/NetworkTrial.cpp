// SPDX-License-Identifier: Apache-2.0
#include "NetworkTrial.h"

#include <zav/MsMsFragmentationPredictomatic.h>

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

constexpr char SOURCE_FILE[] = "cli/src/NetworkTrial";

Error checkSpectrum(const QList<QPointF> &spectrum)
{
    if (spectrum.isEmpty())
        return Error(Failure, QStringLiteral("predicts no peaks"));
    const bool isFinite = std::all_of(spectrum.begin(), spectrum.end(), [](const QPointF &peak) {
        return std::isfinite(peak.x()) && std::isfinite(peak.y());
    });
    return isFinite ? Error() : Error(Failure, QStringLiteral("predicts peaks that are no numbers"));
}

Error tryFragmentation(int charge, const QString &path)
{
    MsMsFragmentationPredictomatic predictor;
    const QString peptide = QStringLiteral("LQSRPAAPPAPGPGQLTLR"); // within the limit of every charge
    if (predictor.getMaximumPeptideLengthForCharge(charge) == 0)
        return Error(InvalidInput, QStringLiteral("its charge is not 1 to 5"));
    // The same graph for every charge: the one that counts is then tried whatever the others are like.
    if (Error error = predictor.init(path, path, path, path, path); error.hasError())
        return std::move(error.ecatch(Q_FUNC_INFO, SOURCE_FILE, __LINE__));
    QList<QPointF> spectrum;
    if (Error error = predictor.predictMsMsFragmentation(peptide, charge, &spectrum); error.hasError())
        return std::move(error.ecatch(Q_FUNC_INFO, SOURCE_FILE, __LINE__));
    return checkSpectrum(spectrum);
}

} // namespace

Error tryNetwork(const NetworkContract &contract, const QString &graphPath)
{
    if (contract.kind == QLatin1String("msms_fragmentation"))
        return tryFragmentation(contract.charge, graphPath);
    return Error(InvalidInput, QStringLiteral("this kind cannot be tried"));
}

} // namespace zav
