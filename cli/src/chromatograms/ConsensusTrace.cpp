// SPDX-License-Identifier: Apache-2.0
#include "ConsensusTrace.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace zav {

namespace {

bool isEarlier(const QPointF &a, const QPointF &b)
{
    return a.x() < b.x();
}

double mean(const QList<double> &values)
{
    double sum = 0;
    for (const double value : values)
        sum += value;
    return sum / static_cast<double>(values.size());
}

bool isConstant(const QList<double> &values)
{
    return std::all_of(values.begin(), values.end(), [&](double value) { return value == values.first(); });
}

double pearson(const QList<double> &a, const QList<double> &b)
{
    if (isConstant(a) || isConstant(b))
        return std::numeric_limits<double>::quiet_NaN();
    const double meanA = mean(a);
    const double meanB = mean(b);
    double ab = 0;
    double aa = 0;
    double bb = 0;
    for (qsizetype i = 0; i < a.size(); ++i) {
        ab += (a[i] - meanA) * (b[i] - meanB);
        aa += (a[i] - meanA) * (a[i] - meanA);
        bb += (b[i] - meanB) * (b[i] - meanB);
    }
    return std::clamp(ab / (std::sqrt(aa) * std::sqrt(bb)), -1.0, 1.0);
}

} // namespace

QList<QPointF> byTime(QList<QPointF> points)
{
    if (!std::is_sorted(points.cbegin(), points.cend(), isEarlier))
        std::stable_sort(points.begin(), points.end(), isEarlier);
    return points;
}

std::optional<double> intensityAt(double time, const QList<QPointF> &points)
{
    const auto after = std::lower_bound(points.begin(), points.end(), QPointF(time, 0), isEarlier);
    if (after == points.end() || (after == points.begin() && after->x() != time))
        return std::nullopt;
    if (after->x() == time)
        return after->y();
    const QPointF &before = *(after - 1);
    const double share = (time - before.x()) / (after->x() - before.x());
    return before.y() + share * (after->y() - before.y());
}

QList<QPointF> consensusOf(const QList<QList<QPointF>> &traces)
{
    const auto longest = std::max_element(traces.begin(), traces.end(),
                                          [](const auto &a, const auto &b) { return a.size() < b.size(); });
    if (longest == traces.end())
        return {};
    QList<QPointF> consensus = byTime(*longest);
    for (QPointF &point : consensus)
        point.ry() = 0;
    for (const QList<QPointF> &trace : traces) {
        const QList<QPointF> points = byTime(trace);
        for (QPointF &point : consensus)
            point.ry() += std::sqrt(std::max(intensityAt(point.x(), points).value_or(0), 0.0));
    }
    for (QPointF &point : consensus)
        point.ry() *= point.y();
    return consensus;
}

QList<QPointF> scaledConsensus(QList<QPointF> consensus, qsizetype traces)
{
    const auto factor = static_cast<double>(traces * traces);
    for (QPointF &point : consensus)
        point.ry() /= factor;
    return consensus;
}

double shapeAgreement(const QList<QPointF> &trace, const QList<QPointF> &consensus, const Interval<double> &limits)
{
    const QList<QPointF> points = byTime(trace);
    QList<double> ofTrace;
    QList<double> ofConsensus;
    for (const QPointF &point : consensus) {
        const std::optional<double> intensity = intensityAt(point.x(), points);
        if (!intensity || !limits.contains(point.x()))
            continue;
        ofTrace.append(*intensity);
        ofConsensus.append(point.y());
    }
    return pearson(ofTrace, ofConsensus);
}

} // namespace zav
