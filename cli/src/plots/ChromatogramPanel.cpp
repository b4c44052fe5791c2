// SPDX-License-Identifier: Apache-2.0
#include "ChromatogramPanel.h"

#include "PlotStyle.h"

#include <QtGui/QFontMetricsF>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

// In page units.
constexpr double COLUMN = 0.5; // a pixel of a .png file
constexpr double LABEL_SIZE = 10;
constexpr double EMPTY_TEXT_SIZE = 12;
constexpr double POINT_RADIUS = 1.6;
constexpr double MIN_POINT_SPACING = 7; // denser points would hide the line

constexpr qsizetype PIECE = 1000;    // points of a line drawn at once: one stroke of very many takes long to fill
constexpr qsizetype MAX_LABELS = 60; // of the highest peaks; more find no room
constexpr double AREA_OPACITY = 0.35;
constexpr double LIMITS_OPACITY = 0.09;
constexpr double GROUP_LIMITS_OPACITY = 0.18; // where nothing else shows the peak

QColor withOpacity(QColor color, double opacity)
{
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

void drawLine(QPainter *painter, const QList<QPointF> &line)
{
    for (qsizetype first = 0; first + 1 < line.size(); first += PIECE) {
        const qsizetype count = std::min(PIECE + 1, line.size() - first);
        painter->drawPolyline(line.constData() + first, static_cast<int>(count));
    }
}

bool overlaps(const Interval<double> &times, double start, double end)
{
    return start <= end && start <= times.end && end >= times.start; // false for NaN
}

} // namespace

namespace chromatogramStyle {

QPen tracePen()
{
    return QPen(plotStyle::textColor(), 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

QPen consensusPen()
{
    return QPen(plotStyle::textColor(), 0.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

QPen endLinePen()
{
    return QPen(plotStyle::peakColor(0), 0.8, Qt::SolidLine, Qt::FlatCap);
}

QPen splitPen()
{
    QPen pen(plotStyle::splitColor(), 1.2, Qt::SolidLine, Qt::FlatCap);
    pen.setDashPattern({4, 3});
    return pen;
}

QColor areaColor(qsizetype peak)
{
    return withOpacity(plotStyle::peakColor(peak), AREA_OPACITY);
}

QColor limitsColor(qsizetype peak)
{
    return withOpacity(plotStyle::peakColor(peak), GROUP_LIMITS_OPACITY);
}

} // namespace chromatogramStyle

// A text at the top of a stick, with what it is drawn in.
struct ChromatogramPanel::Label
{
    LabelRequest request;
    QString text;
    QColor color;
};

ChromatogramPanel::ChromatogramPanel(const ChromatogramPlotData &data, const QList<ChromatogramTrace> &traces,
                                     const PlotScale &time, const PlotScale &intensity, double top)
    : m_traces(traces), m_time(time), m_intensity(intensity), m_top(top)
{
    for (const ChromatogramTrace &trace : traces) {
        QList<QList<QPointF>> lines;
        for (const QList<QPointF> &run : trace.runs())
            lines.append(onPage(run));
        m_lines.append(lines);
    }
    const Interval<double> times{time.from, time.to};
    for (const ChromatogramPlotPeak &peak : data.peaks.first(std::min(MAX_PEAKS, data.peaks.size()))) {
        if (overlaps(times, peak.start, peak.end))
            m_peaks.append({std::max(peak.start, times.start), std::min(peak.end, times.end), peak.apex});
    }
    std::stable_sort(m_peaks.begin(), m_peaks.end(), [](const ChromatogramPlotPeak &a, const ChromatogramPlotPeak &b) {
        return a.start < b.start; // neighbours on the page differ in colour
    });
    for (const ChromatogramPlotSplit &split : data.splits.first(std::min(MAX_SPLITS, data.splits.size()))) {
        if (overlaps(times, split.time, split.time))
            m_splits.append(split);
    }
}

QPen ChromatogramPanel::pen(qsizetype trace) const
{
    if (!isGroup())
        return chromatogramStyle::tracePen();
    return trace == 0 ? chromatogramStyle::consensusPen() : plotStyle::memberPen(trace - 1);
}

double ChromatogramPanel::plotHeight() const
{
    return m_intensity.start - m_intensity.end;
}

QList<QPointF> ChromatogramPanel::onPage(const QList<QPointF> &line) const
{
    QList<QPointF> page;
    page.reserve(line.size());
    for (const QPointF &point : line)
        page.append({m_time.at(point.x()), m_intensity.at(point.y())});
    return withoutHiddenPoints(page, COLUMN);
}

void ChromatogramPanel::paint(QPainter *painter) const
{
    if (std::all_of(m_traces.begin(), m_traces.end(), [](const auto &trace) { return trace.pointCount() == 0; }))
        paintEmpty(painter);
    if (m_intensity.from < 0)
        paintZero(painter);
    for (qsizetype i = 0; i < m_peaks.size(); ++i)
        paintPeak(painter, i);
    for (qsizetype i = 0; i < m_traces.size(); ++i) {
        paintTrace(painter, i);
        paintPoints(painter, i);
    }
    paintSplits(painter);
    paintLabels(painter);
}

void ChromatogramPanel::paintEmpty(QPainter *painter) const
{
    painter->setFont(plotStyle::font(EMPTY_TEXT_SIZE));
    painter->setPen(plotStyle::faintTextColor());
    const QString text = QStringLiteral("no points");
    const double width = QFontMetricsF(painter->font()).horizontalAdvance(text);
    painter->drawText(QPointF((m_time.start + m_time.end - width) / 2, m_intensity.start - plotHeight() / 2), text);
}

void ChromatogramPanel::paintZero(QPainter *painter) const
{
    const double y = m_intensity.at(0);
    painter->setPen(QPen(plotStyle::unmatchedColor(), 0.6));
    painter->drawLine(QPointF(m_time.start, y), QPointF(m_time.end, y));
}

void ChromatogramPanel::paintPeak(QPainter *painter, qsizetype number) const
{
    const ChromatogramPlotPeak &peak = m_peaks[number];
    const double start = m_time.at(peak.start);
    painter->fillRect(QRectF(start, m_intensity.end, m_time.at(peak.end) - start, plotHeight()),
                      isGroup() ? chromatogramStyle::limitsColor(number)
                                : withOpacity(plotStyle::peakColor(number), LIMITS_OPACITY));
    if (isGroup())
        return;
    const QList<QPointF> line = onPage(m_traces.first().between(peak.start, peak.end));
    if (line.isEmpty())
        return;
    painter->setPen(Qt::NoPen);
    painter->setBrush(chromatogramStyle::areaColor(number));
    const QList<QPointF> area = areaOverEnds(line);
    painter->drawPolygon(area.constData(), static_cast<int>(area.size()));
    painter->setBrush(Qt::NoBrush);
    painter->setPen(chromatogramStyle::endLinePen());
    painter->drawLine(line.first(), line.last());
}

void ChromatogramPanel::paintTrace(QPainter *painter, qsizetype trace) const
{
    painter->setPen(pen(trace));
    for (const QList<QPointF> &line : m_lines[trace])
        drawLine(painter, line);
}

void ChromatogramPanel::paintPoints(QPainter *painter, qsizetype trace) const
{
    if (isGroup() && trace == 0)
        return; // nothing was measured there
    const auto count = static_cast<double>(m_traces[trace].pointCount());
    const bool areSparse = count * MIN_POINT_SPACING < m_time.end - m_time.start;
    painter->setPen(Qt::NoPen);
    painter->setBrush(pen(trace).color());
    for (const QList<QPointF> &line : m_lines[trace]) {
        if (!areSparse && line.size() > 1)
            continue; // a lone point has no line that would show it
        for (const QPointF &point : line)
            painter->drawEllipse(point, POINT_RADIUS, POINT_RADIUS);
    }
    painter->setBrush(Qt::NoBrush);
}

void ChromatogramPanel::paintSplits(QPainter *painter) const
{
    painter->setPen(chromatogramStyle::splitPen());
    for (const ChromatogramPlotSplit &split : m_splits) {
        const double x = m_time.at(split.time);
        painter->drawLine(QPointF(x, m_intensity.start), QPointF(x, m_intensity.end));
    }
}

void ChromatogramPanel::paintLabels(QPainter *painter) const
{
    painter->setFont(plotStyle::font(LABEL_SIZE));
    const QList<Label> all = labels(QFontMetricsF(painter->font()));
    QList<LabelRequest> requests;
    for (const Label &label : all)
        requests.append(label.request);
    const LabelBase base{m_intensity.start, -1};
    for (const LabelPlace &place : placeLabels(requests, sticks(), m_time.start, m_time.end, base.y - m_top)) {
        const Label &label = all[place.request];
        paintLabel(painter, base, label.request, place, label.text, label.color);
    }
}

QList<ChromatogramPanel::Label> ChromatogramPanel::labels(const QFontMetricsF &metrics) const
{
    QList<Label> labels;
    for (const ChromatogramPlotPeak &peak : m_peaks) {
        const std::optional<double> height = heightAt(peak.apex);
        if (!height)
            continue;
        const QString text = textOnAxis(peak.apex, m_time.to - m_time.from);
        const Stick stick{m_time.at(peak.apex), m_intensity.start - m_intensity.at(*height)};
        labels.append({{stick, labelSize(text, metrics), 1}, text, plotStyle::peakColor(0)});
    }
    std::stable_sort(labels.begin(), labels.end(),
                     [](const Label &a, const Label &b) { return a.request.stick.height > b.request.stick.height; });
    labels.resize(std::min(labels.size(), MAX_LABELS));
    for (const ChromatogramPlotSplit &split : m_splits.first(std::min(m_splits.size(), MAX_LABELS))) {
        if (std::isnan(split.probability))
            continue;
        const QString text = QString::number(split.probability, 'f', 2);
        labels.append(
            {{{m_time.at(split.time), plotHeight()}, labelSize(text, metrics), 0}, text, plotStyle::splitColor()});
    }
    return labels;
}

// Of the highest trace.
std::optional<double> ChromatogramPanel::heightAt(double time) const
{
    std::optional<double> highest;
    for (const ChromatogramTrace &trace : m_traces)
        highest = std::max(highest, trace.intensityAt(time)); // no value is the lowest
    return highest;
}

// What labels must not cover: the traces, column by column, and the splits.
QList<Stick> ChromatogramPanel::sticks() const
{
    QList<Stick> sticks;
    for (const QList<QList<QPointF>> &lines : m_lines) {
        for (const QList<QPointF> &line : lines) {
            for (const LineColumn &column : columnsOf(line, 1))
                sticks.append({column.x, m_intensity.start - column.low});
        }
    }
    for (const ChromatogramPlotSplit &split : m_splits)
        sticks.append({m_time.at(split.time), plotHeight()});
    return sticks;
}

} // namespace zav
