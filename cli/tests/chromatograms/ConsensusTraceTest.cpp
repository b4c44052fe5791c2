// SPDX-License-Identifier: Apache-2.0
#include "ConsensusTrace.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zav {
namespace {

constexpr double ROUNDING = 1e-12; // relative, of sums of few square roots

using Points = QList<QPointF>;

TEST(ConsensusTrace, IsTheSquareOfTheSumOfTheSquareRoots)
{
    const Points consensus = consensusOf({{{1, 4}, {2, 9}}, {{1, 25}, {2, 0}}, {{1, 1}, {2, 16}}});
    ASSERT_EQ(consensus.size(), 2);
    EXPECT_EQ(consensus[0].x(), 1);
    EXPECT_NEAR(consensus[0].y(), 64, 64 * ROUNDING); // (2 + 5 + 1)^2
    EXPECT_EQ(consensus[1].x(), 2);
    EXPECT_NEAR(consensus[1].y(), 49, 49 * ROUNDING); // (3 + 0 + 4)^2
}

TEST(ConsensusTrace, PeakOfAllTracesIsHigherThanAHighOneOfASingleTrace)
{
    const Points together = {{1, 0}, {2, 100}, {3, 0}, {4, 0}};
    const Points alone = {{1, 0}, {2, 100}, {3, 0}, {4, 900}};
    const Points consensus = consensusOf({together, together, together, alone});
    EXPECT_NEAR(consensus[1].y(), 1600, 1600 * ROUNDING);
    EXPECT_NEAR(consensus[3].y(), 900, 900 * ROUNDING);
}

TEST(ConsensusTrace, HasTheTimesOfTheTraceWithTheMostPointsAndInterpolatesTheOthers)
{
    const Points coarse = {{0, 0}, {4, 16}};
    const Points fine = {{0, 1}, {1, 1}, {2, 1}, {3, 1}};
    const Points consensus = consensusOf({coarse, fine});
    ASSERT_EQ(consensus.size(), 4);
    for (int i = 0; i < 4; ++i) {
        const double expected = std::pow(std::sqrt(4.0 * i) + 1, 2);
        EXPECT_EQ(consensus[i].x(), i);
        EXPECT_NEAR(consensus[i].y(), expected, expected * ROUNDING);
    }
}

TEST(ConsensusTrace, OfEquallyLongTracesTheFirstGivesTheTimes)
{
    EXPECT_EQ(consensusOf({{{1, 1}, {3, 1}}, {{2, 1}, {4, 1}}})[1].x(), 3);
}

TEST(ConsensusTrace, TraceCountsWithinItsOwnTimesOnly)
{
    const Points axis = {{0, 1}, {1, 1}, {2, 1}, {3, 1}, {4, 1}};
    const Points consensus = consensusOf({axis, {{1, 4}, {3, 4}}});
    const QList<double> expected = {1, 9, 9, 9, 1};
    for (int i = 0; i < 5; ++i)
        EXPECT_NEAR(consensus[i].y(), expected[i], expected[i] * ROUNDING) << i;
}

TEST(ConsensusTrace, NegativeIntensitiesCountAsNone)
{
    EXPECT_NEAR(consensusOf({{{1, -9}}, {{1, 25}}})[0].y(), 25, 25 * ROUNDING);
}

TEST(ConsensusTrace, TimesThatDescendAreSorted)
{
    const Points consensus = consensusOf({{{3, 9}, {2, 4}, {1, 1}}, {{1, 1}, {3, 1}}});
    ASSERT_EQ(consensus.size(), 3);
    const QList<double> expected = {4, 9, 16};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(consensus[i].x(), i + 1);
        EXPECT_NEAR(consensus[i].y(), expected[i], expected[i] * ROUNDING) << i;
    }
}

TEST(ConsensusTrace, NothingGivesNothing)
{
    EXPECT_TRUE(consensusOf({}).isEmpty());
    EXPECT_TRUE(consensusOf({{}, {}}).isEmpty());
    EXPECT_NEAR(consensusOf({{}, {{5, 4}}})[0].y(), 4, 4 * ROUNDING);
}

TEST(IntensityAt, IsOnTheLineBetweenItsNeighbours)
{
    const Points points = {{1, 10}, {3, 20}, {3, 40}, {5, 0}};
    EXPECT_EQ(intensityAt(1, points), 10);
    EXPECT_EQ(intensityAt(2, points), 15);
    EXPECT_EQ(intensityAt(3, points), 20) << "the first of equal times";
    EXPECT_EQ(intensityAt(4, points), 20) << "from the last of them on";
    EXPECT_EQ(intensityAt(5, points), 0);
    EXPECT_FALSE(intensityAt(0.999, points).has_value());
    EXPECT_FALSE(intensityAt(5.001, points).has_value());
    EXPECT_FALSE(intensityAt(1, {}).has_value());
}

TEST(ShapeAgreement, IsPearsonsCoefficientWithinTheLimits)
{
    const Points consensus = {{0, 100}, {1, 1}, {2, 2}, {3, 4}, {4, -50}};
    EXPECT_NEAR(shapeAgreement({{0, 0}, {1, 3}, {2, 5}, {3, 9}, {4, 7}}, consensus, {1, 3}), 1, ROUNDING);
    EXPECT_NEAR(shapeAgreement({{1, -1}, {2, -2}, {3, -4}}, consensus, {1, 3}), -1, ROUNDING);
    // Means 7/3 and 2: sums of products -4/3 * -1 + -1/3 * 1 + 5/3 * 0 = 1, of squares 42/9 and 2.
    EXPECT_NEAR(shapeAgreement({{1, 1}, {2, 3}, {3, 2}}, consensus, {1, 3}), 1 / std::sqrt(42.0 / 9 * 2), ROUNDING);
}

TEST(ShapeAgreement, LooksAtTheTimesOfTheConsensusThatTheTraceCovers)
{
    const Points consensus = {{0, 9}, {1, 1}, {2, 2}, {3, 3}, {4, 9}};
    EXPECT_NEAR(shapeAgreement({{1, 10}, {3, 30}}, consensus, {0, 4}), 1, ROUNDING);
}

TEST(ShapeAgreement, IsUnknownWhereThereIsNoShape)
{
    const Points consensus = {{0, 1}, {1, 2}, {2, 3}};
    EXPECT_TRUE(std::isnan(shapeAgreement({{0, 0.1}, {1, 0.1}, {2, 0.1}}, consensus, {0, 2}))) << "constant";
    EXPECT_TRUE(std::isnan(shapeAgreement(consensus, {{0, 3}, {1, 3}}, {0, 2}))) << "constant consensus";
    EXPECT_TRUE(std::isnan(shapeAgreement(consensus, consensus, {0.5, 1.5}))) << "one point";
    EXPECT_TRUE(std::isnan(shapeAgreement({}, consensus, {0, 2}))) << "no points";
}

} // namespace
} // namespace zav
