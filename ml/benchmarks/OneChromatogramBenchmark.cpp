// SPDX-License-Identifier: Apache-2.0
//
// What the limits and the splits of one chromatogram cost beside a bare run of the same session (feed, run, read), for
// each size of the network's input, and what the walk without a network costs. Refuses to time wrong answers.
// Usage: one_chromatogram_benchmark [folder of the networks]
#include "CallComparison.h"
#include "Tensor.h"
#include "XicBenchmarkTraces.h"
#include "XicInputVector.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zav {
namespace {

using namespace benchmarkSetting;
using namespace xicBenchmarkTraces;

constexpr int POINTS = 200;
constexpr int SIZES[] = {512, 1024, 2048, 4096}; // of the network's input
constexpr int ROUNDS = 101;
constexpr int CALLS_PER_ROUND = 5;
constexpr int WALKED_TRACES = 200;
constexpr double NO_HINT = -1.0;
constexpr double SPLIT_MARGIN = 5 * SECONDS_PER_POINT;

/// The network without the predictor around it.
class BareRun
{
public:
    BareRun(Model &network, std::vector<float> values) : model(network), fed(std::move(values))
    {
        const bool bound = !input.init(model.getGraph(), model.getStatus(), "import/img").hasError() &&
                           !output.init(model.getGraph(), model.getStatus(), "import/conv2d_19/Sigmoid").hasError();
        require(bound, "The network lacks an operation");
    }

    bool operator()()
    {
        return !input.setData<float>(fed).hasError() && !model.run(input, output).hasError() &&
               !output.getData<float>(&probabilities).hasError();
    }

    std::vector<float> probabilities;

private:
    Model &model;
    Tensor input;
    Tensor output;
    std::vector<float> fed;
};

double timeAt(double share)
{
    return std::round(share * POINTS) * SECONDS_PER_POINT;
}

/// Each tip has to lie within limits that the network's own probabilities give.
void refuseWrongLimits(const QList<Interval<double>> &limits, const std::vector<float> &probabilities)
{
    for (const double share : {FIRST_APEX, SECOND_APEX}) {
        const bool isFound = std::any_of(limits.cbegin(), limits.cend(),
                                         [&](const Interval<double> &peak) { return peak.contains(timeAt(share)); });
        require(isFound, "A peak was not found");
        require(probabilities[static_cast<std::size_t>(share * POINTS)] >= 0.2F, "The bare run sees another trace");
    }
}

/// Each split has to carry the network's probability, and one has to lie in the valley.
void refuseWrongSplits(const QList<std::pair<double, double>> &splits, const std::vector<float> &probabilities)
{
    bool isInValley = false;
    for (const auto &[time, probability] : splits) {
        const auto index = static_cast<std::size_t>(std::lround(time / SECONDS_PER_POINT));
        require(static_cast<double>(probabilities[index]) == probability, "The bare run gives another probability");
        isInValley = isInValley || std::abs(time - timeAt(VALLEY)) <= SPLIT_MARGIN;
    }
    require(isInValley, "The valley was not split");
}

std::vector<float> fedBy(const QList<QPointF> &points, const Eigen::VectorXd &kernel,
                         const XicInputVectorSettings &settings)
{
    const Eigen::VectorXf values = buildXicInputVector(points, kernel, settings);
    return {values.cbegin(), values.cend()};
}

void report(const char *what, qsizetype pointCount, int size, const CallComparison &cost)
{
    std::printf("%-8s %6lld %6d %10.1f %10.1f %8.3f %12.1f %10.1f %8.3f\n", what, static_cast<long long>(pointCount),
                size, cost.part.wall, cost.whole.wall, cost.ratio.wall, cost.part.computed, cost.whole.computed,
                cost.ratio.computed);
}

void measureLimits(const QString &folder, const QList<QPointF> &points, int size)
{
    XicBaselineLimitsDetector detector;
    load(&detector, folder, size);
    auto &inside = XicBaselineLimitsDetectorInspector::of(detector);
    BareRun bareRun(inside.model,
                    fedBy(points, inside.smoothingKernel, {size, -1.0, inside.options.smoothingPassCount}));
    require(bareRun(), "The bare run failed");
    refuseWrongLimits(detector.integrateXIC(points, NO_HINT, 0).value(), bareRun.probabilities);
    report("limits", points.size(), size, compareCalls(ROUNDS, CALLS_PER_ROUND, std::ref(bareRun), [&] {
               return !detector.integrateXIC(points, NO_HINT, 0).hasError();
           }));
}

void measureSplits(const QString &folder, const QList<QPointF> &points, int size)
{
    XicPeakSplitter splitter;
    load(&splitter, folder, size);
    auto &inside = XicPeakSplitterInspector::of(splitter);
    BareRun bareRun(inside.model,
                    fedBy(points, inside.smoothingKernel, {size, 0.0, inside.options.smoothingPassCount}));
    require(bareRun(), "The bare run failed");
    refuseWrongSplits(splitter.splitXIC(points).value(), bareRun.probabilities);
    report("splits", points.size(), size, compareCalls(ROUNDS, CALLS_PER_ROUND, std::ref(bareRun), [&] {
               return !splitter.splitXIC(points).hasError();
           }));
}

/// The highest point has to lie within the limits of a peak.
void refuseWrongWalk(const QList<QPointF> &points, const Result<QList<Interval<double>>> &limits)
{
    const auto highest = std::max_element(points.cbegin(), points.cend(),
                                          [](const QPointF &a, const QPointF &b) { return a.y() < b.y(); });
    require(!limits.hasError(), "The walk failed");
    const bool isFound = std::any_of(limits.value().cbegin(), limits.value().cend(),
                                     [&](const Interval<double> &peak) { return peak.contains(highest->x()); });
    require(isFound, "The walk missed the highest peak");
}

void measureWalk(const QString &folder, int pointCount, int size)
{
    XicBaselineLimitsDetector detector;
    load(&detector, folder, size);
    std::vector<QList<QPointF>> traces;
    for (unsigned seed = 0; seed < WALKED_TRACES; ++seed)
        traces.push_back(countedTrace(pointCount, seed));
    qsizetype peaks = 0;
    for (const QList<QPointF> &points : traces) {
        const Result<QList<Interval<double>>> limits = detector.integrateXIC(points);
        refuseWrongWalk(points, limits);
        peaks += limits.value().size();
    }
    std::vector<double> wall, computed;
    for (int round = 0; round < ROUNDS; ++round) {
        const Moment start = Moment::now();
        for (const QList<QPointF> &points : traces)
            require(!detector.integrateXIC(points).hasError(), "A walk failed");
        const Moment spent = Moment::now().since(start);
        wall.push_back(spent.wall / WALKED_TRACES * 1e6);
        computed.push_back(spent.computed / WALKED_TRACES * 1e6);
    }
    std::printf("walk, %4d points in %4d, %5.1f peaks: %6.1f us by the wall clock, %6.1f us of processor time\n",
                pointCount, size, static_cast<double>(peaks) / WALKED_TRACES, median(wall), median(computed));
}

int run(const QString &folder)
{
    printSetting(QStringLiteral("One chromatogram of %1 points, and one that fills the network's input, beside a bare "
                                "run of the session, us a call; medians of %2 rounds of %3 calls, in turn")
                     .arg(POINTS)
                     .arg(ROUNDS)
                     .arg(CALLS_PER_ROUND));
    std::printf("                       -------- wall clock ---------   -------- processor time ------\n"
                "         points   size   bare run       call    ratio     bare run       call    ratio\n");
    const auto fill = [](int size) { return twoPeaks(POINTS, size); };
    for (const int size : SIZES)
        measureLimits(folder, fill(POINTS), size);
    for (const int size : SIZES)
        measureLimits(folder, fill(size), size);
    for (const int size : SIZES)
        measureSplits(folder, fill(POINTS), size);
    for (const int size : SIZES)
        measureSplits(folder, fill(size), size);
    measureWalk(folder, POINTS, 512);
    measureWalk(folder, 1000, 1024);
    return 0;
}

} // namespace
} // namespace zav

int main(int argumentCount, char **arguments)
{
    return zav::run(zav::benchmarkSetting::modelFolder(argumentCount, arguments));
}
