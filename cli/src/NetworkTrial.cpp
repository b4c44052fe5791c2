// SPDX-License-Identifier: Apache-2.0
#include "NetworkTrial.h"

#include "ExplainedError.h"

#include <zav/MsMsFragmentationPredictomatic.h>

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

/// Some of the library's failures are told by their code and trail alone.
Error failedStep(const Error &error, const QString &step)
{
    return explainedError(error, error.message().isEmpty() ? step : step + QStringLiteral(": ") + error.message());
}

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
    if (const Error error = predictor.init(path, path, path, path, path); error.hasError())
        return failedStep(error, QStringLiteral("cannot be loaded"));
    QList<QPointF> spectrum;
    if (const Error error = predictor.predictMsMsFragmentation(peptide, charge, &spectrum); error.hasError())
        return failedStep(error, QStringLiteral("cannot predict"));
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
