// SPDX-License-Identifier: Apache-2.0
#include "ChromatogramTrace.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <span>

namespace zav {

namespace {

constexpr double LARGEST = 1e300; // the difference of two such values is finite
constexpr double SMALLEST = 1e-300;
constexpr double LEAST_SHARE = 1e-9; // of a time, that an axis can resolve
constexpr double LONE_TIME_MARGIN = 0.5;

constexpr qsizetype FEW_POINTS = 10000; // cost nothing however they lie
constexpr qsizetype MAX_PASSES = 8;     // of a line through a column, on average

bool hasPlace(const QPointF &point)
{
    // Comparisons with NaN are false.
    return std::abs(point.x()) <= LARGEST && std::abs(point.y()) <= LARGEST;
}

QPointF pointAt(const QPointF &a, const QPointF &b, double time)
{
    if (time == a.x())
        return a;
    if (time == b.x())
        return b;
    const double share = (time - a.x()) / (b.x() - a.x());
    return {time, a.y() + share * (b.y() - a.y())};
}

// Of a value, over all points.
template <typename Value>
Interval<double> rangeOf(const QList<QList<QPointF>> &runs, const Value &value)
{
    Interval<double> range{LARGEST, -LARGEST};
    for (const QList<QPointF> &run : runs) {
        for (const QPointF &point : run) {
            range.start = std::min(range.start, value(point));
            range.end = std::max(range.end, value(point));
        }
    }
    return range;
}

// Calls with each straight piece of the line, a lone point as a piece of no length.
template <typename Use>
void forEachPiece(std::span<const QPointF> line, const Use &use)
{
    if (line.size() == 1)
        use(line[0], line[0]);
    for (std::size_t i = 1; i < line.size(); ++i)
        use(line[i - 1], line[i]);
}

QList<QPointF> extremesOfColumns(const QList<QPointF> &line, double columnWidth)
{
    const auto columnOf = [&](const QPointF &point) { return std::floor(point.x() / columnWidth); };
    const auto isLower = [](const QPointF &a, const QPointF &b) { return a.y() < b.y(); };
    QList<QPointF> seen;
    for (auto first = line.cbegin(); first != line.cend();) {
        const double column = columnOf(*first);
        const auto end =
            std::find_if(first, line.cend(), [&](const QPointF &point) { return columnOf(point) != column; });
        const auto [lowest, highest] = std::minmax_element(first, end, isLower);
        for (const auto &point : std::set{first, lowest, highest, end - 1})
            seen.append(*point);
        first = end;
    }
    return seen;
}

QList<LineColumn> emptyColumns(qsizetype count, double origin, double columnWidth)
{
    QList<LineColumn> columns;
    for (qsizetype i = 0; i < count; ++i)
        columns.append({origin + (static_cast<double>(i) + 0.5) * columnWidth, LARGEST, -LARGEST});
    return columns;
}

} // namespace

ChromatogramTrace::ChromatogramTrace(const QList<QPointF> &points)
{
    bool continues = false;
    for (const QPointF &point : points) {
        if (!hasPlace(point)) {
            ++m_omittedCount;
            continues = false;
            continue;
        }
        if (!continues)
            m_runs.append(QList<QPointF>());
        else if (m_runs.last().last().x() > point.x())
            m_ascends = false;
        m_runs.last().append(point);
        ++m_pointCount;
        continues = true;
    }
}

Interval<double> ChromatogramTrace::times() const
{
    if (m_runs.isEmpty())
        return {0, 1};
    const Interval<double> range = rangeOf(m_runs, [](const QPointF &point) { return point.x(); });
    const double resolved = LEAST_SHARE * std::max(std::abs(range.start), std::abs(range.end));
    if (range.end - range.start > std::max(resolved, SMALLEST))
        return range;
    const double margin = std::max(LONE_TIME_MARGIN, 10 * resolved);
    return {range.start - margin, range.end + margin};
}

Interval<double> ChromatogramTrace::intensities() const
{
    const Interval<double> range = rangeOf(m_runs, [](const QPointF &point) { return point.y(); });
    const double from = std::min(0.0, range.start);
    const double to = std::max(0.0, range.end);
    return {from, to - from > SMALLEST ? to : from + 1};
}

// Calls with each straight piece that touches the times.
template <typename Use>
void ChromatogramTrace::forEachPieceWithin(double start, double end, const Use &use) const
{
    const auto isBefore = [](const QPointF &point, double time) { return point.x() < time; };
    const auto isAfter = [](double time, const QPointF &point) { return time < point.x(); };
    for (const QList<QPointF> &run : m_runs) {
        qsizetype first = 0;
        qsizetype last = run.size();
        if (m_ascends) { // a trace with many peaks is not searched whole for each
            first = std::lower_bound(run.cbegin(), run.cend(), start, isBefore) - run.cbegin() - 1;
            last = std::upper_bound(run.cbegin(), run.cend(), end, isAfter) - run.cbegin() + 1;
        }
        first = std::max<qsizetype>(first, 0);
        last = std::min(last, run.size());
        forEachPiece(std::span(run).subspan(first, last - first), [&](const QPointF &a, const QPointF &b) {
            if (std::max(a.x(), b.x()) >= start && std::min(a.x(), b.x()) <= end)
                use(a, b);
        });
    }
}

QList<QPointF> ChromatogramTrace::between(double start, double end) const
{
    QList<QPointF> line;
    const auto append = [&](const QPointF &point) {
        if (line.isEmpty() || line.last() != point)
            line.append(point);
    };
    forEachPieceWithin(start, end, [&](const QPointF &a, const QPointF &b) {
        append(pointAt(a, b, std::clamp(a.x(), start, end)));
        append(pointAt(a, b, std::clamp(b.x(), start, end)));
    });
    return line;
}

std::optional<double> ChromatogramTrace::intensityAt(double time) const
{
    std::optional<double> highest;
    forEachPieceWithin(time, time, [&](const QPointF &a, const QPointF &b) {
        const double height = a.x() == b.x() ? std::max(a.y(), b.y()) : pointAt(a, b, time).y();
        highest = std::max(highest.value_or(height), height);
    });
    return highest;
}

QList<QPointF> withoutHiddenPoints(const QList<QPointF> &line, double columnWidth)
{
    QList<QPointF> seen = extremesOfColumns(line, columnWidth);
    if (seen.size() <= FEW_POINTS)
        return seen;
    const QList<LineColumn> columns = columnsOf(seen, columnWidth);
    if (seen.size() <= MAX_PASSES * columns.size())
        return seen;
    QList<QPointF> filled;
    for (const LineColumn &column : columns)
        filled += {{column.x, column.low}, {column.x, column.high}};
    return filled;
}

QList<LineColumn> columnsOf(const QList<QPointF> &line, double columnWidth)
{
    if (line.isEmpty())
        return {};
    const Interval<double> xs = rangeOf({line}, [](const QPointF &point) { return point.x(); });
    const double origin = std::floor(xs.start / columnWidth) * columnWidth;
    const auto columnAt = [&](double x) { return static_cast<qsizetype>((x - origin) / columnWidth); };
    QList<LineColumn> columns = emptyColumns(columnAt(xs.end) + 1, origin, columnWidth);
    LineColumn *const all = columns.data();
    forEachPiece(line, [&](const QPointF &a, const QPointF &b) {
        const auto [first, last] = std::minmax({columnAt(a.x()), columnAt(b.x())});
        all[columnAt(a.x())].include(a.y());
        all[columnAt(b.x())].include(b.y());
        for (qsizetype i = first; i < last; ++i) { // where the piece leaves one column for the next
            const double y = pointAt(a, b, all[i].x + columnWidth / 2).y();
            all[i].include(y);
            all[i + 1].include(y);
        }
    });
    return columns;
}

QList<QPointF> areaOverEnds(const QList<QPointF> &line)
{
    QList<QPointF> outline;
    if (line.size() < 2 || line.first().x() == line.last().x())
        return outline;
    const auto floorAt = [&](const QPointF &point) { return pointAt(line.first(), line.last(), point.x()).y(); };
    for (qsizetype i = 0; i < line.size(); ++i) {
        const double depth = line[i].y() - floorAt(line[i]);
        const double depthBefore = i > 0 ? line[i - 1].y() - floorAt(line[i - 1]) : depth;
        if ((depth < 0 && depthBefore > 0) || (depth > 0 && depthBefore < 0)) {
            const double share = depthBefore / (depthBefore - depth);
            outline.append(line[i - 1] + share * (line[i] - line[i - 1]));
        }
        outline.append({line[i].x(), std::min(line[i].y(), floorAt(line[i]))});
    }
    return outline;
}

} // namespace zav
