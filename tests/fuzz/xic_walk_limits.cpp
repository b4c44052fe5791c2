// SPDX-License-Identifier: Apache-2.0
//
// Door: points for the limits of peaks by the walk.
// Promises: limits are times of the trace, in their order; without smoothing they are those of naive code.
#include "NaiveChromatogram.h"
#include "XicLimitsSupport.h"

namespace zav::fuzz {
namespace {

bool isPlain(const QPointF &point)
{
    return std::isfinite(point.y()) && std::abs(point.y()) < 1e6;
}

void requireNaive(const Result<QList<Interval<double>>> &found, const QList<QPointF> &points,
                  const XicBaselineLimitsDetectorOptions &options)
{
    const QList<QPointF> kept =
        points.size() > options.maxPointCount ? naive::thinned(points, options.maxPointCount - 200) : points;
    const std::vector<float> vector = naive::inputVector(kept, options.maxPointCount, -1.0, 0, 1);
    QList<Interval<double>> expected;
    const qsizetype last = points.size() - 1;
    for (const naive::IndexInterval &limits : naive::walks(vector, options.limitThreshold)) {
        if (limits.start <= last)
            expected.append({points[limits.start].x(), points[std::min<qsizetype>(limits.end, last)].x()});
    }
    require(!found.hasError(), "the walk fails for no trace");
    requireEqual(expected, found.value());
}

} // namespace

void tryInput(const QByteArray &input)
{
    FuzzedDataProvider data = dataOf(input);
    const XicBaselineLimitsDetectorOptions options = takeLimitsOptions(&data);
    const bool anyTimes = data.ConsumeBool();
    const QList<QPointF> points = takePoints(&data, 400, anyTimes);
    loadChromatogramNetwork({1.0F});
    XicBaselineLimitsDetector detector;
    require(!detector.init(options).hasError(), "options in their ranges are taken");
    const Result<QList<Interval<double>>> found = detector.integrateXIC(points);
    requireWithin(found, points);
    const bool isComparable = !anyTimes && !points.isEmpty() && options.smoothingPassCount == 0 &&
                              std::all_of(points.begin(), points.end(), isPlain);
    if (isComparable)
        requireNaive(found, points, options);
}

} // namespace zav::fuzz
