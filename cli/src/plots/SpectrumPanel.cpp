// SPDX-License-Identifier: Apache-2.0
#include "SpectrumPanel.h"

#include "PlotAxis.h"
#include "PlotLabel.h"
#include "PlotStyle.h"

#include <QtGui/QFontMetricsF>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

constexpr double LABEL_ROOM = 40; // above the tallest peak
constexpr double LABEL_SIZE = 10;

// Labels of smaller peaks would stand on the base line among the noise.
constexpr double MIN_LABELLED_HEIGHT = 0.01;

constexpr double EMPTY_TEXT_SIZE = 12;
constexpr double TITLE_DISTANCE = 44; // of the axis title's middle from the axis

} // namespace

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
