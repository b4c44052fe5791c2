// SPDX-License-Identifier: Apache-2.0
#include "PlotPeak.h"

#include "PlotStyle.h"

#include <algorithm>

namespace zav {

namespace {

constexpr double ION_WIDTH = 1.4;
constexpr double THIN_WIDTH = 0.8;

// Labels of smaller peaks would stand on the base line among the noise.
constexpr double MIN_LABELLED_HEIGHT = 0.01;

QString superscript(int charge)
{
    static const QString digits = QStringLiteral("\u2070\u00B9\u00B2\u00B3\u2074\u2075\u2076\u2077\u2078\u2079");
    QString text;
    for (const QChar digit : QString::number(charge))
        text += digits[digit.digitValue()];
    return text + QChar(u'\u207A');
}

QString labelOf(const AnnotatedPeak &peak)
{
    if (peak.isotope || peak.ionType.isNull())
        return {};
    const QString charge = peak.charge > 1 ? superscript(peak.charge) : QString();
    return peak.ionType + QString::number(peak.ionNumber) + peak.neutralLoss + charge;
}

PlotPeak plotPeak(const AnnotatedPeak &peak, double mz, double height)
{
    const QColor color = peak.isotope                 ? plotStyle::isotopeColor()
                         : peak.neutralLoss.isEmpty() ? plotStyle::ionColor(peak.ionType)
                                                      : plotStyle::lossColor(peak.ionType);
    const QString label = height >= MIN_LABELLED_HEIGHT ? labelOf(peak) : QString();
    return {mz, height, color, peak.isotope ? THIN_WIDTH : ION_WIDTH, label, !peak.neutralLoss.isEmpty()};
}

} // namespace

QList<PlotPeak> predictedPlotPeaks(const SpectrumPlotData &data)
{
    double tallest = 0;
    for (const AnnotatedPeak &peak : data.predicted)
        tallest = std::max(tallest, peak.intensity);
    QList<PlotPeak> peaks;
    for (const AnnotatedPeak &peak : data.predicted) {
        if (peak.intensity > 0)
            peaks.append(plotPeak(peak, peak.mz, peak.intensity / tallest));
    }
    return peaks;
}

QList<PlotPeak> observedPlotPeaks(const SpectrumPlotData &data)
{
    const QList<QPointF> &observed = data.observed->peaks;
    double tallest = 0;
    for (const QPointF &peak : observed)
        tallest = std::max(tallest, peak.y());
    QList<PlotPeak> peaks;
    for (const QPointF &peak : observed)
        peaks.append({peak.x(), peak.y() / tallest, plotStyle::unmatchedColor(), THIN_WIDTH, QString(), false});
    if (data.comparison) {
        for (const PeakMatch &match : data.comparison->matches) {
            const PlotPeak &seen = peaks[match.observed];
            peaks[match.observed] = plotPeak(data.predicted[match.predicted], seen.mz, seen.height);
        }
    }
    return peaks;
}

} // namespace zav
