// SPDX-License-Identifier: Apache-2.0
#include "XicPeakWalk.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace zav {

namespace {

constexpr double ZERO_HEIGHT = 1e-12;

/// One side of a walk: where it stands, and whether it goes on.
struct Side
{
    int index = 0;
    bool active = true;

    void step(int to, float relativeHeight, double threshold)
    {
        index = to;
        active = !(threshold >= relativeHeight || relativeHeight > 1.0F);
    }
};

/// The maxima stand in ascending order of index.
void consumeCovered(QList<LocalMaximum> &maxima, const Interval<int> &interval)
{
    auto maximum = std::lower_bound(maxima.begin(), maxima.end(), interval.start,
                                    [](const LocalMaximum &m, int index) { return m.index < index; });
    for (; maximum != maxima.end() && maximum->index <= interval.end; ++maximum)
        maximum->consumed = true;
}

std::vector<qsizetype> highestFirst(const QList<LocalMaximum> &maxima)
{
    std::vector<qsizetype> order(maxima.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](qsizetype a, qsizetype b) { return maxima[a].value > maxima[b].value; });
    return order;
}

} // namespace

QList<LocalMaximum> findLocalMaxima(const Eigen::VectorXf &input, int scale)
{
    // Truncated in float: a conversion to int would overflow on the heights that a hostile trace can reach.
    const auto truncated = [&](Eigen::Index i) { return std::trunc(input[i] * static_cast<float>(scale)); };
    QList<LocalMaximum> maxima;
    for (Eigen::Index i = 1; i + 1 < input.size(); ++i) {
        const float height = truncated(i);
        if (height > truncated(i - 1) && height >= truncated(i + 1))
            maxima.append({-1, static_cast<int>(i), input[i], false});
    }
    return maxima;
}

Interval<int> walkPeakLimits(const Eigen::VectorXf &input, const LocalMaximum &maximum, double threshold)
{
    const int size = static_cast<int>(input.size());
    if (std::abs(maximum.value) <= ZERO_HEIGHT || size <= 1)
        return {0, 0};

    const auto apex = static_cast<float>(maximum.value);
    Side left;
    Side right;
    for (int k = 1; k < size && (left.active || right.active); ++k) {
        const int l = maximum.index - k;
        const int r = maximum.index + k;
        if (l >= 0 && left.active)
            left.step(l, input[l] / apex, threshold);
        if (right.active && r >= size - 1)
            right = {size - 3, false};
        else if (right.active)
            right.step(r, input[r] / apex, threshold);
    }
    return {left.index, right.index};
}

QList<Interval<int>> walkAllPeakLimits(const Eigen::VectorXf &input, QList<LocalMaximum> maxima, double threshold)
{
    QList<Interval<int>> intervals;
    for (const qsizetype i : highestFirst(maxima)) {
        if (maxima[i].consumed)
            continue;
        intervals.append(walkPeakLimits(input, maxima[i], threshold));
        maxima[i].consumed = true;
        consumeCovered(maxima, intervals.last());
    }
    return intervals;
}

} // namespace zav
