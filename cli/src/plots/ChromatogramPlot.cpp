// SPDX-License-Identifier: Apache-2.0
#include "ChromatogramPlot.h"

#include "ChromatogramPanel.h"
#include "PictureFile.h"
#include "PlotAxis.h"
#include "PlotStyle.h"

#include <QtGui/QFontMetricsF>
#include <QtGui/QPainter>

#include <algorithm>
#include <numeric>
#include <optional>

namespace zav {

namespace {

// In page units.
constexpr double WIDTH = 900;
constexpr double HEIGHT = 460;
constexpr double LEFT = 84;
constexpr double RIGHT = 24;
constexpr double HEADING_BASELINE = 26;
constexpr double HEADING_SIZE = 13;
constexpr double SMALL_TEXT_SIZE = 11;
constexpr double LINE_HEIGHT = 17;
constexpr double LABEL_ROOM = 34;      // above the highest point
constexpr double BOTTOM_ROOM = 52;     // for tick labels, axis title and legend
constexpr double FOOTER_DISTANCE = 38; // of the last line of text from the plot
constexpr double TITLE_DISTANCE = 62;  // of the intensity axis's title from the axis
constexpr double NOTE_WIDTH = 260;
constexpr double LEGEND_AREA_WIDTH = 9;

constexpr double MEMBERS_DISTANCE = 60;   // of the first line of the members' legend from the plot
constexpr double MEMBER_EXTRA_WIDTH = 48; // of stroke and gaps in that legend
constexpr qsizetype MAX_MEMBERS = 30;     // in that legend
constexpr int MAX_COLUMNS = 4;            // likewise

constexpr int MAX_HEADING_LINES = 2;
constexpr double TEXT_WIDTH = WIDTH - LEFT - RIGHT;
constexpr double PLOT_BOTTOM = HEIGHT - BOTTOM_ROOM;

QString withUnit(const QString &quantity, const QString &unit)
{
    return unit.isEmpty() ? quantity : QStringLiteral("%1 (%2)").arg(quantity, printable(unit));
}

// What the picture shows, and nothing else.
QList<LegendEntry> legendOf(const ChromatogramPlotData &data)
{
    const auto area = [](qsizetype peak) {
        return QPen(chromatogramStyle::areaColor(peak), LEGEND_AREA_WIDTH, Qt::SolidLine, Qt::FlatCap);
    };
    QList<LegendEntry> entries;
    if (!data.peaks.isEmpty() && !data.members.isEmpty()) {
        const auto limits = [](qsizetype peak) {
            return QPen(chromatogramStyle::limitsColor(peak), LEGEND_AREA_WIDTH, Qt::SolidLine, Qt::FlatCap);
        };
        entries.append({{limits(1), limits(0)}, QStringLiteral("peak, for all traces")});
    } else if (!data.peaks.isEmpty()) {
        entries.append({{area(1), area(0)}, QStringLiteral("peak")});
        entries.append({{chromatogramStyle::endLinePen()}, QStringLiteral("between its ends")});
    }
    if (!data.splits.isEmpty())
        entries.append({{chromatogramStyle::splitPen()}, QStringLiteral("split, probability")});
    return entries;
}

// The traces of a group, then their consensus.
QList<LegendEntry> membersOf(const ChromatogramPlotData &data)
{
    QList<LegendEntry> entries;
    for (qsizetype i = 0; i < std::min(MAX_MEMBERS, data.members.size()); ++i)
        entries.append({{plotStyle::memberPen(i)}, printable(data.members[i].id)});
    if (!entries.isEmpty())
        entries.append({{chromatogramStyle::consensusPen()}, QStringLiteral("consensus, scaled to the traces")});
    return entries;
}

// As many as the longest text allows.
int columnsFor(const QList<LegendEntry> &entries)
{
    const QFontMetricsF metrics(plotStyle::font(SMALL_TEXT_SIZE));
    double widest = 1;
    for (const LegendEntry &entry : entries)
        widest = std::max(widest, metrics.horizontalAdvance(entry.text) + MEMBER_EXTRA_WIDTH);
    return std::clamp(static_cast<int>(TEXT_WIDTH / widest), 1, MAX_COLUMNS);
}

// The trace, or the consensus and the members.
QList<ChromatogramTrace> tracesOf(const ChromatogramPlotData &data)
{
    QList<ChromatogramTrace> traces{ChromatogramTrace(data.points)};
    for (const ChromatogramPlotMember &member : data.members)
        traces.append(ChromatogramTrace(member.points));
    return traces;
}

qsizetype omittedIn(const QList<ChromatogramTrace> &traces)
{
    return std::accumulate(traces.begin(), traces.end(), qsizetype{0},
                           [](qsizetype sum, const ChromatogramTrace &trace) { return sum + trace.omittedCount(); });
}

// Of the traces that have points; of the first where none has.
Interval<double> joined(const QList<ChromatogramTrace> &traces, Interval<double> (ChromatogramTrace::*range)() const)
{
    std::optional<Interval<double>> all;
    for (const ChromatogramTrace &trace : traces) {
        if (trace.pointCount() == 0)
            continue;
        const Interval<double> own = (trace.*range)();
        all = all ? Interval<double>{std::min(all->start, own.start), std::max(all->end, own.end)} : own;
    }
    return all.value_or((traces.first().*range)());
}

QString noteOf(const ChromatogramPlotData &data, qsizetype omittedPoints)
{
    QStringList notes;
    if (omittedPoints > 0)
        notes.append(QStringLiteral("%1 of %2 points are not finite").arg(omittedPoints).arg(data.points.size()));
    if (data.peaks.size() > ChromatogramPanel::MAX_PEAKS)
        notes.append(QStringLiteral("%1 of %2 peaks").arg(ChromatogramPanel::MAX_PEAKS).arg(data.peaks.size()));
    if (data.splits.size() > ChromatogramPanel::MAX_SPLITS)
        notes.append(QStringLiteral("%1 of %2 splits").arg(ChromatogramPanel::MAX_SPLITS).arg(data.splits.size()));
    if (data.members.size() > MAX_MEMBERS)
        notes.append(QStringLiteral("%1 of %2 traces named").arg(MAX_MEMBERS).arg(data.members.size()));
    return notes.join(QStringLiteral(", "));
}

QStringList headingOf(const QString &id)
{
    return wrapped(printable(id), QFontMetricsF(plotStyle::font(HEADING_SIZE)), TEXT_WIDTH, MAX_HEADING_LINES);
}

// The whole picture: heading, source, the panel with its axes, and legend.
class ChromatogramFigure
{
public:
    // `data` has to outlive the figure.
    explicit ChromatogramFigure(const ChromatogramPlotData &data);

    // Page size in page units, 1/96 inch.
    QSizeF size() const;

    // On a white page.
    void paint(QPainter *painter) const;

private:
    void paintHeading(QPainter *painter) const;
    void paintNote(QPainter *painter) const;
    PlotScale timeScale() const;
    PlotScale intensityScale() const;
    double plotTop() const;

    const ChromatogramPlotData &m_data;
    QList<ChromatogramTrace> m_traces;
    QStringList m_heading;
    QString m_source;
    QList<LegendEntry> m_members;
    int m_columns;
};

ChromatogramFigure::ChromatogramFigure(const ChromatogramPlotData &data)
    : m_data(data), m_traces(tracesOf(data)), m_heading(headingOf(data.id)), m_source(printable(data.source)),
      m_members(membersOf(data)), m_columns(columnsFor(m_members))
{}

QSizeF ChromatogramFigure::size() const
{
    const qsizetype lines = (m_members.size() + m_columns - 1) / m_columns;
    return {WIDTH, HEIGHT + static_cast<double>(lines) * LINE_HEIGHT};
}

double ChromatogramFigure::plotTop() const
{
    const auto lines = m_heading.size() + (m_source.isEmpty() ? 0 : 1);
    return HEADING_BASELINE + static_cast<double>(lines - 1) * LINE_HEIGHT;
}

PlotScale ChromatogramFigure::timeScale() const
{
    const Interval<double> times = joined(m_traces, &ChromatogramTrace::times);
    return {times.start, times.end, LEFT, WIDTH - RIGHT};
}

PlotScale ChromatogramFigure::intensityScale() const
{
    const Interval<double> intensities = joined(m_traces, &ChromatogramTrace::intensities);
    return {intensities.start, intensities.end, PLOT_BOTTOM, plotTop() + LABEL_ROOM};
}

void ChromatogramFigure::paint(QPainter *painter) const
{
    paintHeading(painter);
    ChromatogramPanel(m_data, m_traces, timeScale(), intensityScale(), plotTop() + SMALL_TEXT_SIZE / 2).paint(painter);
    LeftAxis{intensityScale(), LEFT, withUnit(QStringLiteral("Intensity"), m_data.intensityUnit), TITLE_DISTANCE}.paint(
        painter);
    BottomAxis{timeScale(), PLOT_BOTTOM, withUnit(QStringLiteral("Retention time"), m_data.timeUnit), FOOTER_DISTANCE}
        .paint(painter);
    paintNote(painter);
    paintLegend(painter, legendOf(m_data), WIDTH - RIGHT, PLOT_BOTTOM + FOOTER_DISTANCE);
    LegendList{LEFT, WIDTH - RIGHT, PLOT_BOTTOM + MEMBERS_DISTANCE, LINE_HEIGHT, m_columns}.paint(painter, m_members);
}

void ChromatogramFigure::paintHeading(QPainter *painter) const
{
    painter->setFont(plotStyle::font(HEADING_SIZE));
    painter->setPen(plotStyle::textColor());
    double y = HEADING_BASELINE;
    for (const QString &line : m_heading) {
        painter->drawText(QPointF(LEFT, y), line);
        y += LINE_HEIGHT;
    }
    painter->setFont(plotStyle::font(SMALL_TEXT_SIZE));
    painter->setPen(plotStyle::faintTextColor());
    const QFontMetricsF metrics(painter->font());
    painter->drawText(QPointF(LEFT, y), metrics.elidedText(m_source, Qt::ElideMiddle, TEXT_WIDTH));
}

void ChromatogramFigure::paintNote(QPainter *painter) const
{
    painter->setFont(plotStyle::font(SMALL_TEXT_SIZE));
    painter->setPen(plotStyle::faintTextColor());
    const QFontMetricsF metrics(painter->font());
    const QString note = noteOf(m_data, omittedIn(m_traces));
    painter->drawText(QPointF(LEFT, PLOT_BOTTOM + FOOTER_DISTANCE),
                      metrics.elidedText(note, Qt::ElideRight, NOTE_WIDTH));
}

} // namespace

Error drawChromatogram(const ChromatogramPlotData &data, const QString &path)
{
    const ChromatogramFigure figure(data);
    return writePicture({printable(data.id), QStringLiteral("Chromatogram drawn by zav"), figure.size(),
                         [&](QPainter *painter) { figure.paint(painter); }},
                        path);
}

} // namespace zav
