// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PredictorSupport.h"

#include <zav/XicBaselineLimitsDetector.h>

#include <algorithm>

namespace zav::fuzz {

/// In their ranges, small enough that short lists of points are thinned.
inline XicBaselineLimitsDetectorOptions takeLimitsOptions(FuzzedDataProvider *data)
{
    XicBaselineLimitsDetectorOptions options;
    options.modelFilePath = fileWith("network.pb", "graph");
    options.maxPointCount = data->ConsumeIntegralInRange(201, 260);
    options.probabilityTolerance = data->ConsumeProbability<double>();
    options.dbscanEpsilon = 0.1 + 10.0 * data->ConsumeProbability<double>();
    options.dbscanMinPoints = data->ConsumeIntegralInRange(1, 6);
    options.minPointCount = data->ConsumeIntegralInRange(0, 10);
    options.smoothingPassCount = data->ConsumeIntegralInRange(0, 3);
    options.gaussianFilterSize = data->ConsumeIntegralInRange(1, 20);
    options.limitThreshold = 0.99 * data->ConsumeProbability<double>();
    return options;
}

inline void loadChromatogramNetwork(std::vector<float> results)
{
    runtime().operations = {{"init"}, {"import/img", 1, {-1, 1, 1}}, {"import/conv2d_19/Sigmoid"}};
    runtime().results = std::move(results);
}

/// Limits are times of the trace, the start not behind the end.
inline void requireWithin(const Result<QList<Interval<double>>> &found, const QList<QPointF> &points)
{
    if (found.hasError()) {
        require(found.error().code() != NoError, "a failure has a code");
        return;
    }
    for (const Interval<double> &limits : found.value()) {
        require(limits.start <= limits.end, "a peak starts before its end");
        require(isTimeOf(points, limits.start) && isTimeOf(points, limits.end), "limits are times of the trace");
    }
}

inline void requireEqual(const QList<Interval<double>> &expected, const QList<Interval<double>> &found)
{
    const auto isSame = [](const Interval<double> &a, const Interval<double> &b) {
        return a.start == b.start && a.end == b.end;
    };
    require(std::equal(expected.begin(), expected.end(), found.begin(), found.end(), isSame),
            "naive code finds the same peaks");
}

} // namespace zav::fuzz
