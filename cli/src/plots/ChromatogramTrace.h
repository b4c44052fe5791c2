// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Interval.h>

#include <QtCore/QList>
#include <QtCore/QPointF>

#include <algorithm>
#include <optional>

namespace zav {

/// A chromatogram as a line on paper: straight from point to point in acquisition order, broken where a point has no
/// finite place. Times may descend.
class ChromatogramTrace
{
public:
    /// (time, intensity); magnitudes above 1e300 count as infinite.
    explicit ChromatogramTrace(const QList<QPointF> &points);

    /// The unbroken pieces of the line; a piece may be a single point.
    const QList<QList<QPointF>> &runs() const { return m_runs; }

    qsizetype pointCount() const { return m_pointCount; }     ///< of all runs
    qsizetype omittedCount() const { return m_omittedCount; } ///< points without a finite place

    /// The range for an axis of time: never empty, [0, 1] without points.
    Interval<double> times() const;

    /// The range for an axis of intensity: it holds 0, and is never empty.
    Interval<double> intensities() const;

    /// The part of the line between two times, itself with interpolated ends. Pieces follow each other in acquisition
    /// order; empty where the line does not come there.
    QList<QPointF> between(double start, double end) const;

    /// The height of the line at a time, its highest where it passes more than once.
    std::optional<double> intensityAt(double time) const;

private:
    template <typename Use>
    void forEachPieceWithin(double start, double end, const Use &use) const;

    QList<QList<QPointF>> m_runs;
    bool m_ascends = true; // within each run
    qsizetype m_pointCount = 0;
    qsizetype m_omittedCount = 0;
};

/// A line on paper that looks the same with fewer points: of neighbours that share a column of the page, the first, the
/// last and the extreme ones stay. A line that goes to and fro more often than the page has columns becomes the column
/// heights that it fills.
QList<QPointF> withoutHiddenPoints(const QList<QPointF> &line, double columnWidth);

/// What a line fills in a column of the page: its lowest and its highest y there.
struct LineColumn
{
    double x = 0; ///< the column's middle
    double low = 0;
    double high = 0;

    void include(double y)
    {
        low = std::min(low, y);
        high = std::max(high, y);
    }
};

/// From left to right, all columns from the line's first x to its last.
QList<LineColumn> columnsOf(const QList<QPointF> &line, double columnWidth);

/// The outline of the area between a line and the straight line between its ends, as far as it lies on the side of
/// smaller y, which is upward on paper.
QList<QPointF> areaOverEnds(const QList<QPointF> &line);

} // namespace zav
