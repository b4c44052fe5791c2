// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QList>
#include <QtCore/QPointF>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace zav::naive {

// The steps of the chromatogram predictors once more, as slowly and plainly as they can be written, on standard
// containers: what the library is compared with on random traces.

/// Takes the lowest point away, of equal ones the latest, until `target` are left; the first and the last only where
/// there is no other.
inline QList<QPointF> thinned(QList<QPointF> points, int target)
{
    while (points.size() > std::max(target, 0)) {
        const bool hasInside = points.size() > 2;
        qsizetype lowest = hasInside ? 1 : 0;
        for (qsizetype i = lowest + 1; i < points.size() - (hasInside ? 1 : 0); ++i) {
            if (points[i].y() <= points[lowest].y())
                lowest = i;
        }
        points.removeAt(lowest);
    }
    return points;
}

inline std::vector<double> gaussian(int size, double sigma)
{
    const int half = size / 2;
    std::vector<double> taps;
    double sum = 0.0;
    for (int d = -half; d <= half; ++d) {
        taps.push_back(std::exp(-0.5 * d * d / (sigma * sigma)));
        sum += taps.back();
    }
    for (double &tap : taps)
        tap /= sum;
    return taps;
}

inline std::vector<double> smoothed(const std::vector<double> &values, const std::vector<double> &taps)
{
    const int n = static_cast<int>(values.size());
    const int half = static_cast<int>(taps.size()) / 2;
    std::vector<double> result(values.size(), 0.0);
    for (int i = 0; i < n; ++i) {
        for (int d = -half; d <= half; ++d)
            result[i] += taps[d + half] * values[std::clamp(i + d, 0, n - 1)];
    }
    return result;
}

inline std::vector<float> inputVector(const QList<QPointF> &points, int length, double padding, int passes,
                                      int filterSize)
{
    std::vector<double> values(length, padding);
    for (qsizetype i = 0; i < points.size(); ++i)
        values[i] = static_cast<float>(points[i].y());
    for (int pass = 0; pass < passes; ++pass)
        values = smoothed(values, gaussian(filterSize, 4.0));
    double largest = *std::max_element(values.begin(), values.end());
    if (std::abs(largest) <= 1e-12)
        largest = std::numeric_limits<double>::min();
    std::vector<float> result;
    for (const double value : values)
        result.push_back(static_cast<float>(value / largest));
    return result;
}

/// DBSCAN of ascending whole numbers: density-reachable cores form a cluster, a border point joins the lowest.
inline std::vector<int> clustered(const std::vector<int> &numbers, double eps, int minPoints)
{
    const int n = static_cast<int>(numbers.size());
    const auto near = [&](int a, int b) { return std::abs(numbers[a] - numbers[b]) <= eps; };
    std::vector<bool> core(n);
    for (int i = 0; i < n; ++i) {
        int count = 0;
        for (int j = 0; j < n; ++j)
            count += near(i, j) ? 1 : 0;
        core[i] = count >= minPoints;
    }
    std::vector<int> labels(n, -1);
    int next = 0;
    for (int i = 0; i < n; ++i) {
        if (!core[i])
            continue;
        for (int j = 0; j < i; ++j) {
            if (core[j] && near(i, j))
                labels[i] = labels[j];
        }
        if (labels[i] == -1)
            labels[i] = next++;
    }
    for (int i = 0; i < n; ++i) {
        for (int j = 0; !core[i] && j < n; ++j) {
            if (core[j] && near(i, j) && (labels[i] == -1 || labels[j] < labels[i]))
                labels[i] = labels[j];
        }
    }
    return labels;
}

struct IndexInterval
{
    int start = 0;
    int end = 0;
};

/// The network path's clusters: each from one index early (from 1 where that would be -1) to its last index. The last
/// cluster is missing where the final number is noise or stands alone in it.
inline std::vector<IndexInterval> clusterLimits(const std::vector<int> &numbers, double eps, int minPoints)
{
    const std::vector<int> labels = clustered(numbers, eps, minPoints);
    const int clusters = labels.empty() ? 0 : *std::max_element(labels.begin(), labels.end()) + 1;
    std::vector<IndexInterval> intervals;
    for (int cluster = 0; cluster < clusters; ++cluster) {
        const auto first = std::find(labels.begin(), labels.end(), cluster);
        const auto last = std::find(labels.rbegin(), labels.rend(), cluster);
        const bool isLast = cluster == clusters - 1;
        const bool opensWithTheFinal = first == labels.end() - 1;
        if (isLast && (labels.back() == -1 || opensWithTheFinal))
            continue;
        const int low = numbers[first - labels.begin()];
        const int high = numbers[labels.rend() - last - 1];
        intervals.push_back({low == 0 ? 1 : low - 1, high});
    }
    return intervals;
}

inline IndexInterval walk(const std::vector<float> &vector, int apex, double threshold)
{
    const int size = static_cast<int>(vector.size());
    const float height = vector[apex];
    if (std::abs(static_cast<double>(height)) <= 1e-12)
        return {0, 0};
    const auto stopsAt = [&](int i) {
        const double relative = vector[i] / height;
        return relative <= threshold || relative > 1.0;
    };
    int left = apex;
    do {
        --left;
    } while (left > 0 && !stopsAt(left));
    int right = apex;
    do {
        ++right;
    } while (right < size - 1 && !stopsAt(right));
    return {left, right == size - 1 ? size - 3 : right};
}

/// Again and again a walk from the highest maximum that no interval covers yet.
inline std::vector<IndexInterval> walks(const std::vector<float> &vector, double threshold)
{
    const auto height = [&](int i) { return std::trunc(vector[i] * 10000.0F); };
    std::vector<int> maxima;
    for (int i = 1; i + 1 < static_cast<int>(vector.size()); ++i) {
        if (height(i) > height(i - 1) && height(i) >= height(i + 1))
            maxima.push_back(i);
    }
    std::vector<IndexInterval> intervals;
    while (!maxima.empty()) {
        const int apex =
            *std::max_element(maxima.begin(), maxima.end(), [&](int a, int b) { return vector[a] < vector[b]; });
        const IndexInterval limits = walk(vector, apex, threshold);
        std::erase_if(maxima, [&](int m) { return m == apex || (limits.start <= m && m <= limits.end); });
        intervals.push_back(limits);
    }
    return intervals;
}

} // namespace zav::naive
