// SPDX-License-Identifier: Apache-2.0
#include <zav/XicBaselineLimitsDetector.h>

#include "MessageRecorder.h"
#include "Trail.h"
#include "XicBaselineLimitsDetectorFixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zav {
namespace {

// The network path

TEST_F(XicBaselineLimitsDetectorTest, NoPointsGiveNoIntervals)
{
    initialise();
    expectIntervals({}, detector.integrateXIC({}, NO_HINT, 0));
    expectIntervals({}, detector.integrateXIC({}));
}

TEST_F(XicBaselineLimitsDetectorTest, NoPointsAreNotShownToTheNetwork)
{
    GraphDefBuilder unrunnable;
    unrunnable.placeholder(Network::INPUT, {{-1, 1, 1}}).placeholder("unfed", {{1}});
    unrunnable.identity(Network::OUTPUT, "unfed").noOp("init");
    initialise(unrunnable);
    expectIntervals({}, detector.integrateXIC({}, NO_HINT, 0));
    expectFailure(Failure, QString(), {"XicBaselineLimitsDetector:156"}, found({1.0}));
}

TEST_F(XicBaselineLimitsDetectorTest, MinPointCountOrFewerPointsGiveNoIntervals)
{
    XicBaselineLimitsDetectorOptions options = plainOptions(Network::identity());
    options.minPointCount = 5;
    initialise(options);
    expectIntervals({}, found({0, 1, 1, 1, 0}, 101.0));
    expectIntervals({{0, 3}}, found({0, 1, 1, 1, 0, 0}));
}

TEST_F(XicBaselineLimitsDetectorTest, MinPointCountIsLookedAtAfterTheNetworkRan)
{
    GraphDefBuilder graph;
    graph.placeholder(Network::INPUT, {{-1, 1, 1}}).placeholder("unfed", {{1}});
    graph.identity(Network::OUTPUT, "unfed").noOp("init");
    initialise(graph);
    expectFailure(Failure, QString(), {"XicBaselineLimitsDetector:156"}, found({0.0, 1.0}));
}

TEST_F(XicBaselineLimitsDetectorTest, ClusterStartsOneIndexEarly)
{
    initialise();
    expectIntervals({{2, 5}, {19, 22}}, found(markedAt({3, 4, 5, 20, 21, 22})));
}

TEST_F(XicBaselineLimitsDetectorTest, ClusterThatBeginsAtIndexZeroStartsAtOne)
{
    initialise();
    expectIntervals({{1, 2}}, found(markedAt({0, 1, 2})));
}

TEST_F(XicBaselineLimitsDetectorTest, FinalClusterIsLostWhenTheLastSelectedPointIsNoise)
{
    initialise();
    expectIntervals({{2, 5}}, found(markedAt({3, 4, 5, 20, 21, 22, 30})));
    expectIntervals({}, found(markedAt({3, 4, 5, 30})));
}

TEST_F(XicBaselineLimitsDetectorTest, NoiseElsewhereIsSkipped)
{
    initialise();
    expectIntervals({{2, 5}, {19, 22}}, found(markedAt({3, 4, 5, 12, 20, 21, 22})));
}

TEST_F(XicBaselineLimitsDetectorTest, ClusterThatTheFinalRowOpensIsNotEmitted)
{
    XicBaselineLimitsDetectorOptions options = plainOptions(Network::identity());
    options.dbscanMinPoints = 1;
    initialise(options);
    expectIntervals({{2, 5}}, found(markedAt({3, 4, 5, 20})));
}

TEST_F(XicBaselineLimitsDetectorTest, LoneSelectedPointThatIsAClusterReachesNoIndexOutsideTheList)
{
    XicBaselineLimitsDetectorOptions options = plainOptions(Network::identity());
    options.dbscanMinPoints = 1;
    initialise(options);
    expectIntervals({}, found(markedAt({20})));
}

TEST_F(XicBaselineLimitsDetectorTest, LoneFirstPointThatIsAClusterFailsTheWholeCall)
{
    XicBaselineLimitsDetectorOptions options = plainOptions(Network::identity());
    options.dbscanMinPoints = 1;
    initialise(options);
    // It starts at 1, as every cluster that begins at 0, and ends at 0.
    expectFailure(InvalidInput, QStringLiteral("Start is greater than end"),
                  {"XicBaselineLimitsDetector:450", "XicBaselineLimitsDetector:166"}, found(markedAt({0, 20, 21, 22})));
}

TEST_F(XicBaselineLimitsDetectorTest, OnePointReachesNoIndexOutsideTheList)
{
    XicBaselineLimitsDetectorOptions options = plainOptions(Network::constant({1.0F, 1.0F, 1.0F}));
    options.minPointCount = 0;
    options.dbscanMinPoints = 1;
    initialise(options);
    expectIntervals({}, found({1.0}));
    expectIntervals({{1, 1}}, found({1.0, 1.0}));
}

TEST_F(XicBaselineLimitsDetectorTest, ProbabilityAtTheThresholdCountsAndBelowItDoesNot)
{
    initialise(); // threshold 0.5
    expectIntervals({{2, 5}}, found({0, 0, 0, 0.5, 1, 0.5, 0.49, 0, 0}));
}

TEST_F(XicBaselineLimitsDetectorTest, ProbabilitiesAllBelowTheThresholdGiveAnEmptyListNotAnError)
{
    initialise(Network::constant(std::vector<float>(LENGTH, 0.49F)));
    expectIntervals({}, found(markedAt({3, 4, 5})));
}

TEST_F(XicBaselineLimitsDetectorTest, AllIntensitiesZeroFindNothing)
{
    initialise();
    expectIntervals({}, found(std::vector<double>(20, 0.0)));
    const Result<Eigen::VectorXf> input =
        inside().buildInputVector(Network::chromatogram(std::vector<double>(20, 0.0)), inside().smoothingKernel);
    ASSERT_FALSE(input.hasError());
    EXPECT_EQ(0.0F, input.value()[0]) << "divided by the smallest normal double, not by zero";
    EXPECT_EQ(-std::numeric_limits<float>::infinity(), input.value()[20]) << "the padding over that divisor";
}

TEST_F(XicBaselineLimitsDetectorTest, InputIsRoundedToFloatAndDividedByTheLargestThatIsANumber)
{
    initialise();
    const auto inputOf = [&](const std::vector<double> &intensities) {
        return inside().buildInputVector(Network::chromatogram(intensities), inside().smoothingKernel).value();
    };
    EXPECT_EQ(1.0F, inputOf({16777216, 16777217})[0]); // the same float
    EXPECT_EQ(0.5F, inputOf({std::numeric_limits<double>::quiet_NaN(), 1, 2})[1]);
    EXPECT_EQ(0.5F, inputOf({5e-12, 1e-11})[0]);
    EXPECT_EQ(std::numeric_limits<float>::infinity(), inputOf({0, 1e-13})[1]); // over the smallest normal double
}

TEST_F(XicBaselineLimitsDetectorTest, ExactlyMaxPointCountPointsAreNotThinned)
{
    initialise();
    std::vector<double> trace(LENGTH, 0.01);
    trace[100] = trace[101] = 1.0;
    expectIntervals({{99, 101}}, found(trace));
}

TEST_F(XicBaselineLimitsDetectorTest, ThinnedIndicesAreReadOnTheCallersList)
{
    initialise();
    std::vector<double> trace(LENGTH + 1, 0.01);
    trace[150] = trace[151] = 1.0;
    // 56 of 257 points stay: the first 53 low ones, the two high ones at 53 and 54, and the last.
    expectIntervals({{52, 54}}, found(trace));
}

TEST_F(XicBaselineLimitsDetectorTest, PaddingOfMinusOneIsSmoothedWithTheIntensities)
{
    XicBaselineLimitsDetectorOptions options = plainOptions(Network::identity());
    options.smoothingPassCount = 1;
    options.gaussianFilterSize = 3;
    initialise(options);
    const Result<Eigen::VectorXf> input =
        inside().buildInputVector(Network::chromatogram({1, 1, 1, 1}), inside().smoothingKernel);
    ASSERT_FALSE(input.hasError());
    ASSERT_EQ(LENGTH, input.value().size());
    const double side = std::exp(-1.0 / 32.0) / (1.0 + 2.0 * std::exp(-1.0 / 32.0));
    EXPECT_NEAR(1.0, input.value()[2], 1e-6);
    EXPECT_NEAR(1.0 - 2.0 * side, input.value()[3], 1e-6);
    EXPECT_NEAR(-1.0 + 2.0 * side, input.value()[4], 1e-6);
    EXPECT_NEAR(-1.0, input.value()[5], 1e-6);
}

TEST_F(XicBaselineLimitsDetectorTest, PointsThatCannotBeThinnedGiveAnEmptyVectorNotAnError)
{
    inside().options.maxPointCount = -1;
    const Result<Eigen::VectorXf> input = inside().buildInputVector(Network::chromatogram({1, 2, 3}), {});
    ASSERT_FALSE(input.hasError());
    EXPECT_EQ(0, input.value().size());
}

TEST_F(XicBaselineLimitsDetectorTest, DescendingTimesAreInvalidInput)
{
    initialise();
    QList<QPointF> points = Network::chromatogram(markedAt({3, 4, 5}));
    for (QPointF &point : points)
        point.setX(-point.x());
    const Intervals clustered = detector.integrateXIC(points, NO_HINT, 0);
    expectFailure(InvalidInput, QStringLiteral("Start is greater than end"),
                  {"XicBaselineLimitsDetector:450", "XicBaselineLimitsDetector:166"}, clustered);
    EXPECT_EQ((QStringList{"ErrorUtils::belowThreshold in common/core_mini/src/algo/ErrorUtils",
                           "XicBaselineLimitsDetector::Private::processPrediction in ml/src/XicBaselineLimitsDetector",
                           "XicBaselineLimitsDetector::Private::integrateXIC in ml/src/XicBaselineLimitsDetector"}),
              trailOf(clustered.error()));
    expectFailure(InvalidInput, QStringLiteral("Start is greater than end"), {"XicBaselineLimitsDetector:373"},
                  detector.integrateXIC(points));
}

TEST_F(XicBaselineLimitsDetectorTest, EqualTimesAreAccepted)
{
    initialise();
    const QList<QPointF> points(20, QPointF(7.0, 1.0));
    const Intervals intervals = detector.integrateXIC(points, NO_HINT, 0);
    ASSERT_FALSE(intervals.hasError());
    ASSERT_EQ(1, intervals.value().size());
    EXPECT_EQ(7.0, intervals.value()[0].start);
    const QList<QPointF> hill{{7.0, 1.0}, {7.0, 3.0}, {7.0, 2.0}, {7.0, 1.0}};
    EXPECT_FALSE(detector.integrateXIC(hill).hasError());
}

TEST_F(XicBaselineLimitsDetectorTest, EmptyProbabilityVectorIsAFailureOfTheClustering)
{
    const Result<QList<Interval<int>>> clusters = inside().clusterPrediction({});
    ASSERT_TRUE(clusters.hasError());
    EXPECT_EQ(QStringLiteral("Empty Probability Vector"), clusters.error().message());
    EXPECT_TRUE(clusters.error().equals(Failure));
    EXPECT_EQ(QStringLiteral("XicBaselineLimitsDetector:530"), linesOf(clusters.error()).last());
}

TEST_F(XicBaselineLimitsDetectorTest, PredictionThatCannotBeThresholdedIsTagged)
{
    const Intervals empty = inside().processPrediction({}, Network::chromatogram({1, 2}));
    expectFailure(InvalidInput, empty.error().message(), {"XicBaselineLimitsDetector:436"}, empty);
}

TEST_F(XicBaselineLimitsDetectorTest, MinPointCountIsHandedToTheThresholding)
{
    inside().options.minPointCount = -10;
    const Intervals refused = inside().processPrediction(Eigen::VectorXf::Ones(2), Network::chromatogram({1, 2}));
    expectFailure(InvalidInput, QStringLiteral("Negative minimum point count -10"), {"XicBaselineLimitsDetector:436"},
                  refused);
}

TEST_F(XicBaselineLimitsDetectorTest, HighestProbabilityAtTheThresholdIsClustered)
{
    inside().options.probabilityTolerance = 0.0;
    const Result<QList<Interval<int>>> clusters = inside().clusterPrediction(Eigen::VectorXf::Ones(3));
    ASSERT_FALSE(clusters.hasError());
    ASSERT_EQ(1, clusters.value().size());
    EXPECT_EQ(2, clusters.value()[0].end);
}

TEST_F(XicBaselineLimitsDetectorTest, ClustersNeedAProbabilityAtTheThreshold)
{
    inside().options.probabilityTolerance = 0.01;
    const Result<QList<Interval<int>>> clusters = inside().clusterPrediction(Eigen::VectorXf::Constant(3, 0.95F));
    ASSERT_FALSE(clusters.hasError());
    EXPECT_TRUE(clusters.value().isEmpty());
}

TEST_F(XicBaselineLimitsDetectorTest, SelectionNeedsMoreThanNineTenths)
{
    inside().options.probabilityTolerance = 0.5;
    const Eigen::VectorXf probabilities = (Eigen::VectorXf(6) << 0.9F, 0.95F, 0.95F, 0.89F, 0.0F, 0.0F).finished();
    const Result<QList<Interval<int>>> clusters = inside().clusterPrediction(probabilities);
    ASSERT_FALSE(clusters.hasError());
    ASSERT_EQ(1, clusters.value().size());
    // 0.9 as a float lies just below 0.9 as a double.
    EXPECT_EQ(0, clusters.value()[0].start);
    EXPECT_EQ(2, clusters.value()[0].end);
}

TEST_F(XicBaselineLimitsDetectorTest, SelectionNeedsNoMoreThanTheNextFloatAboveNineTenths)
{
    const float next = std::nextafter(0.9F, 1.0F);
    const Eigen::VectorXf probabilities = (Eigen::VectorXf(6) << 0.0F, 0.0F, next, next, 0.9F, 0.0F).finished();
    const Result<QList<Interval<int>>> clusters = inside().clusterPrediction(probabilities);
    ASSERT_FALSE(clusters.hasError());
    ASSERT_EQ(1, clusters.value().size());
    EXPECT_EQ(1, clusters.value()[0].start);
    EXPECT_EQ(3, clusters.value()[0].end);
}

// The amplified retry: 1000 at index 10, and a hint on a peak that grows tenfold each time.

std::vector<double> faintPeak(double height)
{
    std::vector<double> trace(40, 0.0);
    trace[10] = trace[11] = 1000.0;
    trace[30] = trace[31] = height;
    return trace;
}

TEST_F(XicBaselineLimitsDetectorTest, HintInsideAnIntervalNeedsNoRetry)
{
    initialise();
    expectIntervals({{9, 11}}, found(faintPeak(60.0), Network::timeOf(10)));
    expectIntervals({{9, 11}}, found(faintPeak(60.0), Network::timeOf(9))); // both ends belong to it
    expectIntervals({{9, 11}}, found(faintPeak(60.0), Network::timeOf(11)));
}

TEST_F(XicBaselineLimitsDetectorTest, HintOutsideEveryIntervalAmplifiesTenfoldAndClips)
{
    initialise();
    expectIntervals({{9, 11}, {29, 31}}, found(faintPeak(60.0), Network::timeOf(30)));
}

TEST_F(XicBaselineLimitsDetectorTest, OneRetryAmplifiesTenfoldAndNoMore)
{
    initialise();
    // Probabilities of 0.4 and 0.5 after the one retry that a depth of 2 allows.
    expectIntervals({{9, 11}}, found(faintPeak(40.0), Network::timeOf(30), 2));
    expectIntervals({{9, 11}, {29, 31}}, found(faintPeak(50.0), Network::timeOf(30), 2));
}

TEST_F(XicBaselineLimitsDetectorTest, LastRetryIsTheResultThoughItMissesTheHint)
{
    initialise();
    for (const double height : {60.0, 6.0, 0.6})
        expectIntervals({{9, 11}, {29, 31}}, found(faintPeak(height), Network::timeOf(20)));
}

TEST_F(XicBaselineLimitsDetectorTest, HintAboveMinusOneSwitchesTheRetryOn)
{
    initialise();
    for (const double hint : {std::nextafter(-1.0, 0.0), -0.5, 0.0, 0.25, 0.5, 1.0})
        expectIntervals({{9, 11}, {29, 31}}, found(faintPeak(60.0), hint));
}

TEST_F(XicBaselineLimitsDetectorTest, AtMostThreeRetries)
{
    initialise();
    expectIntervals({{9, 11}, {29, 31}}, found(faintPeak(0.6), Network::timeOf(30)));
    expectIntervals({{9, 11}}, found(faintPeak(0.06), Network::timeOf(30)));
}

TEST_F(XicBaselineLimitsDetectorTest, RetriesAlreadyDoneCount)
{
    initialise();
    expectIntervals({{9, 11}, {29, 31}}, found(faintPeak(60.0), Network::timeOf(30), 2));
    expectIntervals({{9, 11}}, found(faintPeak(6.0), Network::timeOf(30), 2));
    expectIntervals({{9, 11}}, found(faintPeak(60.0), Network::timeOf(30), 3));
    expectIntervals({{9, 11}}, found(faintPeak(60.0), Network::timeOf(30), 100));
}

TEST_F(XicBaselineLimitsDetectorTest, RetryDepthBelowZeroCountsAsZero)
{
    initialise();
    for (const int depth : {-1, std::numeric_limits<int>::min()}) {
        expectIntervals({{9, 11}, {29, 31}}, found(faintPeak(0.6), Network::timeOf(30), depth));
        expectIntervals({{9, 11}}, found(faintPeak(0.06), Network::timeOf(30), depth));
    }
}

TEST_F(XicBaselineLimitsDetectorTest, IntensityThatIsNoNumberDoesNotDecideWhereAmplificationClips)
{
    initialise();
    for (const int index : {0, 5, 39}) {
        std::vector<double> trace = faintPeak(60.0);
        trace[index] = std::numeric_limits<double>::quiet_NaN();
        expectIntervals({{9, 11}, {29, 31}}, found(trace, Network::timeOf(30)));
    }
}

TEST_F(XicBaselineLimitsDetectorTest, HintOfMinusOneOrLessOrNaNSwitchesTheRetryOff)
{
    initialise();
    for (const double hint :
         {-1.0, -2.0, -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
        expectIntervals({{9, 11}}, found(faintPeak(60.0), hint));
}

TEST_F(XicBaselineLimitsDetectorTest, FailureOfARetryIsTagged)
{
    initialise();
    // Amplified, the faint peak appears, with descending times.
    QList<QPointF> points = Network::chromatogram(faintPeak(60.0));
    std::swap(points[29].rx(), points[31].rx());
    expectFailure(InvalidInput, QStringLiteral("Start is greater than end"),
                  {"XicBaselineLimitsDetector:450", "XicBaselineLimitsDetector:166", "XicBaselineLimitsDetector:194"},
                  detector.integrateXIC(points, 1.0, 0));
}

// The walk

TEST_F(XicBaselineLimitsDetectorTest, WalkGivesTheFirstPointForEachMaximumOfHeightZero)
{
    initialise();
    const QList<QPointF> points = Network::chromatogram({-0.5, 0, -0.5, 0, -0.5, 0, 1, 0, -0.5});
    expectIntervals({{5, 7}, {0, 0}, {0, 0}}, detector.integrateXIC(points));
}

TEST_F(XicBaselineLimitsDetectorTest, WalkGivesTheHighestPeakFirst)
{
    XicBaselineLimitsDetectorOptions options = plainOptions(Network::identity());
    options.limitThreshold = 0.05;
    initialise(options);
    expectIntervals({{6, 10}, {1, 5}},
                    detector.integrateXIC(Network::chromatogram({0, 0, 1, 2, 1, 0, 0, 2, 4, 2, 0, 0, 0})));
}

TEST_F(XicBaselineLimitsDetectorTest, WalkThatRunsIntoThePaddingEndsAtTheLastPoint)
{
    initialise();
    // Nothing falls under the threshold before the padding does, behind the last point.
    expectIntervals({{0, 4}}, detector.integrateXIC(Network::chromatogram({0, 1, 0.9, 0.8, 0.7})));
}

TEST_F(XicBaselineLimitsDetectorTest, WalkThatStartsBehindTheLastPointIsDropped)
{
    XicBaselineLimitsDetectorOptions options = plainOptions(Network::identity());
    options.smoothingPassCount = 1;
    options.limitThreshold = 0.99;
    initialise(options);
    // Divided by their highest, -0.2, all points are at least 1 and the padding of -1 is 5: the smoothed vector rises
    // until it is all padding, and the walk from there ends one step to the left, behind the list. The other maximum is
    // that of the third point.
    expectIntervals({{0, 3}}, detector.integrateXIC(Network::chromatogram({-0.5, -0.2, -0.5, -0.4, -0.5, -0.4})));
}

TEST_F(XicBaselineLimitsDetectorTest, WalkRunsNoNetwork)
{
    initialise(Network::constant({}, {0}));
    expectIntervals({{0, 2}}, detector.integrateXIC(Network::chromatogram({0, 1, 0, 0, 0, 0})));
}

} // namespace
} // namespace zav
