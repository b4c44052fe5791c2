// SPDX-License-Identifier: Apache-2.0
#include "XicPeakSplitter.h"

#include "ChromatogramNetwork.h"
#include "MessageRecorder.h"
#include "NaiveChromatogram.h"
#include "Trail.h"
#include "XicPeakSplitter_p.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace zav {

/// The unit tests' view of Private.
class XicPeakSplitterInspector
{
public:
    using Private = XicPeakSplitter::Private;
    static Private &of(XicPeakSplitter &splitter) { return *splitter.d; }
};

namespace {

using Network = ChromatogramNetwork;
using Splits = Result<QList<std::pair<double, double>>>;

constexpr int LENGTH = 256;

/// The lines of the trail that belong to the splitter.
QList<int> linesOf(const Error &error)
{
    QList<int> lines;
    for (const CaughtAt &place : error.trail()) {
        if (place.sourceFile == QStringLiteral("ml/src/XicPeakSplitter"))
            lines.append(place.line);
    }
    return lines;
}

class XicPeakSplitterTest : public ::testing::Test
{
protected:
    /// Raw intensities, so that the network's probabilities are the intensities over their maximum.
    XicPeakSplitterOptions plainOptions(const GraphDefBuilder &graph, double probabilityTolerance = 0.25)
    {
        XicPeakSplitterOptions options;
        options.modelFilePath = network.write(graph);
        options.maxPointCount = LENGTH;
        options.smoothingPassCount = 0;
        options.probabilityTolerance = probabilityTolerance;
        return options;
    }

    void initialise(const XicPeakSplitterOptions &options)
    {
        const Error error = splitter.init(options);
        ASSERT_FALSE(error.hasError()) << error.toString().toStdString();
    }

    /// With a network that always answers these probabilities, 0 behind them.
    void initialise(std::vector<float> probabilities, double probabilityTolerance = 0.25)
    {
        probabilities.resize(LENGTH, 0.0F);
        initialise(plainOptions(Network::constant(probabilities), probabilityTolerance));
    }

    Splits splitFlat(int size = 20) { return splitter.splitXIC(Network::chromatogram(std::vector<double>(size, 1.0))); }

    XicPeakSplitterInspector::Private &inside() { return XicPeakSplitterInspector::of(splitter); }

    Network network;
    XicPeakSplitter splitter;
};

void expectSplits(const std::vector<std::pair<int, float>> &expected, const Splits &actual)
{
    ASSERT_FALSE(actual.hasError()) << actual.error().toString().toStdString();
    ASSERT_EQ(static_cast<qsizetype>(expected.size()), actual.value().size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(Network::timeOf(expected[i].first), actual.value()[i].first) << "split " << i;
        EXPECT_EQ(static_cast<double>(expected[i].second), actual.value()[i].second) << "split " << i;
    }
}

void expectFailure(const QList<int> &lines, const Splits &actual)
{
    ASSERT_TRUE(actual.hasError());
    EXPECT_TRUE(actual.error().equals(Failure));
    EXPECT_TRUE(actual.error().message().isEmpty());
    EXPECT_EQ(lines, linesOf(actual.error())) << actual.error().toString();
}

// Lifecycle

TEST_F(XicPeakSplitterTest, FreshSplitterFailsWhateverThePoints)
{
    expectFailure({184}, splitFlat());
    expectFailure({184}, splitter.splitXIC({}));
    EXPECT_EQ((QStringList{"ErrorUtils::equal in common/core_mini/src/algo/ErrorUtils",
                           "XicPeakSplitter::Private::splitXIC in ml/src/XicPeakSplitter"}),
              trailOf(splitter.splitXIC({}).error()));
}

TEST_F(XicPeakSplitterTest, RefusedOptionsAreTaggedStoredAndLeaveItUnusable)
{
    XicPeakSplitterOptions options = plainOptions(Network::identity());
    options.maxPointCount = 200;
    const Error error = splitter.init(options);
    EXPECT_TRUE(error.equals(InvalidInput));
    EXPECT_EQ((QList<int>{62, 253}), linesOf(error));
    EXPECT_EQ(200, inside().options.maxPointCount);
    expectFailure({184}, splitFlat());
}

TEST_F(XicPeakSplitterTest, UnreadableNetworkIsTagged)
{
    XicPeakSplitterOptions options = plainOptions(Network::identity());
    options.modelFilePath = QStringLiteral("no such file.pb");
    testing::internal::CaptureStderr();
    const Error error = splitter.init(options);
    EXPECT_NE(std::string::npos, testing::internal::GetCapturedStderr().find("Unable to open file: no such file.pb\n"));
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_EQ((QList<int>{63, 253}), linesOf(error));
    EXPECT_FALSE(inside().initialised);
}

TEST_F(XicPeakSplitterTest, SecondInitReplacesTheKernelWhichIsTheMirroredFilter)
{
    XicPeakSplitterOptions options = plainOptions(Network::identity());
    options.gaussianFilterSize = 3;
    initialise(options);
    options.gaussianFilterSize = 9;
    initialise(options);
    const std::vector<double> filter = naive::gaussian(9, 4.0);
    ASSERT_EQ(9, inside().smoothingKernel.size());
    for (int i = 0; i < 9; ++i)
        EXPECT_NEAR(filter[8 - i], inside().smoothingKernel[i], 1e-15);
}

TEST_F(XicPeakSplitterTest, FailingSecondInitLeavesItInitialisedWithTheNewOptions)
{
    initialise({0.0F, 0.0F, 0.0F, 0.97F});
    XicPeakSplitterOptions refused = plainOptions(Network::identity(), 0.01);
    refused.gaussianFilterSize = 0;
    EXPECT_TRUE(splitter.init(refused).hasError());
    EXPECT_TRUE(inside().initialised);
    expectSplits({}, splitFlat()); // the tolerance of 0.01 is in force
}

TEST_F(XicPeakSplitterTest, WithoutANetworkAfterAFailedReloadItFailsAtTheInputTensor)
{
    initialise({0.0F, 0.97F});
    XicPeakSplitterOptions missing = plainOptions(Network::identity());
    missing.modelFilePath = QStringLiteral("no such file.pb");
    testing::internal::CaptureStderr();
    EXPECT_TRUE(splitter.init(missing).hasError());
    testing::internal::GetCapturedStderr();
    const MessageRecorder silence;
    expectFailure({204}, splitFlat());
}

// Inference

TEST_F(XicPeakSplitterTest, FewerThanFivePointsGiveAnEmptyListWithoutTheNetwork)
{
    initialise(plainOptions(Network::constant({}, {0})));
    for (int size = 0; size < 5; ++size)
        expectSplits({}, splitFlat(size));
    expectFailure({218}, splitFlat(5)); // from here on the network is asked
}

TEST_F(XicPeakSplitterTest, FivePointsAreNormalisedAndPaddedWithZeros)
{
    initialise(plainOptions(Network::identity(), 1.0));
    // Probabilities 0.25, 0.5, 0.25, 1, 0.5, and 0 behind them.
    expectSplits({{3, 1.0F}, {1, 0.5F}}, splitter.splitXIC(Network::chromatogram({1, 2, 1, 4, 2})));
}

TEST_F(XicPeakSplitterTest, ZeroPaddingTakesPartInTheSmoothing)
{
    XicPeakSplitterOptions options = plainOptions(Network::identity(), 1.0);
    options.smoothingPassCount = 1;
    options.gaussianFilterSize = 3;
    initialise(options);
    // A rising flank: smoothed, the last point loses a third to the zeros behind it and the one before leads.
    const double side = std::exp(-1.0 / 32.0) / (1.0 + 2.0 * std::exp(-1.0 / 32.0));
    const double top = 3.0 * side + 4.0 * (1.0 - 2.0 * side) + 5.0 * side;
    const double last = 4.0 * side + 5.0 * (1.0 - 2.0 * side);
    ASSERT_GT(top, last);
    expectSplits({{3, 1.0F}}, splitter.splitXIC(Network::chromatogram({1, 2, 3, 4, 5})));
}

TEST_F(XicPeakSplitterTest, AllZeroIntensitiesGiveAnAllZeroInputAndNoSplit)
{
    initialise(plainOptions(Network::identity(), 1.0));
    expectSplits({}, splitter.splitXIC(Network::chromatogram(std::vector<double>(20, 0.0))));
}

TEST_F(XicPeakSplitterTest, LongerChromatogramIsThinnedAndSplitTimesComeFromTheThinnedList)
{
    initialise(plainOptions(Network::identity(), 0.5));
    std::vector<double> trace(LENGTH + 30, 0.01);
    trace[150] = 1.0;
    trace[285] = 0.8;
    expectSplits({{150, 1.0F}, {285, 0.8F}}, splitter.splitXIC(Network::chromatogram(trace)));
}

TEST_F(XicPeakSplitterTest, CallersListStaysAsItIs)
{
    initialise(plainOptions(Network::identity()));
    const QList<QPointF> points = Network::chromatogram(std::vector<double>(LENGTH + 30, 1.0));
    const QList<QPointF> before = points;
    expectSplits({}, splitter.splitXIC(points));
    EXPECT_EQ(before, points);
}

TEST_F(XicPeakSplitterTest, MissingOperationsAreTagged)
{
    const MessageRecorder silence;
    GraphDefBuilder noInput;
    noInput.constant(Network::OUTPUT, {1}, {1.0F}).noOp("init");
    initialise(plainOptions(noInput));
    expectFailure({204}, splitFlat());
    GraphDefBuilder noOutput;
    noOutput.placeholder(Network::INPUT, {{-1, 1, 1}}).noOp("init");
    initialise(plainOptions(noOutput));
    expectFailure({210}, splitFlat());
}

TEST_F(XicPeakSplitterTest, InputOfAnotherLengthIsTagged)
{
    const MessageRecorder silence;
    GraphDefBuilder graph;
    graph.placeholder(Network::INPUT, {{-1, 1000, 1, 1}}).identity(Network::OUTPUT, Network::INPUT).noOp("init");
    initialise(plainOptions(graph));
    expectFailure({213}, splitFlat());
}

TEST_F(XicPeakSplitterTest, RunThatFailsIsTagged)
{
    GraphDefBuilder graph;
    graph.placeholder(Network::INPUT, {{-1, 1, 1}}).placeholder("unfed", {{1}});
    graph.identity(Network::OUTPUT, "unfed").noOp("init");
    initialise(plainOptions(graph));
    expectFailure({214}, splitFlat());
}

TEST_F(XicPeakSplitterTest, OutputOfAnotherTypeIsTagged)
{
    const MessageRecorder silence;
    GraphDefBuilder graph;
    graph.placeholder(Network::INPUT, {{-1, 1, 1}});
    graph.cast(Network::OUTPUT, Network::INPUT, GraphDefBuilder::FLOAT, GraphDefBuilder::INT32).noOp("init");
    initialise(plainOptions(graph));
    expectFailure({215}, splitFlat());
}

TEST_F(XicPeakSplitterTest, FewerProbabilitiesThanPointsAreAFailure)
{
    initialise(plainOptions(Network::constant(std::vector<float>(19, 0.0F))));
    expectFailure({218}, splitFlat(20));
    expectSplits({}, splitFlat(19));
}

// Split points

TEST_F(XicPeakSplitterTest, ClearMaximumIsASplitWithTheNetworksProbability)
{
    initialise({0.0F, 0.1F, 0.97F, 0.2F});
    expectSplits({{2, 0.97F}}, splitFlat());
}

TEST_F(XicPeakSplitterTest, ProbabilityAtTheThresholdIsKeptAndBelowItDropped)
{
    initialise({0.0F, 0.75F, 0.0F, 0.7499F, 0.0F});
    expectSplits({{1, 0.75F}}, splitFlat());
}

TEST_F(XicPeakSplitterTest, ThresholdIsComparedInDouble)
{
    initialise({0.0F, 0.95F, 0.0F}, 0.05); // 0.95 as a float lies just below 0.95 as a double
    expectSplits({}, splitFlat());
}

TEST_F(XicPeakSplitterTest, PlateauYieldsNoSplit)
{
    initialise({0.0F, 0.9F, 0.9F, 0.0F});
    expectSplits({}, splitFlat());
}

TEST_F(XicPeakSplitterTest, EndsCountWhenAboveTheirNeighbourAndZero)
{
    std::vector<float> probabilities(20, 0.1F);
    probabilities.front() = 0.8F;
    probabilities.back() = 0.9F;
    initialise(probabilities);
    expectSplits({{19, 0.9F}, {0, 0.8F}}, splitFlat(20));
}

TEST_F(XicPeakSplitterTest, AtMostFourSplitsTheMostProbableFirst)
{
    initialise({0.8F, 0.0F, 0.9F, 0.0F, 0.76F, 0.0F, 1.0F, 0.0F, 0.85F, 0.0F});
    expectSplits({{6, 1.0F}, {2, 0.9F}, {8, 0.85F}, {0, 0.8F}}, splitFlat());
}

TEST_F(XicPeakSplitterTest, EquallyProbableSplitsComeInAcquisitionOrder)
{
    initialise({0.0F, 0.9F, 0.0F, 0.9F, 0.0F});
    expectSplits({{1, 0.9F}, {3, 0.9F}}, splitFlat());
}

TEST_F(XicPeakSplitterTest, NegativeProbabilitiesAtTheEndsReportThePaddingWhichIsDropped)
{
    std::vector<float> probabilities(20, -0.5F);
    probabilities[10] = 0.9F;
    initialise(probabilities, 1.0);
    expectSplits({{10, 0.9F}}, splitFlat(20));
}

TEST_F(XicPeakSplitterTest, NonFiniteProbabilitiesReachNoIndexOutsideTheList)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    initialise({nan, nan, 0.0F, infinity, 0.0F, -infinity, nan});
    expectSplits({{3, infinity}}, splitFlat());
    initialise(std::vector<float>(20, nan));
    expectSplits({}, splitFlat(20));
}

TEST_F(XicPeakSplitterTest, NonFiniteAndNegativeIntensitiesAreTaken)
{
    XicPeakSplitterOptions options = plainOptions(Network::identity(), 1.0);
    options.smoothingPassCount = 2;
    initialise(options);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double odd : {nan, infinity, -infinity, -1e300, 1e300}) {
        for (const int count : {5, 40, LENGTH, LENGTH + 50}) {
            QList<QPointF> points = Network::chromatogram(std::vector<double>(count, 1.0));
            points[count / 2].setY(odd);
            const Splits splits = splitter.splitXIC(points);
            ASSERT_FALSE(splits.hasError());
            EXPECT_LE(splits.value().size(), 4);
        }
    }
}

TEST_F(XicPeakSplitterTest, MillionPointsAreThinnedAndSplit)
{
    initialise(plainOptions(Network::identity()));
    std::vector<double> trace(1000000, 0.01);
    trace[700000] = 1.0;
    expectSplits({{700000, 1.0F}}, splitter.splitXIC(Network::chromatogram(trace)));
}

// Against a naive implementation, on random traces, for a network whose probabilities are its input

std::vector<std::pair<int, float>> naiveSplits(const QList<QPointF> &points, const XicPeakSplitterOptions &options)
{
    const QList<QPointF> kept = naive::thinned(points, options.maxPointCount);
    std::vector<float> input =
        naive::inputVector(kept, options.maxPointCount, 0.0, options.smoothingPassCount, options.gaussianFilterSize);
    const int n = static_cast<int>(kept.size());
    std::vector<std::pair<int, float>> splits;
    for (int i = 0; i < n; ++i) {
        const float before = i > 0 ? input[i - 1] : 0.0F;
        const float after = i + 1 < n ? input[i + 1] : 0.0F;
        if (input[i] > before && input[i] > after && input[i] >= 1.0 - options.probabilityTolerance)
            splits.emplace_back(static_cast<int>(std::lround((kept[i].x() - Network::timeOf(0)) / 0.5)), input[i]);
    }
    std::stable_sort(splits.begin(), splits.end(), [](const auto &a, const auto &b) { return a.second > b.second; });
    if (splits.size() > 4)
        splits.resize(4);
    return splits;
}

TEST_F(XicPeakSplitterTest, AgreesWithANaiveImplementationOnRandomTraces)
{
    std::mt19937 random(412);
    std::exponential_distribution<double> intensity(1.0);
    const QString path = network.write(Network::identity());
    int splitCount = 0;
    for (int round = 0; round < 40; ++round) {
        XicPeakSplitterOptions options;
        options.modelFilePath = path;
        options.maxPointCount = std::uniform_int_distribution(201, 350)(random);
        options.probabilityTolerance = std::uniform_real_distribution<>(0.1, 0.9)(random);
        options.gaussianFilterSize = std::uniform_int_distribution(1, 9)(random) | 1;
        options.smoothingPassCount = std::uniform_int_distribution(0, 3)(random);
        initialise(options);
        for (int repeat = 0; repeat < 50; ++repeat) {
            std::vector<double> trace(std::uniform_int_distribution(5, 400)(random));
            for (double &value : trace)
                value = intensity(random);
            const QList<QPointF> points = Network::chromatogram(trace);
            const Splits actual = splitter.splitXIC(points);
            const auto expected = naiveSplits(points, options);
            splitCount += static_cast<int>(expected.size());
            ASSERT_FALSE(actual.hasError());
            ASSERT_EQ(static_cast<qsizetype>(expected.size()), actual.value().size()) << round << " " << repeat;
            for (std::size_t i = 0; i < expected.size(); ++i) {
                EXPECT_EQ(Network::timeOf(expected[i].first), actual.value()[i].first);
                EXPECT_FLOAT_EQ(expected[i].second, static_cast<float>(actual.value()[i].second));
            }
        }
    }
    EXPECT_GT(splitCount, 1000);
}

} // namespace
} // namespace zav
