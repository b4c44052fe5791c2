// SPDX-License-Identifier: Apache-2.0
#include <zav/XicPeakSplitter.h>

#include "MessageRecorder.h"
#include "NaiveChromatogram.h"
#include "XicPeakSplitterFixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace zav {

namespace {

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
    EXPECT_EQ((QList<int>{62, 253}), splitterLinesOf(error));
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
    EXPECT_EQ((QList<int>{63, 253}), splitterLinesOf(error));
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

TEST_F(XicPeakSplitterTest, RefusedOptionsAreNotedBeforeTheirNetworkIsLookedFor)
{
    initialise({0.0F, 0.97F});
    XicPeakSplitterOptions refused = plainOptions(Network::identity());
    refused.modelFilePath = QStringLiteral("no such file.pb");
    refused.gaussianFilterSize = 0;
    EXPECT_EQ((QList<int>{62, 253}), splitterLinesOf(splitter.init(refused)));
    expectSplits({{1, 0.97F}}, splitFlat()); // the old network
}

TEST_F(XicPeakSplitterTest, KernelStaysEmptyUntilAnInitSucceeds)
{
    XicPeakSplitterOptions missing = plainOptions(Network::identity());
    missing.modelFilePath = QStringLiteral("no such file.pb");
    testing::internal::CaptureStderr();
    EXPECT_TRUE(splitter.init(missing).hasError());
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(0, inside().smoothingKernel.size());
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

TEST_F(XicPeakSplitterTest, IntensitiesAreRoundedToFloatBeforeTheyAreScaled)
{
    initialise(plainOptions(Network::identity(), 1.0));
    // 2^24 and 2^24 + 1 are the same float: no point is higher than both its neighbours.
    expectSplits({}, splitter.splitXIC(Network::chromatogram({1, 16777216, 16777217, 1, 1})));
}

TEST_F(XicPeakSplitterTest, LargestIntensityOfATrillionthCountsAsZeroAndALargerOneDoesNot)
{
    initialise(plainOptions(Network::identity(), 1.0));
    const float infinity = std::numeric_limits<float>::infinity();
    expectSplits({{1, infinity}, {3, infinity}}, splitter.splitXIC(Network::chromatogram({0, 1e-13, 0, 1e-14, 0})));
    expectSplits({{1, 1.0F}, {3, 0.8F}}, splitter.splitXIC(Network::chromatogram({0, 1e-11, 0, 8e-12, 0})));
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

TEST_F(XicPeakSplitterTest, PredictionOfAnotherLengthIsInvalidInput)
{
    const QList<QPointF> points = Network::chromatogram({1, 2, 3});
    for (const int length : {0, 2, 4}) {
        const Splits splits = processPrediction(Eigen::VectorXf::Zero(length), XicPeakSplitterOptions(), points);
        ASSERT_TRUE(splits.hasError()) << length;
        EXPECT_TRUE(splits.error().equals(InvalidInput));
        EXPECT_EQ(QStringLiteral("xic and prediction not equal"), splits.error().message());
        EXPECT_EQ(QList<int>{140}, splitterLinesOf(splits.error()));
        EXPECT_EQ((QStringList{"ErrorUtils::equal in common/core_mini/src/algo/ErrorUtils",
                               "processPrediction in ml/src/XicPeakSplitter"}),
                  trailOf(splits.error()));
    }
}

TEST_F(XicPeakSplitterTest, NoPointsHaveNoSplitsWhateverThePrediction)
{
    for (const int length : {0, 3})
        expectSplits({}, processPrediction(Eigen::VectorXf::Ones(length), XicPeakSplitterOptions(), {}));
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
