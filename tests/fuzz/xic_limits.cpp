// SPDX-License-Identifier: Apache-2.0
//
// Door: points for the limits of peaks by the network, whose outputs come from the fuzzer too.
// Promises: limits are times of the trace, in their order; with ascending times they are those of naive code; an output
// that is too short is a failure; nothing leaks.
#include "NaiveChromatogram.h"
#include "XicLimitsSupport.h"

namespace zav::fuzz {
namespace {

/// As naive code finds them from these probabilities; nothing where one starts behind its end.
std::optional<QList<Interval<double>>> naiveLimits(const QList<QPointF> &points, const std::vector<float> &values,
                                                   const XicBaselineLimitsDetectorOptions &options)
{
    const int used = static_cast<int>(std::min<qsizetype>(options.maxPointCount, points.size()));
    std::vector<int> selected;
    for (int i = 0; used > options.minPointCount && i < used; ++i) {
        if (static_cast<double>(values[static_cast<std::size_t>(i)]) >= 1.0 - options.probabilityTolerance)
            selected.push_back(i);
    }
    QList<Interval<double>> all;
    for (const auto &limits : naive::clusterLimits(selected, options.dbscanEpsilon, options.dbscanMinPoints)) {
        if (limits.start >= points.size())
            continue;
        if (limits.start > limits.end)
            return std::nullopt;
        all.append({points[limits.start].x(), points[limits.end].x()});
    }
    return all;
}

void requireNaive(const Result<QList<Interval<double>>> &found, const QList<QPointF> &points,
                  const std::vector<float> &values, const XicBaselineLimitsDetectorOptions &options)
{
    const int used = static_cast<int>(std::min<qsizetype>(options.maxPointCount, points.size()));
    if (points.isEmpty() || values.empty() || (used > options.minPointCount && used > static_cast<int>(values.size())))
        return;
    const auto expected = naiveLimits(points, values, options);
    require(found.hasError() == !expected, "naive code finds the same to fail");
    if (!expected)
        return;
    requireEqual(*expected, found.value());
}

} // namespace

void tryInput(const QByteArray &input)
{
    FuzzedDataProvider data = dataOf(input);
    const XicBaselineLimitsDetectorOptions options = takeLimitsOptions(&data);
    const bool anyTimes = data.ConsumeBool();
    const double hint = data.ConsumeBool() ? takeNumber(&data) : -1.0;
    const int retryDepth = data.ConsumeIntegralInRange(-2, 5);
    const QList<QPointF> points = takePoints(&data, 400, anyTimes);
    const std::vector<float> values = takeFloats(&data, 300);
    loadChromatogramNetwork(values);
    {
        XicBaselineLimitsDetector detector;
        require(!detector.init(options).hasError(), "options in their ranges are taken");
        requireWithin(detector.integrateXIC(points, hint, retryDepth), points);
        if (!anyTimes)
            requireNaive(detector.integrateXIC(points, -1.0, 0), points, values, options);
    }
    requireNothingLives();
}

} // namespace zav::fuzz
