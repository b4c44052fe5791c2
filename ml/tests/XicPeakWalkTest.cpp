// SPDX-License-Identifier: Apache-2.0
#include "XicPeakWalk.h"

#include <gtest/gtest.h>

#include <limits>
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

TEST(AllWalks, NoMaximaNoIntervals)
{
    EXPECT_TRUE(walkAllPeakLimits(vectorOf({}), {}, 0.05).isEmpty());
}

} // namespace
} // namespace zav
