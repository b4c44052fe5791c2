// SPDX-License-Identifier: Apache-2.0
#include "XicPeakWalk.h"

#include "NaiveChromatogram.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <vector>

namespace zav {
namespace {

constexpr int SCALE = 10000;

Eigen::VectorXf vectorOf(const std::vector<float> &values)
{
    return Eigen::Map<const Eigen::VectorXf>(values.data(), static_cast<Eigen::Index>(values.size()));
}

std::vector<int> maximaOf(const std::vector<float> &values)
{
    std::vector<int> indices;
    for (const LocalMaximum &maximum : findLocalMaxima(vectorOf(values), SCALE))
        indices.push_back(maximum.index);
    return indices;
}

Interval<int> walkFrom(const std::vector<float> &values, int index, double threshold)
{
    return walkPeakLimits(vectorOf(values), {-1, index, values[index], false}, threshold);
}

#define EXPECT_LIMITS(expectedStart, expectedEnd, interval)                                                            \
    do {                                                                                                               \
        const Interval<int> limits = interval;                                                                         \
        EXPECT_EQ(expectedStart, limits.start);                                                                        \
        EXPECT_EQ(expectedEnd, limits.end);                                                                            \
    } while (false)

TEST(LocalMaxima, CarryIndexValueAndAnUnusedIdAndStartUnconsumed)
{
    const QList<LocalMaximum> maxima = findLocalMaxima(vectorOf({0.0F, 0.5F, 0.0F}), SCALE);
    ASSERT_EQ(1, maxima.size());
    EXPECT_EQ(-1, maxima[0].id);
    EXPECT_EQ(1, maxima[0].index);
    EXPECT_EQ(0.5, maxima[0].value);
    EXPECT_FALSE(maxima[0].consumed);
}

TEST(LocalMaxima, PlateauYieldsItsFirstIndexOnly)
{
    EXPECT_EQ(std::vector<int>({1}), maximaOf({0.0F, 1.0F, 1.0F, 1.0F, 0.0F}));
}

TEST(LocalMaxima, PlateauBeforeARiseIsReportedToo)
{
    EXPECT_EQ(std::vector<int>({1, 3}), maximaOf({0.0F, 0.5F, 0.5F, 1.0F, 0.0F}));
}

TEST(LocalMaxima, EndsAreNeverMaxima)
{
    EXPECT_TRUE(maximaOf({1.0F, 0.5F, 0.4F, 2.0F}).empty());
    EXPECT_TRUE(maximaOf({}).empty());
    EXPECT_TRUE(maximaOf({1.0F}).empty());
    EXPECT_TRUE(maximaOf({1.0F, 2.0F}).empty());
}

TEST(LocalMaxima, HeightsAreComparedInTenThousandthsTruncatedTowardZero)
{
    EXPECT_TRUE(maximaOf({0.10001F, 0.10008F, 0.1F}).empty()) << "all three truncate to 1000";
    EXPECT_EQ(std::vector<int>({1}), maximaOf({0.10001F, 0.10012F, 0.1F}));
    EXPECT_TRUE(maximaOf({-0.00005F, 0.00005F, -0.00005F}).empty()) << "toward zero from both sides";
}

TEST(LocalMaxima, HeightsAreMultipliedInFloat)
{
    // 0.7 as a float lies below 0.7: times 10000 it is 6999.9998, which as a float is 7000.
    EXPECT_EQ(std::vector<int>({1}), maximaOf({0.69995F, 0.7F, 0.0F}));
}

TEST(LocalMaxima, NonFiniteValuesAreTakenWithoutOverflow)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(std::vector<int>({1}), maximaOf({0.0F, infinity, 0.0F}));
    EXPECT_TRUE(maximaOf({0.0F, nan, 0.0F}).empty());
    EXPECT_EQ(std::vector<int>({1}), maximaOf({0.0F, 3e38F, 0.0F}));
}

TEST(Walk, StopsAtTheFirstIndexAtOrUnderTheThresholdAndIncludesIt)
{
    EXPECT_LIMITS(1, 6, walkFrom({0.0F, 0.25F, 0.5F, 1.0F, 0.75F, 0.5F, 0.25F, 0.1F, 0.0F, 0.0F}, 3, 0.25));
}

TEST(Walk, StopsWhereTheHeightRisesAboveTheApex)
{
    EXPECT_LIMITS(1, 5, walkFrom({0.9F, 0.9F, 0.4F, 0.5F, 0.4F, 0.8F, 0.3F, 0.0F, 0.0F}, 3, 0.05));
}

TEST(Walk, EqualHeightDoesNotStopIt)
{
    EXPECT_LIMITS(0, 5, walkFrom({0.0F, 0.5F, 0.5F, 0.5F, 0.2F, 0.0F, 0.0F, 0.0F}, 2, 0.05));
}

TEST(Walk, RightSideThatNeverFallsEndsAtSizeMinusThree)
{
    EXPECT_LIMITS(0, 3, walkFrom({0.0F, 1.0F, 0.9F, 0.8F, 0.7F, 0.6F}, 1, 0.05));
}

TEST(Walk, LastIndexIsNeverLookedAt)
{
    EXPECT_LIMITS(0, 2, walkFrom({0.0F, 1.0F, 0.9F, 0.8F, 0.0F}, 1, 0.05));
}

TEST(Walk, LeftSideThatNeverFallsEndsAtZero)
{
    EXPECT_LIMITS(0, 4, walkFrom({0.9F, 0.9F, 0.9F, 1.0F, 0.0F, 0.0F, 0.0F}, 3, 0.05));
}

TEST(Walk, MaximumOfZeroYieldsZeroToZero)
{
    EXPECT_LIMITS(0, 0, walkFrom({-1.0F, 0.0F, -1.0F}, 1, 0.05));
    EXPECT_LIMITS(0, 0, walkFrom({0.0F, 1e-13F, 0.0F}, 1, 0.05));
}

TEST(Walk, MaximumOfATrillionthCountsAsZeroAndAHigherOneDoesNot)
{
    const Eigen::VectorXf input = vectorOf({0.0F, 0.0F, 1e-12F, 0.0F, 0.0F, 0.0F});
    for (const double sign : {1.0, -1.0}) {
        EXPECT_LIMITS(0, 0, walkPeakLimits(input, {-1, 2, sign * 1e-12, false}, 0.05));
        EXPECT_LIMITS(1, 3, walkPeakLimits(input, {-1, 2, sign * std::nextafter(1e-12, 1.0), false}, 0.05));
    }
}

TEST(Walk, VectorOfOneElementYieldsZeroToZero)
{
    EXPECT_LIMITS(0, 0, walkFrom({1.0F}, 0, 0.05));
}

TEST(Walk, ThresholdOfZeroStopsAtZeroHeights)
{
    EXPECT_LIMITS(0, 3, walkFrom({0.0F, 0.1F, 1.0F, 0.0F, 0.1F, 0.1F, 0.1F}, 2, 0.0));
}

TEST(AllWalks, ComeHighestApexFirst)
{
    const Eigen::VectorXf input = vectorOf({0.0F, 0.5F, 0.0F, 0.0F, 1.0F, 0.0F, 0.0F, 0.7F, 0.0F, 0.0F, 0.0F});
    const QList<Interval<int>> intervals = walkAllPeakLimits(input, findLocalMaxima(input, SCALE), 0.05);
    ASSERT_EQ(3, intervals.size());
    EXPECT_EQ(3, intervals[0].start);
    EXPECT_EQ(6, intervals[1].start);
    EXPECT_EQ(0, intervals[2].start);
}

TEST(AllWalks, MaximumThatAnIntervalCoversGetsNoneOfItsOwn)
{
    const Eigen::VectorXf input = vectorOf({0.0F, 0.6F, 0.5F, 1.0F, 0.5F, 0.6F, 0.0F, 0.0F, 0.0F});
    const QList<Interval<int>> intervals = walkAllPeakLimits(input, findLocalMaxima(input, SCALE), 0.05);
    ASSERT_EQ(1, intervals.size());
    EXPECT_LIMITS(0, 6, intervals[0]);
}

TEST(AllWalks, MaximumBehindTheLimitGetsItsOwn)
{
    const Eigen::VectorXf input = vectorOf({0.0F, 1.0F, 0.45F, 0.5F, 0.0F, 0.0F, 0.0F, 0.0F});
    const QList<Interval<int>> intervals = walkAllPeakLimits(input, findLocalMaxima(input, SCALE), 0.47);
    ASSERT_EQ(2, intervals.size());
    EXPECT_LIMITS(0, 2, intervals[0]);
    EXPECT_LIMITS(1, 4, intervals[1]); // back to the higher apex;
}

TEST(AllWalks, MaximumOnTheFirstIndexOfAnIntervalIsCovered)
{
    // Both sides of the threshold lie in the same ten-thousandth, so that the walk ends on a maximum.
    const Eigen::VectorXf input = vectorOf({0.0F, 0.05011F, 0.05018F, 1.0F, 0.0F, 0.0F, 0.0F});
    ASSERT_EQ(2, findLocalMaxima(input, SCALE).size());
    const QList<Interval<int>> intervals = walkAllPeakLimits(input, findLocalMaxima(input, SCALE), 0.05015);
    ASSERT_EQ(1, intervals.size());
    EXPECT_LIMITS(1, 4, intervals[0]);
}

TEST(AllWalks, MaximumOnTheLastIndexOfAnIntervalIsCovered)
{
    const Eigen::VectorXf input = vectorOf({0.0F, 1.0F, 0.9F, 0.8F, 0.85F, 0.8F, 0.7F});
    ASSERT_EQ(2, findLocalMaxima(input, SCALE).size());
    const QList<Interval<int>> intervals = walkAllPeakLimits(input, findLocalMaxima(input, SCALE), 0.05);
    ASSERT_EQ(1, intervals.size());
    EXPECT_LIMITS(0, 4, intervals[0]);
}

TEST(AllWalks, MaximumThatIsConsumedBeforeGetsNone)
{
    const Eigen::VectorXf input = vectorOf({0.0F, 0.5F, 0.0F, 0.0F, 1.0F, 0.0F, 0.0F, 0.0F});
    QList<LocalMaximum> maxima = findLocalMaxima(input, SCALE);
    maxima[1].consumed = true;
    const QList<Interval<int>> intervals = walkAllPeakLimits(input, maxima, 0.05);
    ASSERT_EQ(1, intervals.size());
    EXPECT_LIMITS(0, 2, intervals[0]);
}

TEST(AllWalks, EveryStepOfARisingStaircaseBelowZeroReachesTheEnd)
{
    // Steps of two points. A lower point is higher relative to an apex below zero: it ends the walk on the left. On
    // the right no height falls to 0.
    constexpr int STEPS = 20000;
    std::vector<float> values;
    for (int step = 0; step < STEPS; ++step)
        values.insert(values.end(), 2, -1.0F - 0.001F * static_cast<float>(STEPS - step));
    const Eigen::VectorXf input = vectorOf(values);
    const QList<Interval<int>> intervals = walkAllPeakLimits(input, findLocalMaxima(input, SCALE), 0.0);
    ASSERT_EQ(STEPS - 1, intervals.size());
    for (int step = STEPS - 1; step > 0; --step) {
        ASSERT_EQ(2 * step - 1, intervals[STEPS - 1 - step].start) << step;
        ASSERT_EQ(2 * STEPS - 3, intervals[STEPS - 1 - step].end) << step;
    }
}

// Against the naive walks on hostile vectors, plainly and in blocks

using Draw = std::function<float(std::mt19937 &, int index)>;

float uniform(std::mt19937 &random, float from, float to)
{
    return std::uniform_real_distribution<float>(from, to)(random);
}

/// How the values of a hostile vector come about.
std::vector<Draw> hostileDraws()
{
    const float infinity = std::numeric_limits<float>::infinity();
    const float largest = std::numeric_limits<float>::max();
    const std::vector<float> odd = {
        infinity, -infinity, std::numeric_limits<float>::quiet_NaN(), largest, -largest, 0.0F, -0.0F, 1.0F, -1.0F,
        1e-12F,   -1e-12F,   std::numeric_limits<float>::denorm_min()};
    const auto oddOne = [odd](std::mt19937 &random) { return odd[random() % odd.size()]; };
    return {
        [](std::mt19937 &random, int) { return uniform(random, -1.0F, 1.0F); },
        [](std::mt19937 &random, int) { return uniform(random, -1.0F, -0.9F); },
        [](std::mt19937 &random, int) { return 0.5F * static_cast<float>(random() % 5) - 1.0F; },
        [](std::mt19937 &, int i) { return -1000.0F + 0.01F * static_cast<float>(i / 3); },
        [](std::mt19937 &, int i) { return -1.0F - 0.01F * static_cast<float>(i / 3); },
        [](std::mt19937 &random, int i) { return uniform(random, -20.0F, -1.0F) + 0.001F * static_cast<float>(i); },
        [](std::mt19937 &random, int) { return std::ldexp(uniform(random, -1.0F, 1.0F), int(random() % 200) - 100); },
        [oddOne](std::mt19937 &random, int) { return oddOne(random); },
        [oddOne](std::mt19937 &random, int i) {
            return random() % 20 == 0 ? oddOne(random) : -100.0F + 0.01F * static_cast<float>(i / 2);
        },
    };
}

double hostileThreshold(std::mt19937 &random)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const std::vector<double> thresholds = {
        0.0, 0.05, 0.5, 0.95, 1.0, 1.5, -0.5, -1e30, infinity, -infinity, std::numeric_limits<double>::quiet_NaN()};
    return random() % 2 == 0 ? std::uniform_real_distribution(0.0, 1.0)(random)
                             : thresholds[random() % thresholds.size()];
}

void expectNaiveWalks(const std::vector<float> &values, double threshold)
{
    const std::vector<naive::IndexInterval> expected = naive::walks(values, threshold);
    const Eigen::VectorXf input = vectorOf(values);
    for (const int plainVisits : {0, 1, 4}) {
        const QList<Interval<int>> actual =
            walkAllPeakLimits(input, findLocalMaxima(input, SCALE), threshold, plainVisits);
        ASSERT_EQ(static_cast<qsizetype>(expected.size()), actual.size()) << plainVisits << " plain visits";
        for (qsizetype i = 0; i < actual.size(); ++i) {
            ASSERT_EQ(expected[i].start, actual[i].start) << "interval " << i << ", " << plainVisits << " plain visits";
            ASSERT_EQ(expected[i].end, actual[i].end) << "interval " << i << ", " << plainVisits << " plain visits";
        }
    }
}

TEST(AllWalks, AgreeWithNaiveOnesOnHostileVectors)
{
    std::mt19937 random(20261122);
    const std::vector<Draw> draws = hostileDraws();
    for (int round = 0; round < 60; ++round) {
        for (std::size_t kind = 0; kind < draws.size(); ++kind) {
            // Now and then three levels of blocks, the last ones in part.
            const int most = round == 0 ? 4200 : 300;
            const int size = round == 0 ? most : std::uniform_int_distribution(0, most)(random);
            std::vector<float> values;
            for (int i = 0; i < size; ++i)
                values.push_back(draws[kind](random, i));
            const double threshold = hostileThreshold(random);
            SCOPED_TRACE(testing::Message() << "round " << round << ", kind " << kind << ", " << size
                                            << " values, threshold " << threshold);
            ASSERT_NO_FATAL_FAILURE(expectNaiveWalks(values, threshold));
        }
    }
}

TEST(AllWalks, NoMaximaNoIntervals)
{
    EXPECT_TRUE(walkAllPeakLimits(vectorOf({}), {}, 0.05).isEmpty());
}

} // namespace
} // namespace zav
