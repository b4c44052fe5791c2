// SPDX-License-Identifier: Apache-2.0
#include "PeakMeasures.h"

#include <algorithm>
#include <iterator>

namespace zav {

namespace {

QList<QPointF> pointsWithin(const QList<QPointF> &points, const Interval<double> &limits)
{
    QList<QPointF> within;
    std::copy_if(points.begin(), points.end(), std::back_inserter(within),
                 [&](const QPointF &point) { return limits.contains(point.x()); });
    return within;
}

double trapezoid(const QPointF &left, const QPointF &right)
{
    return (right.x() - left.x()) * (left.y() + right.y()) / 2;
}

double areaUnder(const QList<QPointF> &points)
{
    double area = 0;
    for (qsizetype i = 1; i < points.size(); ++i)
        area += trapezoid(points[i - 1], points[i]);
    return area;
}

} // namespace

TracePeak measurePeak(const QList<QPointF> &points, const Interval<double> &limits)
{
    TracePeak peak;
    peak.start = limits.start;
    peak.end = limits.end;
    const QList<QPointF> within = pointsWithin(points, limits);
    if (within.isEmpty())
        return peak;
    const auto highest = std::max_element(within.begin(), within.end(),
                                          [](const QPointF &a, const QPointF &b) { return a.y() < b.y(); });
    peak.apex = highest->x();
    peak.height = highest->y();
    peak.area = areaUnder(within);
    peak.areaAboveLine = peak.area - trapezoid(within.first(), within.last());
    peak.points = within.size();
    return peak;
}

} // namespace zav
