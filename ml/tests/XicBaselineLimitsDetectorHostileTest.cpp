// SPDX-License-Identifier: Apache-2.0
#include <zav/XicBaselineLimitsDetector.h>

#include "MessageRecorder.h"
#include "XicBaselineLimitsDetectorFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace zav {
namespace {

// Broken networks and hostile traces

TEST_F(XicBaselineLimitsDetectorTest, MissingOperationsAreTagged)
{
    const MessageRecorder silence;
    GraphDefBuilder noInput;
    noInput.constant(Network::OUTPUT, {1}, {1.0F}).noOp("init");
    initialise(noInput);
    expectFailure(Failure, QString(), {"XicBaselineLimitsDetector:149"}, found(markedAt({3, 4})));
    GraphDefBuilder noOutput;
    noOutput.placeholder(Network::INPUT, {{-1, 1, 1}}).noOp("init");
    initialise(noOutput);
    expectFailure(Failure, QString(), {"XicBaselineLimitsDetector:152"}, found(markedAt({3, 4})));
}

TEST_F(XicBaselineLimitsDetectorTest, InputOfAnotherLengthIsTagged)
{
    const MessageRecorder silence;
    GraphDefBuilder graph;
    graph.placeholder(Network::INPUT, {{-1, 1000, 1, 1}}).identity(Network::OUTPUT, Network::INPUT).noOp("init");
    initialise(graph);
    expectFailure(Failure, QString(), {"XicBaselineLimitsDetector:155"}, found(markedAt({3, 4})));
}

TEST_F(XicBaselineLimitsDetectorTest, RunThatFailsIsTagged)
{
    GraphDefBuilder graph;
    graph.placeholder(Network::INPUT, {{-1, 1, 1}}).placeholder("unfed", {{1}});
    graph.identity(Network::OUTPUT, "unfed").noOp("init");
    initialise(graph);
    expectFailure(Failure, QString(), {"XicBaselineLimitsDetector:156"}, found(markedAt({3, 4})));
}

TEST_F(XicBaselineLimitsDetectorTest, OutputOfAnotherTypeIsTagged)
{
    const MessageRecorder silence;
    GraphDefBuilder graph;
    graph.placeholder(Network::INPUT, {{-1, 1, 1}});
    graph.cast(Network::OUTPUT, Network::INPUT, GraphDefBuilder::FLOAT, GraphDefBuilder::INT32).noOp("init");
    initialise(graph);
    expectFailure(Failure, QString(), {"XicBaselineLimitsDetector:157"}, found(markedAt({3, 4})));
}

TEST_F(XicBaselineLimitsDetectorTest, FewerProbabilitiesThanPointsAreAFailure)
{
    initialise(Network::constant({1.0F, 1.0F, 1.0F}));
    const Intervals intervals = found(markedAt({3, 4, 5}));
    ASSERT_TRUE(intervals.hasError());
    EXPECT_EQ(QStringLiteral("The network returned 3 values for 40 points"), intervals.error().message());
}

TEST_F(XicBaselineLimitsDetectorTest, SurplusProbabilitiesOfAnyShapeAreIgnored)
{
    std::vector<float> values(static_cast<std::size_t>(2) * LENGTH, 1.0F);
    std::fill(values.begin() + 4, values.begin() + 40, 0.0F);
    initialise(Network::constant(values, {2, LENGTH / 2, 2, 1}));
    expectIntervals({{1, 3}}, found(std::vector<double>(40, 1.0)));
}

TEST_F(XicBaselineLimitsDetectorTest, NonFiniteAndNegativeProbabilitiesAreNoPeak)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    std::vector<float> values(40, 0.0F);
    values[2] = values[3] = nan;
    values[4] = -infinity;
    values[5] = -1.0F;
    values[10] = values[11] = infinity;
    initialise(Network::constant(values));
    expectIntervals({{9, 11}}, found(std::vector<double>(40, 1.0)));
}

void expectTimesOf(const QList<QPointF> &points, const Intervals &intervals)
{
    if (intervals.hasError()) {
        EXPECT_EQ(QStringLiteral("Start is greater than end"), intervals.error().message());
        return;
    }
    const auto isTime = [&](double time) {
        return std::any_of(points.cbegin(), points.cend(), [&](const QPointF &point) {
            return point.x() == time || (std::isnan(point.x()) && std::isnan(time));
        });
    };
    for (const Interval<double> &interval : intervals.value()) {
        EXPECT_TRUE(isTime(interval.start));
        EXPECT_TRUE(isTime(interval.end));
    }
}

TEST_F(XicBaselineLimitsDetectorTest, NonFiniteAndNegativeIntensitiesAndTimesGiveTimesOfThePointsOrAnError)
{
    XicBaselineLimitsDetectorOptions options = plainOptions(Network::identity());
    options.smoothingPassCount = 2;
    initialise(options);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double odd : {nan, infinity, -infinity, -1e300, 1e300, 0.0}) {
        for (const int count : {1, 2, 40, LENGTH, LENGTH + 50}) {
            QList<QPointF> points = Network::chromatogram(std::vector<double>(count, 1.0));
            points[count / 2].setY(odd);
            expectTimesOf(points, detector.integrateXIC(points, 100.0, 0));
            expectTimesOf(points, detector.integrateXIC(points));
            points[count / 3].setX(odd);
            expectTimesOf(points, detector.integrateXIC(points, odd, 0));
            expectTimesOf(points, detector.integrateXIC(points));
        }
    }
}

TEST_F(XicBaselineLimitsDetectorTest, OperationsWithoutAnOutputAreTagged)
{
    const MessageRecorder silence;
    GraphDefBuilder noInput;
    noInput.noOp(Network::INPUT).constant(Network::OUTPUT, {1}, {1.0F}).noOp("init");
    initialise(noInput);
    expectFailure(Failure, QString(), {"XicBaselineLimitsDetector:149"}, found(markedAt({3, 4})));
    GraphDefBuilder noOutput;
    noOutput.placeholder(Network::INPUT, {{-1, 1, 1}}).noOp(Network::OUTPUT).noOp("init");
    initialise(noOutput);
    expectFailure(Failure, QString(), {"XicBaselineLimitsDetector:152"}, found(markedAt({3, 4})));
}

TEST_F(XicBaselineLimitsDetectorTest, RefusedPointCountsInForceFindNothing)
{
    for (const int count : {0, -1, -5, std::numeric_limits<int>::min()}) {
        initialise();
        XicBaselineLimitsDetectorOptions refused = plainOptions(Network::identity());
        refused.maxPointCount = count;
        EXPECT_TRUE(detector.init(refused).equals(InvalidInput));
        expectIntervals({}, found(markedAt({3, 4, 5})));
        expectIntervals({}, detector.integrateXIC(Network::chromatogram(markedAt({3, 4, 5}))));
        refused.minPointCount = -10;
        EXPECT_TRUE(detector.init(refused).equals(InvalidInput));
        const Intervals intervals = found(markedAt({3, 4, 5}));
        expectFailure(InvalidInput, intervals.error().message(), {"XicBaselineLimitsDetector:436"},
                      inside().processPrediction({}, Network::chromatogram({1, 2})));
        EXPECT_TRUE(intervals.hasError());
    }
}

TEST_F(XicBaselineLimitsDetectorTest, MillionPointsAreThinnedAndDetected)
{
    initialise();
    std::vector<double> trace(1000000, 0.01);
    trace[700000] = trace[700001] = 1.0;
    expectIntervals({{52, 54}}, found(trace));
}

} // namespace
} // namespace zav
