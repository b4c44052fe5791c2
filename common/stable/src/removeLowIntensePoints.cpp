// SPDX-License-Identifier: Apache-2.0
#include "removeLowIntensePoints.h"

#include "ListMemory.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace zav {

namespace {

// The order in which points are removed: a total order of their indices.
class RemovalOrder
{
public:
    RemovalOrder(const QList<QPointF> &points, bool keepEnds)
        : m_points(points.constData()), m_last(points.size() - 1), m_keepEnds(keepEnds)
    {}

    /// True when the point at `a` goes before the one at `b`.
    bool operator()(qsizetype a, qsizetype b) const
    {
        if (isKeptEnd(a) != isKeptEnd(b))
            return isKeptEnd(b);
        const double low = m_points[a].y();
        const double high = m_points[b].y();
        if (std::isnan(low) != std::isnan(high))
            return std::isnan(low);
        if (low < high || high < low)
            return low < high;
        return a > b;
    }

private:
    bool isKeptEnd(qsizetype index) const { return m_keepEnds && (index == 0 || index == m_last); }

    const QPointF *m_points;
    qsizetype m_last;
    bool m_keepEnds;
};

// The indices of the first `count` (at least one) points of the removal order, ascending.
std::vector<qsizetype> firstToGo(const QList<QPointF> &points, qsizetype count, bool keepEnds)
{
    std::vector<qsizetype> indices(static_cast<std::size_t>(points.size()));
    std::iota(indices.begin(), indices.end(), qsizetype(0));
    std::nth_element(indices.begin(), indices.begin() + (count - 1), indices.end(), RemovalOrder(points, keepEnds));
    indices.resize(static_cast<std::size_t>(count));
    std::sort(indices.begin(), indices.end());
    return indices;
}

} // namespace

int removeLowIntensePoints(QList<QPointF> &points, int targetCount, bool keepEnds)
{
    const qsizetype excess = points.size() - std::max(targetCount, 0);
    if (excess <= 0)
        return 0;

    const std::vector<qsizetype> removed = firstToGo(points, excess, keepEnds);
    makeOwner(&points);
    QPointF *point = points.data();
    auto nextRemoved = removed.begin();
    qsizetype kept = 0;
    for (qsizetype index = 0; index < points.size(); ++index) {
        if (nextRemoved != removed.end() && *nextRemoved == index)
            ++nextRemoved;
        else
            point[kept++] = point[index];
    }
    points.resize(kept);
    return static_cast<int>(excess);
}

} // namespace zav
