// SPDX-License-Identifier: Apache-2.0
#include "PeakMeasures.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

// Two steps of 1 and one of 2: trapezoids 10, 50, 120 and 20 over [1, 6].
const QList<QPointF> TRACE = {{0, 7}, {1, 0}, {2, 20}, {3, 80}, {5, 40}, {6, 0}, {7, 9}};

TEST(PeakMeasures, AreaIsTheSumOfTheTrapezoids)
{
    const TracePeak peak = measurePeak(TRACE, {1, 6});
    EXPECT_EQ(peak.area, 10 + 50 + 120 + 20);
    EXPECT_EQ(peak.areaAboveLine, 200) << "the ends are at 0";
    EXPECT_EQ(peak.points, 5);
    EXPECT_EQ(peak.start, 1);
    EXPECT_EQ(peak.end, 6);
}

TEST(PeakMeasures, AreaAboveTheLineLeavesOutWhatIsBelowTheEnds)
{
    const TracePeak peak = measurePeak(TRACE, {2, 5});
    EXPECT_EQ(peak.area, 50 + 120);
    EXPECT_EQ(peak.areaAboveLine, 170 - (5 - 2) * (20 + 40) / 2);
}

TEST(PeakMeasures, DipBelowTheLineIsNegative)
{
    const TracePeak peak = measurePeak({{0, 10}, {1, 2}, {2, 10}}, {0, 2});
    EXPECT_EQ(peak.area, 12);
    EXPECT_EQ(peak.areaAboveLine, -8);
}

TEST(PeakMeasures, ApexIsTheHighestPointWithinTheLimits)
{
    const TracePeak peak = measurePeak(TRACE, {4, 7});
    EXPECT_EQ(peak.apex, 5);
    EXPECT_EQ(peak.height, 40);
}

TEST(PeakMeasures, FirstOfEquallyHighPointsIsTheApex)
{
    EXPECT_EQ(measurePeak({{0, 1}, {1, 5}, {2, 5}, {3, 1}}, {0, 3}).apex, 1);
}

TEST(PeakMeasures, LimitsBetweenPointsCountOnlyThePointsWithin)
{
    const TracePeak peak = measurePeak(TRACE, {1.5, 3.5});
    EXPECT_EQ(peak.points, 2);
    EXPECT_EQ(peak.area, 50);
    EXPECT_EQ(peak.start, 1.5);
}

TEST(PeakMeasures, OnePointHasAHeightAndNoArea)
{
    const TracePeak peak = measurePeak(TRACE, {3, 3});
    EXPECT_EQ(peak.height, 80);
    EXPECT_EQ(peak.area, 0);
    EXPECT_EQ(peak.areaAboveLine, 0);
    EXPECT_EQ(peak.points, 1);
}

TEST(PeakMeasures, LimitsThatHoldNoPointMeasureNothing)
{
    const TracePeak peak = measurePeak(TRACE, {10, 12});
    EXPECT_EQ(peak.points, 0);
    EXPECT_EQ(peak.height, 0);
    EXPECT_EQ(peak.area, 0);
    EXPECT_EQ(measurePeak({}, {0, 1}).points, 0);
}

} // namespace
} // namespace zav
