// SPDX-License-Identifier: Apache-2.0
#include "NetworkTrial.h"

#include "Messages.h"
#include "NetworkLoading.h"

#include <zav/MsMsFragmentationPredictomatic.h>
#include <zav/PeptidoformSpectrumPredictor.h>
#include <zav/RetentionTimePredictor.h>
#include <zav/XicBaselineLimitsDetector.h>
#include <zav/XicPeakSplitter.h>

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

/// Some errors of the library have a code and a trail, but no message.
Error failedStep(const Error &error, const QString &step)
{
    throwIfOutOfMemory(error);
    return explainedError(error, error.message().isEmpty() ? step : step + QStringLiteral(": ") + error.message());
}

Error checkSpectrum(const QList<QPointF> &spectrum)
{
    if (spectrum.isEmpty())
        return Error(Failure, QStringLiteral("predicts no peaks"));
    const bool isFinite = std::all_of(spectrum.begin(), spectrum.end(), [](const QPointF &peak) {
        return std::isfinite(peak.x()) && std::isfinite(peak.y());
    });
    return isFinite ? Error() : Error(Failure, QStringLiteral("predicts peaks that are not finite"));
}

Error tryFragmentation(int charge, const QString &path)
{
    MsMsFragmentationPredictomatic predictor;
    const QString peptide = QStringLiteral("LQSRPAAPPAPGPGQLTLR"); // within the limit of every charge
    if (predictor.getMaximumPeptideLengthForCharge(charge) == 0)
        return Error(InvalidInput, QStringLiteral("its charge is not 1 to 5"));
    // The same graph for every charge, so that the result does not depend on other networks.
    if (const Error error = predictor.init(path, path, path, path, path); error.hasError())
        return loadingError(error, path);
    QList<QPointF> spectrum;
    if (const Error error = predictor.predictMsMsFragmentation(peptide, charge, &spectrum); error.hasError())
        return failedStep(error, QStringLiteral("cannot predict"));
    return checkSpectrum(spectrum);
}

Error tryPeptidoforms(const QString &path)
{
    PeptidoformSpectrumPredictor predictor;
    if (Error error = loadNetwork(path, &predictor); error.hasError())
        return error;
    const Result<Peptidoform> peptidoform = Peptidoform::fromProForma(QStringLiteral("AVM[Oxidation]DDFAAFVEK"));
    if (peptidoform.hasError())
        return peptidoform.error();
    QList<QList<FragmentPeak>> spectra;
    if (const Error error = predictor.predict({{peptidoform.value()}}, &spectra); error.hasError())
        return failedStep(error, QStringLiteral("cannot predict"));
    return spectra.first().isEmpty() ? Error(Failure, QStringLiteral("predicts no peaks")) : Error();
}

Error tryRetentionTimes(const QString &path)
{
    RetentionTimePredictor predictor;
    if (Error error = loadNetwork(path, &predictor); error.hasError())
        return error;
    // 0 and 100 on the iRT scale.
    const QList<Peptidoform> anchors{Peptidoform(QStringLiteral("GAGSSEPVTGLDAK")),
                                     Peptidoform(QStringLiteral("LFLQFGAQGSPFLK"))};
    QList<double> times;
    if (const Error error = predictor.predict(anchors, &times); error.hasError())
        return failedStep(error, QStringLiteral("cannot predict"));
    if (!std::isfinite(times[0]) || !std::isfinite(times[1]))
        return Error(Failure, QStringLiteral("predicts times that are not finite"));
    return times[0] < times[1] ? Error() : Error(Failure, QStringLiteral("predicts an early peptide after a late one"));
}

/// A chromatogram of one second a point with a peak of unit height at each of the apexes.
QList<QPointF> chromatogram(const QList<double> &apexes)
{
    constexpr double PEAK_SIGMA = 4; // seconds
    QList<QPointF> points;
    for (int second = 0; second < 200; ++second) {
        double intensity = 0;
        for (double apex : apexes)
            intensity += std::exp(-0.5 * std::pow((second - apex) / PEAK_SIGMA, 2));
        points.append({double(second), intensity});
    }
    return points;
}

Error tryLimits(const NetworkContract &contract, const QString &path)
{
    XicBaselineLimitsDetectorOptions options;
    options.modelFilePath = path;
    if (contract.maxPointCount > 0)
        options.maxPointCount = contract.maxPointCount;
    XicBaselineLimitsDetector detector;
    if (Error error = loadNetwork(options, &detector); error.hasError())
        return error;
    const Result<QList<Interval<double>>> limits = detector.integrateXIC(chromatogram({100}), -1.0, 0);
    if (limits.hasError())
        return failedStep(limits.error(), QStringLiteral("cannot find limits"));
    const bool isFound = std::any_of(limits.value().begin(), limits.value().end(),
                                     [](const Interval<double> &peak) { return peak.contains(100); });
    return isFound ? Error() : Error(Failure, QStringLiteral("does not find a plain peak"));
}

Error trySplit(const NetworkContract &contract, const QString &path)
{
    XicPeakSplitterOptions options;
    options.modelFilePath = path;
    if (contract.maxPointCount > 0)
        options.maxPointCount = contract.maxPointCount;
    XicPeakSplitter splitter;
    if (Error error = loadNetwork(options, &splitter); error.hasError())
        return error;
    const auto splits = splitter.splitXIC(chromatogram({90, 110}));
    if (splits.hasError())
        return failedStep(splits.error(), QStringLiteral("cannot split"));
    const bool isFound = std::any_of(splits.value().begin(), splits.value().end(),
                                     [](const auto &split) { return split.first > 90 && split.first < 110; });
    return isFound ? Error() : Error(Failure, QStringLiteral("does not split two plain peaks"));
}

} // namespace

Error tryNetwork(const NetworkContract &contract, const QString &graphPath)
{
    if (contract.kind == QLatin1String("msms_fragmentation"))
        return tryFragmentation(contract.charge, graphPath);
    if (contract.kind == QLatin1String("peptidoform_spectrum"))
        return tryPeptidoforms(graphPath);
    if (contract.kind == QLatin1String("retention_time"))
        return tryRetentionTimes(graphPath);
    if (contract.kind == QLatin1String("xic_limits"))
        return tryLimits(contract, graphPath);
    if (contract.kind == QLatin1String("xic_split"))
        return trySplit(contract, graphPath);
    return Error(InvalidInput, QStringLiteral("this kind of network cannot be tested"));
}

} // namespace zav
