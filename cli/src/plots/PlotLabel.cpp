// SPDX-License-Identifier: Apache-2.0
#include "PlotLabel.h"

#include "PlotStyle.h"

#include <QtCore/QLineF>
#include <QtCore/QRectF>
#include <QtGui/QFontMetricsF>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

namespace zav {

namespace {

// In page units.
constexpr double STICK_GAP = 2.0;   // between a stick and its label
constexpr double FREE_ROOM = 3.0;   // around a label, both sides together
constexpr double LEADER_FROM = 6.0; // a label that lies closer to its stick needs no line
constexpr double MAX_LIFT = 64.0;   // further away a reader no longer sees what a label belongs to
constexpr double LIFT_STEP = 3.0;

class LabelPlacer
{
public:
    LabelPlacer(const QList<Stick> &sticks, double left, double right, double top)
        : m_sticks(sticks), m_left(left), m_right(right), m_top(top)
    {
        std::sort(m_sticks.begin(), m_sticks.end(), [](const Stick &a, const Stick &b) { return a.x < b.x; });
    }

    // The place for one label; nothing when there is no room.
    std::optional<LabelPlace> place(const LabelRequest &request)
    {
        std::optional<LabelPlace> best;
        double bestCost = MAX_LIFT;
        for (const double shift : {0.0, -0.25, 0.25, -0.55, 0.55, -0.85, 0.85}) {
            const double x = request.stick.x + shift * request.size.width();
            const double sideCost = 0.8 * std::abs(x - request.stick.x);
            const std::optional<double> height = lowestHeight(request, x, bestCost - sideCost);
            if (!height)
                continue;
            const double lift = *height - request.stick.height;
            bestCost = lift + sideCost;
            best = LabelPlace{0, x, *height, lift > LEADER_FROM};
        }
        if (best)
            occupy(request, *best);
        return best;
    }

private:
    // Heights count upward here, so a box's "top" is its lower edge.
    static QRectF boxAt(const LabelRequest &request, double x, double height)
    {
        return {x - request.size.width() / 2, height, request.size.width(), request.size.height()};
    }

    static QLineF leaderOf(const LabelRequest &request, double x, double height)
    {
        return {request.stick.x, request.stick.height, x, height};
    }

    // The lowest free height over the stick at the given x, if it is worth less than `maxCost`.
    std::optional<double> lowestHeight(const LabelRequest &request, double x, double maxCost) const
    {
        const double start = std::max(request.stick.height, tallestStickUnder(boxAt(request, x, 0))) + STICK_GAP;
        for (double height = start; height - request.stick.height < maxCost; height += LIFT_STEP) {
            if (isFree(request, x, height))
                return height;
        }
        return std::nullopt;
    }

    double tallestStickUnder(const QRectF &box) const
    {
        auto stick = std::lower_bound(m_sticks.begin(), m_sticks.end(), box.left() - 1,
                                      [](const Stick &candidate, double x) { return candidate.x < x; });
        double height = 0;
        for (; stick != m_sticks.end() && stick->x <= box.right() + 1; ++stick)
            height = std::max(height, stick->height);
        return height;
    }

    bool isFree(const LabelRequest &request, double x, double height) const
    {
        const QRectF box = boxAt(request, x, height);
        if (box.left() < m_left || box.right() > m_right || box.bottom() > m_top)
            return false;
        const QLineF leader = leaderOf(request, x, height);
        const bool isTaken = std::any_of(m_labels.begin(), m_labels.end(), [&](const QRectF &label) {
            return label.intersects(box) || crosses(leader, label);
        });
        const bool isOnLeader =
            std::any_of(m_leaders.begin(), m_leaders.end(), [&](const QLineF &other) { return crosses(other, box); });
        return !isTaken && !isOnLeader && !crossesStick(leader);
    }

    // A leader that crossed another stick would seem to begin there.
    bool crossesStick(const QLineF &leader) const
    {
        return std::any_of(m_sticks.begin(), m_sticks.end(), [&](const Stick &stick) {
            const double share = (stick.x - leader.x1()) / leader.dx();
            return leader.dx() != 0 && share > 0 && share <= 1 && stick.height > leader.pointAt(share).y();
        });
    }

    static bool crosses(const QLineF &line, const QRectF &box)
    {
        const QLineF edges[] = {{box.topLeft(), box.topRight()},
                                {box.topRight(), box.bottomRight()},
                                {box.bottomRight(), box.bottomLeft()},
                                {box.bottomLeft(), box.topLeft()}};
        return std::any_of(std::begin(edges), std::end(edges), [&](const QLineF &edge) {
            return line.intersects(edge, nullptr) == QLineF::BoundedIntersection;
        });
    }

    void occupy(const LabelRequest &request, const LabelPlace &place)
    {
        m_labels.push_back(boxAt(request, place.x, place.height));
        if (place.needsLeader)
            m_leaders.push_back(leaderOf(request, place.x, place.height));
    }

    QList<Stick> m_sticks;
    std::vector<QRectF> m_labels;
    std::vector<QLineF> m_leaders;
    double m_left;
    double m_right;
    double m_top;
};

} // namespace

QList<LabelPlace> placeLabels(const QList<LabelRequest> &requests, const QList<Stick> &sticks, double left,
                              double right, double top)
{
    std::vector<int> order(static_cast<std::size_t>(requests.size()));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        return std::pair(requests[a].rank, -requests[a].stick.height) <
               std::pair(requests[b].rank, -requests[b].stick.height);
    });
    LabelPlacer placer(sticks, left, right, top);
    QList<LabelPlace> places;
    for (const int i : order) {
        if (std::optional<LabelPlace> place = placer.place(requests[i])) {
            place->request = i;
            places.append(*place);
        }
    }
    return places;
}

QSizeF labelSize(const QString &text, const QFontMetricsF &metrics)
{
    return {metrics.horizontalAdvance(text) + FREE_ROOM, metrics.capHeight() + FREE_ROOM};
}

void paintLabel(QPainter *painter, const LabelBase &base, const LabelRequest &request, const LabelPlace &place,
                const QString &text, const QColor &color)
{
    if (place.needsLeader) {
        painter->setPen(QPen(plotStyle::unmatchedColor(), 0.6));
        painter->drawLine(QPointF(request.stick.x, base.y + base.direction * (request.stick.height + 1)),
                          QPointF(place.x, base.y + base.direction * (place.height - 1)));
    }
    const double middle = base.y + base.direction * (place.height + request.size.height() / 2);
    const QPointF start(place.x - (request.size.width() - FREE_ROOM) / 2,
                        middle + QFontMetricsF(painter->font()).capHeight() / 2);
    painter->setPen(color.darker(115));
    painter->drawText(start, text);
}

} // namespace zav
