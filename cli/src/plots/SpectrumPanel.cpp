// SPDX-License-Identifier: Apache-2.0
#include "SpectrumPanel.h"

#include "PlotLabel.h"
#include "PlotStyle.h"

#include <QtCore/QHash>
#include <QtGui/QFontMetricsF>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

// In page units.
constexpr double ION_WIDTH = 1.4;
constexpr double THIN_WIDTH = 0.8;
constexpr double LABEL_ROOM = 40; // above the tallest peak
constexpr double LABEL_SIZE = 10;

constexpr double EMPTY_TEXT_SIZE = 12;
constexpr double TITLE_DISTANCE = 44; // of the axis title's middle from the axis

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

QString labelOf(const FragmentPeak &peak)
{
    if (peak.isotope > 0 || peak.ionType.isNull())
        return {};
    const QString charge = peak.charge > 1 ? superscript(peak.charge) : QString();
    return peak.ionType + QString::number(peak.ionNumber) + peak.neutralLoss + charge;
}

PlotPeak plotPeak(const FragmentPeak &peak, double mz, double height)
{
    const bool isLoss = !peak.neutralLoss.isEmpty();
    PlotPeak plotted;
    plotted.mz = mz;
    plotted.height = height;
    plotted.labelHeight = height;
    plotted.color =
        peak.isotope > 0 || isLoss ? plotStyle::lighterIonColor(peak.ionType) : plotStyle::ionColor(peak.ionType);
    plotted.width = peak.isotope > 0 ? THIN_WIDTH : ION_WIDTH;
    plotted.isLoss = isLoss;
    plotted.label = labelOf(peak);
    return plotted;
}

QString ionOf(const FragmentPeak &peak)
{
    return peak.ionType + QString::number(peak.ionNumber) + peak.neutralLoss + QLatin1Char('/') +
           QString::number(peak.charge);
}

// Remembers how tall the isotope envelope of each ion is.
class EnvelopeHeights
{
public:
    void add(const FragmentPeak &peak, double height)
    {
        double &tallest = m_heights[ionOf(peak)];
        tallest = std::max(tallest, height);
    }

    double of(const FragmentPeak &peak) const { return m_heights.value(ionOf(peak)); }

private:
    QHash<QString, double> m_heights;
};

double tallestOf(const QList<FragmentPeak> &peaks)
{
    double tallest = 0;
    for (const FragmentPeak &peak : peaks)
        tallest = std::max(tallest, peak.intensity);
    return tallest;
}

double tallestOf(const QList<QPointF> &peaks)
{
    double tallest = 0;
    for (const QPointF &peak : peaks)
        tallest = std::max(tallest, peak.y());
    return tallest;
}

PlotPeak unmatchedPlotPeak(double mz, double height)
{
    PlotPeak plotted;
    plotted.mz = mz;
    plotted.height = height;
    plotted.color = plotStyle::unmatchedColor();
    plotted.width = THIN_WIDTH;
    return plotted;
}

} // namespace

QList<PlotPeak> predictedPlotPeaks(const SpectrumPlotData &data)
{
    const double tallest = tallestOf(data.predicted);
    EnvelopeHeights envelopes;
    for (const FragmentPeak &peak : data.predicted)
        envelopes.add(peak, peak.intensity / tallest);
    QList<PlotPeak> peaks;
    for (const FragmentPeak &peak : data.predicted) {
        if (!(peak.intensity > 0))
            continue;
        peaks.append(plotPeak(peak, peak.mz, peak.intensity / tallest));
        peaks.last().labelHeight = envelopes.of(peak);
    }
    return peaks;
}

QList<PlotPeak> observedPlotPeaks(const SpectrumPlotData &data)
{
    const QList<QPointF> &observed = data.observed->peaks;
    const double tallest = tallestOf(observed);
    QList<PlotPeak> peaks;
    for (const QPointF &peak : observed)
        peaks.append(unmatchedPlotPeak(peak.x(), peak.y() / tallest));
    if (!data.comparison)
        return peaks;
    EnvelopeHeights envelopes;
    for (const PeakMatch &match : data.comparison->matches)
        envelopes.add(data.predicted[match.predicted], peaks[match.observed].height);
    for (const PeakMatch &match : data.comparison->matches) {
        const FragmentPeak &ion = data.predicted[match.predicted];
        PlotPeak &peak = peaks[match.observed];
        peak = plotPeak(ion, peak.mz, peak.height);
        peak.labelHeight = envelopes.of(ion);
    }
    return peaks;
}

double SpectrumPanel::fullHeight() const
{
    return std::abs(baseline - farEdge) - LABEL_ROOM;
}

void SpectrumPanel::paint(QPainter *painter) const
{
    const PlotScale percent{0, 100, baseline, baseline + direction() * fullHeight()};
    LeftAxis{percent, mz.start, axisTitle, TITLE_DISTANCE}.paint(painter);
    if (peaks.isEmpty())
        paintEmpty(painter);
    paintPeaks(painter);
    paintLabels(painter);
}

void SpectrumPanel::paintEmpty(QPainter *painter) const
{
    painter->setFont(plotStyle::font(EMPTY_TEXT_SIZE));
    painter->setPen(plotStyle::faintTextColor());
    const QString text = QStringLiteral("no peaks");
    const double width = QFontMetricsF(painter->font()).horizontalAdvance(text);
    painter->drawText(QPointF((mz.start + mz.end - width) / 2, baseline + direction() * fullHeight() / 2), text);
}

void SpectrumPanel::paintPeaks(QPainter *painter) const
{
    // Grey and thin first, then the small before the tall, so that what matters lies on top.
    QList<PlotPeak> order = peaks;
    std::stable_sort(order.begin(), order.end(), [](const PlotPeak &a, const PlotPeak &b) {
        return a.width != b.width ? a.width < b.width : a.height < b.height;
    });
    for (const PlotPeak &peak : order) {
        const double x = mz.at(peak.mz);
        painter->setPen(QPen(peak.color, peak.width, Qt::SolidLine, Qt::FlatCap));
        painter->drawLine(QPointF(x, baseline), QPointF(x, baseline + direction() * peak.height * fullHeight()));
    }
}

void SpectrumPanel::paintLabels(QPainter *painter) const
{
    painter->setFont(plotStyle::font(LABEL_SIZE));
    const QFontMetricsF metrics(painter->font());
    QList<Stick> sticks;
    QList<LabelRequest> requests;
    QList<PlotPeak> labelled;
    for (const PlotPeak &peak : peaks) {
        sticks.append({mz.at(peak.mz), peak.height * fullHeight()});
        if (peak.label.isEmpty() || peak.labelHeight < MIN_LABELLED_HEIGHT)
            continue;
        requests.append(
            {{mz.at(peak.mz), peak.labelHeight * fullHeight()}, labelSize(peak.label, metrics), peak.isLoss ? 1 : 0});
        labelled.append(peak);
    }
    const LabelBase base{baseline, direction()};
    for (const LabelPlace &place : placeLabels(requests, sticks, mz.start, mz.end, std::abs(baseline - farEdge))) {
        const PlotPeak &peak = labelled[place.request];
        paintLabel(painter, base, requests[place.request], place, peak.label, peak.color);
    }
}

} // namespace zav
