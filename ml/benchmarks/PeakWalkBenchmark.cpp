// SPDX-License-Identifier: Apache-2.0
//
// What the walk from the local maxima costs: on ordinary traces beside the plainest walk there is, and on a rising
// staircase below zero, where every maximum's walk runs on to the end, at three lengths. Refuses to time wrong answers.
// Usage: peak_walk_benchmark
#include "CallComparison.h"
#include "XicBenchmarkTraces.h"
#include "XicInputVector.h"
#include "XicPeakWalk.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zav {
namespace {

using namespace benchmarkSetting;
using namespace xicBenchmarkTraces;

constexpr int SCALE = 10000;
constexpr int TRACES = 200;
constexpr int ROUNDS = 101;
constexpr int STAIRCASE_LENGTHS[] = {8192, 65536, 524288};
constexpr int STAIRCASE_ROUNDS = 5;

// A point of a long staircase may cost more than one of a short one by the levels of the search and by caches. Walks of
// quadratic cost would make it 64 times.
constexpr double MOST_GROWTH = 8;

using Intervals = QList<Interval<int>>;

bool areEqual(const Intervals &a, const Intervals &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const Interval<int> &one, const Interval<int> &other) {
        return one.start == other.start && one.end == other.end;
    });
}

Intervals libraryWalk(const Eigen::VectorXf &input, double threshold)
{
    return walkAllPeakLimits(input, findLocalMaxima(input, SCALE), threshold);
}

/// One index after the other, from every maximum.
Intervals plainWalk(const Eigen::VectorXf &input, double threshold)
{
    QList<LocalMaximum> maxima = findLocalMaxima(input, SCALE);
    std::stable_sort(maxima.begin(), maxima.end(),
                     [](const LocalMaximum &a, const LocalMaximum &b) { return a.value > b.value; });
    Intervals intervals;
    for (const LocalMaximum &maximum : maxima) {
        if (maximum.consumed)
            continue;
        const Interval<int> limits = walkPeakLimits(input, maximum, threshold);
        for (LocalMaximum &other : maxima)
            other.consumed = other.consumed || (limits.start <= other.index && other.index <= limits.end);
        intervals.append(limits);
    }
    return intervals;
}

void measureOrdinaryTraces(int pointCount, int size)
{
    const Eigen::VectorXd kernel = buildSmoothingKernel(5);
    std::vector<Eigen::VectorXf> inputs;
    for (unsigned seed = 0; seed < TRACES; ++seed) {
        inputs.push_back(buildXicInputVector(countedTrace(pointCount, seed), kernel, {size, -1.0, 1}));
        require(areEqual(plainWalk(inputs.back(), 0.05), libraryWalk(inputs.back(), 0.05)), "A walk went wrong");
    }
    const auto walkAll = [&](Intervals (*walk)(const Eigen::VectorXf &, double)) {
        return [&inputs, walk] {
            return std::none_of(inputs.begin(), inputs.end(),
                                [&](const auto &input) { return walk(input, 0.05).isEmpty(); });
        };
    };
    const CallComparison cost = compareCalls(ROUNDS, 1, walkAll(plainWalk), walkAll(libraryWalk));
    std::printf("%4d points in %4d: plain walk %6.2f us, this one %6.2f us, ratio %5.3f (processor time)\n", pointCount,
                size, cost.part.computed / TRACES, cost.whole.computed / TRACES, cost.ratio.computed);
}

/// Steps of two points, each 0.001 above the one before, the last at -1.
Eigen::VectorXf staircase(int count)
{
    return Eigen::VectorXf::NullaryExpr(count, [&](Eigen::Index i) {
        return static_cast<float>(-1.0 - 0.001 * static_cast<double>((count - 1 - i) / 2));
    });
}

/// Each step's walk, the last first, goes back by one point, where it is lower, and on to the end.
Intervals staircaseLimits(int count)
{
    Intervals limits;
    for (int step = count / 2 - 1; step > 0; --step)
        limits.append({2 * step - 1, count - 3});
    return limits;
}

void measureStaircases()
{
    double first = 0;
    for (const int length : STAIRCASE_LENGTHS) {
        const Eigen::VectorXf input = staircase(length);
        require(areEqual(staircaseLimits(length), libraryWalk(input, 0.0)), "A walk on the staircase went wrong");
        std::vector<double> computed;
        for (int round = 0; round < STAIRCASE_ROUNDS; ++round) {
            const Moment start = Moment::now();
            require(!libraryWalk(input, 0.0).isEmpty(), "A walk failed");
            computed.push_back(Moment::now().since(start).computed / length * 1e9);
        }
        const double each = median(computed);
        first = length == STAIRCASE_LENGTHS[0] ? each : first;
        std::printf("%6d points of a staircase: %7.1f ns a point, %5.2f times the first\n", length, each, each / first);
        require(each < MOST_GROWTH * first, "The cost grows faster than n log n");
    }
}

int run()
{
    printSetting(QStringLiteral("The walk from the local maxima, without a network; medians of %1 rounds").arg(ROUNDS));
    measureOrdinaryTraces(200, 512);
    measureOrdinaryTraces(1000, 1024);
    measureOrdinaryTraces(1000, 8192);
    measureStaircases();
    return 0;
}

} // namespace
} // namespace zav

int main()
{
    return zav::run();
}
