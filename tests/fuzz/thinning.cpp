// SPDX-License-Identifier: Apache-2.0
//
// Door: a list of points that is too long.
// Promise: what is left is what naive code leaves that takes the lowest point away, again and again.
#include "PredictorSupport.h"
#include "removeLowIntensePoints.h"

namespace zav::fuzz {
namespace {

bool isLowerOrSame(double a, double b)
{
    return std::isnan(a) || (!std::isnan(b) && a <= b);
}

/// The lowest point, of equal ones the latest; with `keepEnds` an end only where nothing else is left.
qsizetype placeOfLowest(const QList<QPointF> &points, bool keepEnds)
{
    const bool hasInside = keepEnds && points.size() > 2;
    const qsizetype first = hasInside ? 1 : 0;
    const qsizetype end = hasInside ? points.size() - 1 : points.size();
    qsizetype lowest = first;
    for (qsizetype i = first; i < end; ++i) {
        if (isLowerOrSame(points[i].y(), points[lowest].y()))
            lowest = i;
    }
    return lowest;
}

} // namespace

void tryInput(const QByteArray &input)
{
    FuzzedDataProvider data = dataOf(input);
    const bool keepEnds = data.ConsumeBool();
    const int target = data.ConsumeIntegralInRange(-1, 100);
    const QList<QPointF> points = takePoints(&data, 150, false);
    QList<QPointF> thinned = points;
    const int removed = removeLowIntensePoints(thinned, target, keepEnds);
    QList<QPointF> expected = points;
    while (expected.size() > std::max(target, 0))
        expected.removeAt(placeOfLowest(expected, keepEnds));
    require(bits(thinned) == bits(expected), "what is left is what naive code leaves");
    require(removed == points.size() - thinned.size(), "the removed points are counted");
}

} // namespace zav::fuzz
