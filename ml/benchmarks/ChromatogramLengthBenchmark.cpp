// SPDX-License-Identifier: Apache-2.0
//
// What chromatograms of one to ten million points cost, with times that ascend, descend or stand still and with points
// that are not numbers. Checks the answers, and that ten times the points cost no more than n log n allows.
// Usage: chromatogram_length_benchmark [folder of the networks]
#include "BenchmarkSetting.h"
#include "XicBenchmarkTraces.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>

namespace zav {
namespace {

using namespace benchmarkSetting;
using namespace xicBenchmarkTraces;

constexpr int LENGTHS[] = {1, 1000, 10'000, 100'000, 1'000'000, 10'000'000};
constexpr int LIMITS_SIZE = 4096;
constexpr int SPLITS_SIZE = 1024;
constexpr double NO_HINT = -1.0;
constexpr std::size_t MAX_SPLITS = 4;

// n log n asks for 12 times the time at ten times the points; caches and other programs for the rest.
constexpr double MOST_GROWTH = 25;

QList<QPointF> ascending(int count)
{
    return twoPeaks(count, count);
}

QList<QPointF> descending(int count)
{
    QList<QPointF> points = ascending(count);
    for (QPointF &point : points)
        point.setX(-point.x());
    return points;
}

QList<QPointF> standingStill(int count)
{
    QList<QPointF> points = ascending(count);
    for (QPointF &point : points)
        point.setX(7);
    return points;
}

QList<QPointF> partlyNoNumbers(int count)
{
    constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    QList<QPointF> points = ascending(count);
    for (qsizetype i = 0; i < points.size(); i += 3)
        points[i] = i % 2 == 0 ? QPointF(points[i].x(), NOT_A_NUMBER) : QPointF(INFINITE, -INFINITE);
    return points;
}

bool isTimeOf(const QList<QPointF> &points, double time)
{
    return std::any_of(points.cbegin(), points.cend(), [&](const QPointF &point) { return point.x() == time; });
}

/// Limits are times of the trace in order; only times that are not in order may be refused.
void refuseWrongLimits(const QList<QPointF> &points, const Result<QList<Interval<double>>> &limits, bool isOrdered)
{
    if (limits.hasError()) {
        require(!isOrdered && limits.error().message() == QStringLiteral("Start is greater than end"),
                "The search for limits failed");
        return;
    }
    require(!isOrdered || points.size() == 1 || !limits.value().isEmpty(), "No limits were found");
    for (const Interval<double> &peak : limits.value().first(std::min<qsizetype>(limits.value().size(), 3))) {
        require(peak.start <= peak.end, "A peak ends before it starts");
        require(isTimeOf(points, peak.start) && isTimeOf(points, peak.end), "A limit is no time of the trace");
    }
}

void refuseWrongSplits(const QList<QPointF> &points, const Result<QList<std::pair<double, double>>> &splits)
{
    require(!splits.hasError(), "The search for splits failed");
    require(static_cast<std::size_t>(splits.value().size()) <= MAX_SPLITS, "There are too many splits");
    for (const auto &split : splits.value())
        require(isTimeOf(points, split.first), "A split is no time of the trace");
}

struct Predictors
{
    XicBaselineLimitsDetector detector;
    XicPeakSplitter splitter;
};

struct Costs
{
    double walk, limits, splits; // milliseconds of processor time
};

template <typename Call, typename Check>
double timeCall(const Call &call, const Check &check)
{
    const Moment start = Moment::now();
    const auto answer = call();
    const double spent = Moment::now().since(start).computed;
    check(answer);
    return spent * 1e3;
}

Costs costsOf(Predictors *predictors, const QList<QPointF> &points, bool isOrdered)
{
    const auto checkLimits = [&](const auto &limits) { refuseWrongLimits(points, limits, isOrdered); };
    const auto checkSplits = [&](const auto &splits) { refuseWrongSplits(points, splits); };
    return {timeCall([&] { return predictors->detector.integrateXIC(points); }, checkLimits),
            timeCall([&] { return predictors->detector.integrateXIC(points, NO_HINT, 0); }, checkLimits),
            timeCall([&] { return predictors->splitter.splitXIC(points); }, checkSplits)};
}

void measure(Predictors *predictors, const char *kind, const std::function<QList<QPointF>(int)> &trace, bool isOrdered)
{
    Costs before{};
    for (const int length : LENGTHS) {
        const Costs costs = costsOf(predictors, trace(length), isOrdered);
        std::printf("%-16s %9d %10.2f %10.2f %10.2f\n", kind, length, costs.walk, costs.limits, costs.splits);
        if (length == 10'000'000) { // shorter ones cost the network more than the thinning
            require(costs.walk < MOST_GROWTH * before.walk && costs.limits < MOST_GROWTH * before.limits &&
                        costs.splits < MOST_GROWTH * before.splits,
                    "The cost grows faster than n log n");
        }
        before = costs;
    }
}

int run(const QString &folder)
{
    printSetting(QStringLiteral("Chromatograms of 1 to 10,000,000 points: walk and limits in %1 points, splits in %2")
                     .arg(LIMITS_SIZE)
                     .arg(SPLITS_SIZE));
    Predictors predictors;
    load(&predictors.detector, folder, LIMITS_SIZE);
    load(&predictors.splitter, folder, SPLITS_SIZE);
    costsOf(&predictors, ascending(LENGTHS[1]), true); // a first run makes the network ready
    std::printf("ms of processor    points       walk     limits     splits\n");
    measure(&predictors, "ascending", ascending, true);
    measure(&predictors, "descending", descending, false);
    measure(&predictors, "standing still", standingStill, false);
    measure(&predictors, "partly no number", partlyNoNumbers, false);
    return 0;
}

} // namespace
} // namespace zav

int main(int argumentCount, char **arguments)
{
    return zav::run(zav::benchmarkSetting::modelFolder(argumentCount, arguments));
}
