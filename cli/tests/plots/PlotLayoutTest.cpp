// SPDX-License-Identifier: Apache-2.0
//
// Axis ticks and label places: the arithmetic of a picture, without fonts.
#include "PlotAxis.h"
#include "PlotLabel.h"

#include <QtCore/QRectF>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace zav {
namespace {

TEST(NiceTicks, AreMultiplesOfOneTwoOrFiveTimesAPowerOfTen)
{
    EXPECT_EQ(niceTicks(0, 100, 6), (QList<double>{0, 20, 40, 60, 80, 100}));
    EXPECT_EQ(niceTicks(0, 100, 11).size(), 11);
    EXPECT_EQ(niceTicks(131.7, 1233.1, 8), (QList<double>{200, 400, 600, 800, 1000, 1200}));
    EXPECT_EQ(niceTicks(97, 197, 5), (QList<double>{100, 150}));
    const QList<double> fine = niceTicks(147.08, 147.32, 4);
    ASSERT_EQ(fine.size(), 3);
    EXPECT_DOUBLE_EQ(fine[0], 147.1);
    EXPECT_DOUBLE_EQ(fine[2], 147.3);
}

TEST(NiceTicks, StayWithinRangeAndCount)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> value(0, 2000);
    for (int i = 0; i < 1000; ++i) {
        const double from = value(random);
        const double to = from + 0.1 + value(random);
        for (const int count : {2, 5, 11}) {
            const QList<double> ticks = niceTicks(from, to, count);
            ASSERT_LE(ticks.size(), count);
            for (const double tick : ticks) {
                ASSERT_GE(tick, from - 1e-6);
                ASSERT_LE(tick, to + 1e-6);
            }
        }
    }
}

TEST(TickText, AllTicksHaveTheDecimalsOfTheStep)
{
    EXPECT_EQ(tickTexts({0, 0.5, 1.0}), (QStringList{"0", "0.5", "1.0"}));
    EXPECT_EQ(tickTexts({17.45, 17.5, 17.55}), (QStringList{"17.45", "17.50", "17.55"}));
    EXPECT_EQ(tickTexts({20000, 40000}), (QStringList{"20000", "40000"}));
    EXPECT_EQ(tickTexts({7.25}), (QStringList{"7.25"}));
    EXPECT_TRUE(tickTexts({}).isEmpty());
}

TEST(TickText, LongNumbersShareAPowerOfAThousand)
{
    EXPECT_EQ(tickTexts({0, 50000, 100000}), (QStringList{"0", "50e3", "100e3"}));
    EXPECT_EQ(tickTexts({0, 5e5, 1e6, 1.5e6}), (QStringList{"0", "0.5e6", "1.0e6", "1.5e6"}));
    EXPECT_EQ(tickTexts({-2e9, 0, 2e9}), (QStringList{"-2e9", "0", "2e9"}));
    EXPECT_EQ(tickTexts({0, 2e-5, 4e-5}), (QStringList{"0", "20e-6", "40e-6"}));
}

TEST(TickText, ValueIsAsPreciseAsItsAxisIsLong)
{
    EXPECT_EQ(textOnAxis(23.4567, 60), "23.46");
    EXPECT_EQ(textOnAxis(23.4567, 4), "23.457");
    EXPECT_EQ(textOnAxis(1523.4567, 3600), "1523");
    EXPECT_EQ(textOnAxis(5, 1e-30), "5.0000000");
}

TEST(PlotScale, MapsBothEndsAndTheMiddle)
{
    const PlotScale up{0, 100, 400, 100};
    EXPECT_EQ(up.at(0), 400);
    EXPECT_EQ(up.at(100), 100);
    EXPECT_EQ(up.at(50), 250);
}

TEST(LabelPlacement, LoneLabelStandsRightAboveItsStick)
{
    const QList<LabelPlace> places = placeLabels({{{100, 50}, {20, 10}}}, {{100, 50}}, 0, 800, 400);
    ASSERT_EQ(places.size(), 1);
    EXPECT_EQ(places[0].x, 100);
    EXPECT_GE(places[0].height, 50);
    EXPECT_LE(places[0].height, 54);
    EXPECT_FALSE(places[0].needsLeader);
}

TEST(LabelPlacement, TallerStickOfTwoNeighboursKeepsThePlaceAboveIt)
{
    const QList<LabelPlace> places =
        placeLabels({{{100, 50}, {30, 10}}, {{105, 52}, {30, 10}}}, {{100, 50}, {105, 52}}, 0, 800, 400);
    ASSERT_EQ(places.size(), 2);
    EXPECT_EQ(places[0].request, 1);
    EXPECT_EQ(places[0].x, 105);
    EXPECT_EQ(places[1].request, 0);
}

TEST(LabelPlacement, LowerRankChoosesBeforeATallerStick)
{
    const QList<LabelPlace> places =
        placeLabels({{{100, 80}, {30, 10}, 1}, {{104, 50}, {30, 10}, 0}}, {{100, 80}, {104, 50}}, 0, 800, 400);
    ASSERT_FALSE(places.isEmpty());
    EXPECT_EQ(places[0].request, 1);
}

TEST(LabelPlacement, LabelWithoutRoomIsLeftOut)
{
    EXPECT_TRUE(placeLabels({{{100, 395}, {20, 10}}}, {{100, 395}}, 0, 800, 400).isEmpty());
    EXPECT_TRUE(placeLabels({{{10, 20}, {30, 10}}}, {{10, 20}}, 0, 25, 400).isEmpty());
}

// Crowded pictures at random: what may never happen is looked for by brute force.
TEST(LabelPlacement, NothingIsEverCovered)
{
    std::mt19937 random(2);
    std::uniform_real_distribution<double> x(70, 870);
    std::uniform_real_distribution<double> height(1, 250);
    std::uniform_real_distribution<double> width(10, 50);
    for (int round = 0; round < 100; ++round) {
        QList<Stick> sticks;
        QList<LabelRequest> requests;
        for (int i = 0; i < 80; ++i) {
            sticks.append({x(random), height(random)});
            if (i % 2 == 0)
                requests.append({sticks.constLast(), {width(random), 10}, i % 3 == 0 ? 1 : 0});
        }
        const QList<LabelPlace> places = placeLabels(requests, sticks, 60, 880, 300);
        EXPECT_GT(places.size(), 5);
        QList<QRectF> boxes;
        for (const LabelPlace &place : places) {
            const QSizeF size = requests[place.request].size;
            const QRectF box(place.x - size.width() / 2, place.height, size.width(), size.height());
            ASSERT_GE(box.left(), 60);
            ASSERT_LE(box.right(), 880);
            ASSERT_LE(box.bottom(), 300);
            for (const QRectF &other : boxes)
                ASSERT_FALSE(box.intersects(other));
            for (const Stick &stick : sticks)
                ASSERT_FALSE(stick.x > box.left() && stick.x < box.right() && stick.height > box.top());
            boxes.append(box);
        }
    }
}

} // namespace
} // namespace zav
