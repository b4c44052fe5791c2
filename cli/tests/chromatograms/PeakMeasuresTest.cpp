// SPDX-License-Identifier: Apache-2.0
#include "PeakMeasures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

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

TraceFindings findingsOf(const QList<double> &areasAboveLine)
{
    TraceFindings findings;
    for (const double area : areasAboveLine) {
        TracePeak peak;
        peak.start = double(findings.peaks.size());
        peak.areaAboveLine = area;
        findings.peaks.append(peak);
    }
    return findings;
}

/// Where the peaks that stay start: the number of each in the list.
QList<double> bestOf(const QList<double> &areasAboveLine, qsizetype count)
{
    TraceFindings findings = findingsOf(areasAboveLine);
    keepBest(count, &findings);
    EXPECT_EQ(findings.leftOut, areasAboveLine.size() - findings.peaks.size());
    QList<double> starts;
    for (const TracePeak &peak : findings.peaks)
        starts.append(peak.start);
    return starts;
}

TEST(PeakMeasures, BestPeaksAreThoseOfTheLargestAreaAboveTheLine)
{
    EXPECT_EQ(bestOf({3, 9, -1, 7}, 1), (QList<double>{1}));
    EXPECT_EQ(bestOf({7, 3, -1, 9}, 2), (QList<double>{0, 3})) << "by their start";
    EXPECT_EQ(bestOf({3, 9, -1, 7}, 3), (QList<double>{0, 1, 3}));
    EXPECT_EQ(bestOf({3, 9}, 2), (QList<double>{0, 1}));
    EXPECT_EQ(bestOf({3, 9}, 5), (QList<double>{0, 1}));
    EXPECT_EQ(bestOf({}, 1), QList<double>());
}

TEST(PeakMeasures, EarlierOfEqualPeaksIsBetter)
{
    EXPECT_EQ(bestOf({1, 5, 5, 5}, 2), (QList<double>{1, 2}));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(bestOf({nan, -2, nan}, 2), (QList<double>{0, 1})) << "an area that is no number comes last";
}

TEST(PeakMeasures, MemberCountsWhatItsGroupLeftOut)
{
    TraceFindings common = findingsOf({3, 9, 7});
    keepBest(1, &common);
    const TraceFindings member = memberFindings(common, TRACE, TRACE);
    EXPECT_EQ(member.peaks.size(), 1);
    EXPECT_EQ(member.leftOut, 2);
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

TEST(PeakMeasures, MemberOfAGroupIsMeasuredWithinTheLimitsOfTheConsensus)
{
    TraceFindings common;
    common.peaks = {{1, 6, 4, 1000, 5000, 4000, 9}, {6.5, 7, 7, 10, 1, 1, 2}};
    const TraceFindings found = memberFindings(common, TRACE, TRACE);
    ASSERT_EQ(found.peaks.size(), 2);
    EXPECT_EQ(found.peaks[0].start, 1);
    EXPECT_EQ(found.peaks[0].end, 6);
    EXPECT_EQ(found.peaks[0].apex, 3);
    EXPECT_EQ(found.peaks[0].height, 80);
    EXPECT_EQ(found.peaks[0].area, 200);
    EXPECT_NEAR(found.peaks[0].shape, 1, 1e-12) << "with itself";
    EXPECT_EQ(found.peaks[1].height, 9);
    EXPECT_TRUE(std::isnan(found.peaks[1].shape)) << "one point has no shape";
    EXPECT_TRUE(found.remark.isEmpty());
}

TEST(PeakMeasures, MemberWithoutSignalHasNoAreaAndSaysSo)
{
    TraceFindings common;
    common.peaks = {{1, 3, 2, 9, 9, 9, 3}};
    const QList<QPointF> consensus = {{1, 0}, {2, 9}, {3, 0}};
    for (const QList<QPointF> &silent :
         {QList<QPointF>{{1, 0}, {2, 0}, {3, 0}}, QList<QPointF>{{1, -5}, {2, -1}}, QList<QPointF>{{5, 7}, {6, 8}}}) {
        const TraceFindings found = memberFindings(common, silent, consensus);
        ASSERT_EQ(found.peaks.size(), 1);
        EXPECT_EQ(found.peaks[0].start, 1);
        EXPECT_EQ(found.peaks[0].end, 3);
        EXPECT_EQ(found.peaks[0].height, 0);
        EXPECT_EQ(found.peaks[0].area, 0);
        EXPECT_EQ(found.peaks[0].areaAboveLine, 0);
        EXPECT_TRUE(std::isnan(found.peaks[0].apex));
        EXPECT_TRUE(std::isnan(found.peaks[0].shape));
        EXPECT_EQ(found.remark, "no signal within the limits of the peak");
    }
    common.peaks.append({5, 6, 6, 9, 9, 9, 3});
    EXPECT_EQ(memberFindings(common, {{5, 7}, {6, 8}}, consensus).remark,
              "no signal within the limits of 1 of 2 peaks");
}

TEST(PeakMeasures, MemberHasTheSplitsOfTheConsensusAndTheShapeOfTheWholeTrace)
{
    TraceFindings common;
    common.splits = {{3.5, 0.75}};
    const TraceFindings found = memberFindings(common, {{1, -1}, {2, -2}, {3, -4}}, {{1, 1}, {2, 2}, {3, 4}});
    ASSERT_EQ(found.splits.size(), 1);
    EXPECT_EQ(found.splits[0].time, 3.5);
    EXPECT_EQ(found.splits[0].probability, 0.75);
    EXPECT_NEAR(found.shape, -1, 1e-12);
}

} // namespace
} // namespace zav
