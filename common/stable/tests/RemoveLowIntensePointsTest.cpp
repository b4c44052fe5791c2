// SPDX-License-Identifier: Apache-2.0
#include "removeLowIntensePoints.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

namespace zav {
namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

// Points at x = 0, 1, 2, ...
QList<QPointF> trace(const QList<double> &intensities)
{
    QList<QPointF> points;
    for (const double intensity : intensities)
        points.append({static_cast<double>(points.size()), intensity});
    return points;
}

// The x of what is left, which are the original indices. A std::vector, as Qt 6.4 compares empty lists of numbers by
// memcmp of null, which the sanitizer stops at.
std::vector<int> keptOf(QList<QPointF> points, int targetCount, bool keepEnds)
{
    const qsizetype before = points.size();
    const int removed = removeLowIntensePoints(points, targetCount, keepEnds);
    EXPECT_EQ(before - points.size(), removed);
    std::vector<int> kept;
    for (const QPointF &point : points)
        kept.push_back(static_cast<int>(point.x()));
    return kept;
}

// The same by taking one point at a time, straight from the definition.
std::vector<int> keptOneByOne(const QList<QPointF> &points, int targetCount, bool keepEnds)
{
    std::vector<int> kept(static_cast<std::size_t>(points.size()));
    std::iota(kept.begin(), kept.end(), 0);
    const auto height = [&](int index) {
        return std::isnan(points[index].y()) ? -std::numeric_limits<double>::infinity() : points[index].y();
    };
    while (std::ssize(kept) > std::max(targetCount, 0)) {
        const int margin = keepEnds && kept.size() > 2 ? 1 : 0;
        auto lowest = kept.begin() + margin;
        for (auto candidate = lowest; candidate != kept.end() - margin; ++candidate)
            if (height(*candidate) <= height(*lowest))
                lowest = candidate;
        kept.erase(lowest);
    }
    return kept;
}

TEST(RemoveLowIntensePoints, LowestGoFirstAndTheRestKeepTheirOrder)
{
    EXPECT_EQ(std::vector<int>({0, 2, 4}), keptOf(trace({5, 1, 9, 2, 7}), 3, false));
    EXPECT_EQ(std::vector<int>({2}), keptOf(trace({5, 1, 9, 2, 7}), 1, false));
}

TEST(RemoveLowIntensePoints, OfEquallyLowPointsTheLatestGoFirst)
{
    EXPECT_EQ(std::vector<int>({0, 1, 3}), keptOf(trace({1, 1, 1, 5, 1}), 3, false));
    EXPECT_EQ(std::vector<int>({0, 1}), keptOf(trace({0, -0.0, 0, -0.0}), 2, false)) << "both zeros are equally low";
}

TEST(RemoveLowIntensePoints, KeptEndsStayHoweverLow)
{
    EXPECT_EQ(std::vector<int>({0, 2, 4}), keptOf(trace({0, 3, 8, 4, 0}), 3, true));
    EXPECT_EQ(std::vector<int>({0, 4}), keptOf(trace({0, 3, 8, 4, 0}), 2, true));
    EXPECT_EQ(std::vector<int>({1, 2, 3}), keptOf(trace({0, 3, 8, 4, 0}), 3, false));
}

TEST(RemoveLowIntensePoints, EndsGoWhenTheTargetLeavesNoRoomForThem)
{
    EXPECT_EQ(std::vector<int>({4}), keptOf(trace({1, 3, 8, 4, 2}), 1, true)) << "the higher end is the last point";
    EXPECT_EQ(std::vector<int>({0}), keptOf(trace({2, 3, 8, 4, 2}), 1, true)) << "of equal ends the later goes";
    EXPECT_EQ(std::vector<int>(), keptOf(trace({1, 3, 8, 4, 2}), 0, true));
}

TEST(RemoveLowIntensePoints, ShortEnoughListsStayUntouched)
{
    QList<QPointF> points = trace({3, 1, 2});
    const QList<QPointF> shared = points;
    EXPECT_EQ(0, removeLowIntensePoints(points, 3, true));
    EXPECT_EQ(0, removeLowIntensePoints(points, std::numeric_limits<int>::max(), false));
    EXPECT_EQ(shared.constData(), points.constData()) << "not even copied";
    QList<QPointF> none;
    EXPECT_EQ(0, removeLowIntensePoints(none, 0, true));
    EXPECT_EQ(0, removeLowIntensePoints(none, -1, true));
}

TEST(RemoveLowIntensePoints, TargetBelowZeroCountsAsZero)
{
    for (const int target : {-1, std::numeric_limits<int>::min()})
        EXPECT_EQ(std::vector<int>(), keptOf(trace({3, 1, 2}), target, true));
}

TEST(RemoveLowIntensePoints, NaNIsLowerThanAnyNumber)
{
    const double lowest = -std::numeric_limits<double>::infinity();
    EXPECT_EQ(std::vector<int>({0, 2}), keptOf(trace({1, NOT_A_NUMBER, lowest, NOT_A_NUMBER}), 2, false));
    EXPECT_EQ(std::vector<int>({0, 2, 4}), keptOf(trace({NOT_A_NUMBER, 1, 2, NOT_A_NUMBER, 1}), 3, true));
    EXPECT_EQ(std::vector<int>({0, 1}), keptOf(trace({NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER}), 2, false));
}

TEST(RemoveLowIntensePoints, OtherOwnersOfASharedListKeepTheirs)
{
    QList<QPointF> points = trace({3, 1, 2});
    const QList<QPointF> shared = points;
    removeLowIntensePoints(points, 1, false);
    EXPECT_EQ(trace({3, 1, 2}), shared);
}

TEST(RemoveLowIntensePoints, AgreesWithRemovingOneByOneOnRandomTraces)
{
    std::mt19937 random(20240611);
    for (int round = 0; round < 400; ++round) {
        QList<double> intensities;
        const int count = std::uniform_int_distribution(0, 40)(random);
        for (int i = 0; i < count; ++i) {
            const int value = std::uniform_int_distribution(-2, 9)(random); // few values: many ties
            intensities.append(value < 0 ? NOT_A_NUMBER : value);
        }
        const int target = std::uniform_int_distribution(-1, 42)(random);
        for (const bool keepEnds : {false, true})
            ASSERT_EQ(keptOneByOne(trace(intensities), target, keepEnds), keptOf(trace(intensities), target, keepEnds))
                << "round " << round << ", target " << target << ", keepEnds " << keepEnds;
    }
}

TEST(RemoveLowIntensePoints, MillionPointsInSortedOrRandomOrderAreThinnedInTime)
{
    constexpr int COUNT = 1'000'000;
    constexpr int TARGET = 4096;
    std::mt19937 random(7);
    QList<double> intensities(COUNT);
    for (int i = 0; i < COUNT; ++i)
        intensities[i] = i;
    for (const bool shuffled : {false, true}) {
        if (shuffled)
            std::shuffle(intensities.begin(), intensities.end(), random);
        QList<QPointF> points = trace(intensities);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(COUNT - TARGET, removeLowIntensePoints(points, TARGET, false));
        // Ample for n log n under sanitizers on a loaded machine; anything quadratic takes hours.
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
        ASSERT_EQ(TARGET, points.size());
        for (const QPointF &point : points)
            ASSERT_GE(point.y(), COUNT - TARGET);
    }
}

} // namespace
} // namespace zav
