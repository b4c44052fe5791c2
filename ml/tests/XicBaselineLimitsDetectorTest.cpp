// SPDX-License-Identifier: Apache-2.0
#include "XicBaselineLimitsDetector.h"

#include "ChromatogramNetwork.h"
#include "MessageRecorder.h"
#include "NaiveChromatogram.h"
#include "Trail.h"
#include "XicBaselineLimitsDetector_p.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace zav {

/// The unit tests' view of Private.
class XicBaselineLimitsDetectorInspector
{
public:
    using Private = XicBaselineLimitsDetector::Private;
    static Private &of(XicBaselineLimitsDetector &detector) { return *detector.d; }
};

namespace {

using Network = ChromatogramNetwork;
using Intervals = Result<QList<Interval<double>>>;

constexpr double NO_HINT = -1.0;
constexpr int LENGTH = 256;

QStringList linesOf(const Error &error)
{
    QStringList lines;
    for (const CaughtAt &place : error.trail())
        lines.append(place.sourceFile.section(QLatin1Char('/'), -1) + QLatin1Char(':') + QString::number(place.line));
    return lines;
}

class XicBaselineLimitsDetectorTest : public ::testing::Test
{
protected:
    /// Raw intensities, so that the network's probabilities are the intensities over their maximum.
    XicBaselineLimitsDetectorOptions plainOptions(const GraphDefBuilder &graph)
    {
        XicBaselineLimitsDetectorOptions options;
        options.modelFilePath = network.write(graph);
        options.maxPointCount = LENGTH;
        options.smoothingPassCount = 0;
        options.probabilityTolerance = 0.5;
        return options;
    }

    void initialise(const XicBaselineLimitsDetectorOptions &options)
    {
        const Error error = detector.init(options);
        ASSERT_FALSE(error.hasError()) << error.toString().toStdString();
    }

    void initialise(const GraphDefBuilder &graph = Network::identity()) { initialise(plainOptions(graph)); }

    Intervals found(const std::vector<double> &intensities, double hint = NO_HINT, int retryDepth = 0)
    {
        return detector.integrateXIC(Network::chromatogram(intensities), hint, retryDepth);
    }

    XicBaselineLimitsDetectorInspector::Private &inside() { return XicBaselineLimitsDetectorInspector::of(detector); }

    Network network;
    XicBaselineLimitsDetector detector;
};

/// 1 at the indices, 0 elsewhere.
std::vector<double> markedAt(const std::vector<int> &indices, int size = 40)
{
    std::vector<double> values(size, 0.0);
    for (const int index : indices)
        values[index] = 1.0;
    return values;
}

void expectIntervals(const std::vector<std::pair<int, int>> &expected, const Intervals &actual)
{
    ASSERT_FALSE(actual.hasError()) << actual.error().toString().toStdString();
    ASSERT_EQ(static_cast<qsizetype>(expected.size()), actual.value().size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(Network::timeOf(expected[i].first), actual.value()[i].start) << "interval " << i;
        EXPECT_EQ(Network::timeOf(expected[i].second), actual.value()[i].end) << "interval " << i;
    }
}

void expectFailure(ErrorCode code, const QString &message, const QStringList &lines, const Intervals &actual)
{
    ASSERT_TRUE(actual.hasError());
    EXPECT_EQ(code, actual.error().code());
    EXPECT_EQ(message, actual.error().message());
    const QStringList all = linesOf(actual.error());
    EXPECT_EQ(lines, all.mid(all.size() - lines.size())) << actual.error().toString();
}

// Lifecycle

TEST_F(XicBaselineLimitsDetectorTest, FreshDetectorFailsInBothOverloads)
{
    const Intervals withNetwork = found({1, 2, 3}, NO_HINT);
    expectFailure(Failure, QString(), {"XicBaselineLimitsDetector:135"}, withNetwork);
    EXPECT_EQ((QStringList{"ErrorUtils::equal in common/core_mini/src/algo/ErrorUtils",
                           "XicBaselineLimitsDetector::Private::integrateXIC in ml/src/XicBaselineLimitsDetector"}),
              trailOf(withNetwork.error()));
    const Intervals walked = detector.integrateXIC(Network::chromatogram({1, 2, 3}));
    expectFailure(Failure, QString(), {"XicBaselineLimitsDetector:340"}, walked);
}

TEST_F(XicBaselineLimitsDetectorTest, FreshDetectorFailsBeforeItLooksAtThePoints)
{
    EXPECT_TRUE(detector.integrateXIC({}, NO_HINT, 0).hasError());
    EXPECT_TRUE(detector.integrateXIC({}).hasError());
}

TEST_F(XicBaselineLimitsDetectorTest, RefusedOptionsAreTaggedStoredAndLeaveItUnusable)
{
    XicBaselineLimitsDetectorOptions options = plainOptions(Network::identity());
    options.dbscanEpsilon = 0.0;
    options.minPointCount = 17;
    const Error error = detector.init(options);
    EXPECT_TRUE(error.equals(InvalidInput));
    EXPECT_EQ(QStringList{"XicBaselineLimitsDetector:79"}, linesOf(error).mid(linesOf(error).size() - 1));
    EXPECT_EQ(17, inside().options.minPointCount);
    EXPECT_FALSE(inside().initialised);
    EXPECT_TRUE(found({1, 2, 3}).hasError());
}

TEST_F(XicBaselineLimitsDetectorTest, UnreadableNetworkIsTaggedAndLeavesItUnusable)
{
    XicBaselineLimitsDetectorOptions options = plainOptions(Network::identity());
    options.modelFilePath = QStringLiteral("no such file.pb");
    testing::internal::CaptureStderr();
    const Error error = detector.init(options);
    EXPECT_NE(std::string::npos, testing::internal::GetCapturedStderr().find("Unable to open file: no such file.pb\n"));
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_EQ(QStringLiteral("XicBaselineLimitsDetector:81"), linesOf(error).last());
    EXPECT_FALSE(inside().initialised);
}

TEST_F(XicBaselineLimitsDetectorTest, SecondInitReplacesOptionsAndKernel)
{
    XicBaselineLimitsDetectorOptions options = plainOptions(Network::identity());
    options.gaussianFilterSize = 3;
    initialise(options);
    EXPECT_EQ(3, inside().smoothingKernel.size());
    options.gaussianFilterSize = 7;
    initialise(options);
    ASSERT_EQ(7, inside().smoothingKernel.size());
    const std::vector<double> expected = naive::gaussian(7, 4.0);
    for (int i = 0; i < 7; ++i)
        EXPECT_NEAR(expected[i], inside().smoothingKernel[6 - i], 1e-15);
}

TEST_F(XicBaselineLimitsDetectorTest, FailingSecondInitLeavesItInitialisedWithTheNewOptions)
{
    initialise();
    XicBaselineLimitsDetectorOptions refused = plainOptions(Network::identity());
    refused.limitThreshold = 1.0;
    EXPECT_TRUE(detector.init(refused).hasError());
    EXPECT_TRUE(inside().initialised);
    EXPECT_EQ(1.0, inside().options.limitThreshold);
    expectIntervals({{2, 5}}, found(markedAt({3, 4, 5}))); // the network is still the old one
}

TEST_F(XicBaselineLimitsDetectorTest, WithoutANetworkAfterAFailedReloadItFailsAtTheInputTensor)
{
    initialise();
    XicBaselineLimitsDetectorOptions missing = plainOptions(Network::identity());
    missing.modelFilePath = QStringLiteral("no such file.pb");
    testing::internal::CaptureStderr();
    EXPECT_TRUE(detector.init(missing).hasError());
    testing::internal::GetCapturedStderr();
    const MessageRecorder silence;
    expectFailure(Failure, QString(), {"XicBaselineLimitsDetector:149"}, found(markedAt({3, 4, 5})));
}

// The network path

TEST_F(XicBaselineLimitsDetectorTest, NoPointsGiveNoIntervals)
{
    initialise();
    expectIntervals({}, detector.integrateXIC({}, NO_HINT, 0));
    expectIntervals({}, detector.integrateXIC({}));
}

TEST_F(XicBaselineLimitsDetectorTest, MinPointCountOrFewerPointsGiveNoIntervals)
{
    XicBaselineLimitsDetectorOptions options = plainOptions(Network::identity());
    options.minPointCount = 5;
    initialise(options);
    expectIntervals({}, found({0, 1, 1, 1, 0}, 101.0));
    expectIntervals({{0, 3}}, found({0, 1, 1, 1, 0, 0}));
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
    expectFailure(InvalidInput, QStringLiteral("Start is greater than end"),
                  {"XicBaselineLimitsDetector:450", "XicBaselineLimitsDetector:166"},
                  detector.integrateXIC(points, NO_HINT, 0));
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
    initialise(options);
    // The points lie below the padding of -1, so that the smoothed vector is highest where the list has ended.
    const Intervals intervals = detector.integrateXIC(Network::chromatogram({-900, -400, -900, -500, -900, -800}));
    ASSERT_FALSE(intervals.hasError());
    for (const Interval<double> &interval : intervals.value())
        EXPECT_LE(interval.end, Network::timeOf(5));
}

TEST_F(XicBaselineLimitsDetectorTest, WalkRunsNoNetwork)
{
    initialise(Network::constant({}, {0}));
    expectIntervals({{0, 2}}, detector.integrateXIC(Network::chromatogram({0, 1, 0, 0, 0, 0})));
}

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

TEST_F(XicBaselineLimitsDetectorTest, NonFiniteAndNegativeIntensitiesAndTimesAreTaken)
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
            static_cast<void>(detector.integrateXIC(points, 100.0, 0));
            static_cast<void>(detector.integrateXIC(points));
            points[count / 3].setX(odd);
            static_cast<void>(detector.integrateXIC(points, odd, 0));
            static_cast<void>(detector.integrateXIC(points));
        }
    }
    expectIntervals({{1, 39}}, [&] {
        XicBaselineLimitsDetectorOptions plain = plainOptions(Network::identity());
        EXPECT_FALSE(detector.init(plain).hasError());
        return found(std::vector<double>(40, 1.0));
    }());
}

TEST_F(XicBaselineLimitsDetectorTest, MillionPointsAreThinnedAndDetected)
{
    initialise();
    std::vector<double> trace(1000000, 0.01);
    trace[700000] = trace[700001] = 1.0;
    expectIntervals({{52, 54}}, found(trace));
}

// Against the naive implementation, on random traces

std::vector<double> randomTrace(std::mt19937 &random)
{
    const int size = std::uniform_int_distribution(1, 400)(random);
    std::vector<double> trace(size, 0.0);
    std::exponential_distribution<double> noise(50.0);
    for (double &value : trace)
        value = noise(random);
    const int peaks = std::uniform_int_distribution(0, 5)(random);
    for (int peak = 0; peak < peaks; ++peak) {
        const double centre = std::uniform_real_distribution<>(0.0, size)(random);
        const double sigma = std::uniform_real_distribution<>(0.5, 12.0)(random);
        const double height = std::uniform_real_distribution<>(0.1, 1.0)(random);
        for (int i = 0; i < size; ++i)
            trace[i] += height * std::exp(-0.5 * std::pow((i - centre) / sigma, 2));
    }
    return trace;
}

XicBaselineLimitsDetectorOptions randomOptions(std::mt19937 &random, const QString &modelFilePath)
{
    XicBaselineLimitsDetectorOptions options;
    options.modelFilePath = modelFilePath;
    options.maxPointCount = std::uniform_int_distribution(203, 350)(random);
    options.probabilityTolerance = std::uniform_real_distribution<>(0.2, 0.9)(random);
    options.smoothingPassCount = std::uniform_int_distribution(0, 3)(random);
    options.gaussianFilterSize = std::uniform_int_distribution(1, 9)(random) | 1;
    options.dbscanEpsilon = std::uniform_real_distribution<>(0.5, 4.0)(random);
    options.dbscanMinPoints = std::uniform_int_distribution(1, 4)(random);
    options.minPointCount = std::uniform_int_distribution(0, 6)(random);
    options.limitThreshold = std::uniform_real_distribution<>(0.0, 0.5)(random);
    return options;
}

std::vector<float> naiveInput(const QList<QPointF> &points, const XicBaselineLimitsDetectorOptions &options)
{
    const QList<QPointF> kept =
        points.size() > options.maxPointCount ? naive::thinned(points, options.maxPointCount - 200) : points;
    return naive::inputVector(kept, options.maxPointCount, -1.0, options.smoothingPassCount,
                              options.gaussianFilterSize);
}

/// The intervals of the network path, for a network whose probabilities are its input.
std::vector<std::pair<int, int>> naiveNetworkPath(const QList<QPointF> &points,
                                                  const XicBaselineLimitsDetectorOptions &options)
{
    const std::vector<float> input = naiveInput(points, options);
    const int used = std::min<int>(options.maxPointCount, static_cast<int>(points.size()));
    std::vector<int> selected;
    for (int i = 0; used > options.minPointCount && i < used; ++i) {
        if (input[i] >= 1.0 - options.probabilityTolerance)
            selected.push_back(i);
    }
    std::vector<std::pair<int, int>> intervals;
    for (const auto &limits : naive::clusterLimits(selected, options.dbscanEpsilon, options.dbscanMinPoints)) {
        if (limits.start < points.size())
            intervals.emplace_back(limits.start, limits.end);
    }
    return intervals;
}

TEST_F(XicBaselineLimitsDetectorTest, NetworkPathAgreesWithANaiveImplementationOnRandomTraces)
{
    std::mt19937 random(20261121);
    const QString path = network.write(Network::identity());
    int intervalCount = 0;
    for (int round = 0; round < 40; ++round) {
        const XicBaselineLimitsDetectorOptions options = randomOptions(random, path);
        initialise(options);
        for (int repeat = 0; repeat < 50; ++repeat) {
            const QList<QPointF> points = Network::chromatogram(randomTrace(random));
            const auto expected = naiveNetworkPath(points, options);
            intervalCount += static_cast<int>(expected.size());
            // A cluster at index 0 of a single point would start behind its end.
            const bool inverted = std::any_of(expected.begin(), expected.end(),
                                              [](const auto &limits) { return limits.first > limits.second; });
            const Intervals actual = detector.integrateXIC(points, NO_HINT, 0);
            if (inverted) {
                EXPECT_TRUE(actual.error().equals(InvalidInput)) << "round " << round << " trace " << repeat;
                continue;
            }
            SCOPED_TRACE(testing::Message() << "round " << round << " trace " << repeat);
            ASSERT_NO_FATAL_FAILURE(expectIntervals(expected, actual));
        }
    }
    EXPECT_GT(intervalCount, 1000);
}

/// The intervals of the walk: again and again from the highest maximum that no interval covers yet.
std::vector<std::pair<int, int>> naiveWalk(const QList<QPointF> &points,
                                           const XicBaselineLimitsDetectorOptions &options)
{
    const std::vector<float> input = naiveInput(points, options);
    const auto height = [&](int i) { return std::trunc(input[i] * 10000.0F); };
    std::vector<int> maxima;
    for (int i = 1; i + 1 < static_cast<int>(input.size()); ++i) {
        if (height(i) > height(i - 1) && height(i) >= height(i + 1))
            maxima.push_back(i);
    }
    std::vector<std::pair<int, int>> intervals;
    const int last = static_cast<int>(points.size()) - 1;
    while (!maxima.empty()) {
        const int apex =
            *std::max_element(maxima.begin(), maxima.end(), [&](int a, int b) { return input[a] < input[b]; });
        const naive::IndexInterval limits = naive::walk(input, apex, options.limitThreshold);
        std::erase_if(maxima, [&](int m) { return m == apex || (limits.start <= m && m <= limits.end); });
        if (limits.start <= last)
            intervals.emplace_back(limits.start, std::min(limits.end, last));
    }
    return intervals;
}

TEST_F(XicBaselineLimitsDetectorTest, WalkAgreesWithANaiveImplementationOnRandomTraces)
{
    std::mt19937 random(1121);
    const QString path = network.write(Network::identity());
    int intervalCount = 0;
    for (int round = 0; round < 20; ++round) {
        const XicBaselineLimitsDetectorOptions options = randomOptions(random, path);
        initialise(options);
        for (int repeat = 0; repeat < 50; ++repeat) {
            const QList<QPointF> points = Network::chromatogram(randomTrace(random));
            const auto expected = naiveWalk(points, options);
            intervalCount += static_cast<int>(expected.size());
            SCOPED_TRACE(testing::Message() << "round " << round << " trace " << repeat);
            ASSERT_NO_FATAL_FAILURE(expectIntervals(expected, detector.integrateXIC(points)));
        }
    }
    EXPECT_GT(intervalCount, 1000);
}

} // namespace
} // namespace zav
