// SPDX-License-Identifier: Apache-2.0
//
// The arithmetic of a chromatogram's picture, without fonts.
#include "ChromatogramTrace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace zav {
namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();

TEST(ChromatogramTrace, BreaksWhereAPointHasNoFinitePlace)
{
    const ChromatogramTrace trace(
        {{1, 1}, {2, 5}, {3, NOT_A_NUMBER}, {4, 2}, {NOT_A_NUMBER, 9}, {-INFINITE, 9}, {5, 1e301}, {6, -1}, {7, 0}});
    ASSERT_EQ(trace.runs().size(), 3);
    EXPECT_EQ(trace.runs()[0], (QList<QPointF>{{1, 1}, {2, 5}}));
    EXPECT_EQ(trace.runs()[1], (QList<QPointF>{{4, 2}}));
    EXPECT_EQ(trace.runs()[2], (QList<QPointF>{{6, -1}, {7, 0}}));
    EXPECT_EQ(trace.pointCount(), 5);
    EXPECT_EQ(trace.omittedCount(), 4);
    EXPECT_EQ(trace.times().start, 1);
    EXPECT_EQ(trace.times().end, 7);
    EXPECT_EQ(trace.intensities().start, -1);
    EXPECT_EQ(trace.intensities().end, 5);
}

TEST(ChromatogramTrace, AxesAreNeverEmpty)
{
    const double largest = std::numeric_limits<double>::max();
    const QList<QPointF> traces[] = {{},
                                     {{3, 4}},
                                     {{3, 4}, {3, 5}},
                                     {{1, 0}, {2, 0}},
                                     {{0, 1e-320}},
                                     {{1e9, 1}, {1e9, 2}},
                                     {{-1e300, -1e300}, {1e300, 1e300}},
                                     {{largest, 1}}};
    for (const QList<QPointF> &points : traces) {
        const ChromatogramTrace trace(points);
        for (const Interval<double> &range : {trace.times(), trace.intensities()}) {
            EXPECT_GT(range.end - range.start, 0);
            EXPECT_TRUE(std::isfinite(range.end - range.start));
        }
        EXPECT_LE(trace.intensities().start, 0);
        EXPECT_GE(trace.intensities().end, 0);
    }
}

TEST(ChromatogramTrace, PartBetweenTwoTimesHasInterpolatedEnds)
{
    const ChromatogramTrace trace({{0, 0}, {2, 8}, {4, 4}, {6, 0}});
    EXPECT_EQ(trace.between(1, 5), (QList<QPointF>{{1, 4}, {2, 8}, {4, 4}, {5, 2}}));
    EXPECT_EQ(trace.between(2, 4), (QList<QPointF>{{2, 8}, {4, 4}}));
    EXPECT_EQ(trace.between(2.5, 3), (QList<QPointF>{{2.5, 7}, {3, 6}}));
    EXPECT_EQ(trace.between(-5, 100).size(), 4);
    EXPECT_TRUE(trace.between(7, 8).isEmpty());
    EXPECT_TRUE(trace.between(-2, -1).isEmpty());
    EXPECT_TRUE(trace.between(NOT_A_NUMBER, NOT_A_NUMBER).isEmpty());
}

TEST(ChromatogramTrace, PartOfDescendingTimesIsInAcquisitionOrder)
{
    const ChromatogramTrace trace({{6, 0}, {4, 4}, {2, 8}, {0, 0}});
    EXPECT_EQ(trace.between(1, 5), (QList<QPointF>{{5, 2}, {4, 4}, {2, 8}, {1, 4}}));
    EXPECT_EQ(trace.intensityAt(1), 4);
}

TEST(ChromatogramTrace, HeightAtATimeIsTheHighestOfThePasses)
{
    const ChromatogramTrace trace({{0, 0}, {4, 4}, {0, 8}, {NOT_A_NUMBER, 0}, {9, 3}});
    EXPECT_EQ(trace.intensityAt(2), 6);
    EXPECT_EQ(trace.intensityAt(9), 3);
    EXPECT_EQ(trace.intensityAt(0), 8);
    EXPECT_FALSE(trace.intensityAt(6).has_value());
    EXPECT_FALSE(trace.intensityAt(NOT_A_NUMBER).has_value());
}

// Of every column, what the whole line fills there has to be filled by the fewer points.
TEST(HiddenPoints, AreThoseWhoseAbsenceIsNotSeen)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> noise(0, 300);
    QList<QPointF> line;
    for (int i = 0; i < 20000; ++i)
        line.append({100 + i * 0.01, noise(random)});
    const QList<QPointF> seen = withoutHiddenPoints(line, 0.5);
    EXPECT_LE(seen.size(), 4 * 401); // first, lowest, highest and last of a column
    EXPECT_EQ(seen.first(), line.first());
    EXPECT_EQ(seen.last(), line.last());
    const QList<LineColumn> whole = columnsOf(line, 0.5);
    const QList<LineColumn> fewer = columnsOf(seen, 0.5);
    ASSERT_EQ(whole.size(), fewer.size());
    for (qsizetype i = 0; i < whole.size(); ++i) {
        EXPECT_EQ(whole[i].x, fewer[i].x);
        EXPECT_NEAR(whole[i].low, fewer[i].low, 1e-9);
        EXPECT_NEAR(whole[i].high, fewer[i].high, 1e-9);
    }
}

TEST(HiddenPoints, SparsePointsAllStay)
{
    const QList<QPointF> line{{0, 1}, {1, 2}, {2, 0}, {1, 5}, {1, 6}, {0, 1}};
    EXPECT_EQ(withoutHiddenPoints(line, 0.5), line);
    EXPECT_TRUE(withoutHiddenPoints({}, 0.5).isEmpty());
}

TEST(HiddenPoints, LineThatGoesToAndFroBecomesWhatItFills)
{
    QList<QPointF> line;
    for (int i = 0; i < 20000; ++i)
        line.append({i % 2 == 0 ? 0.0 : 100.0, i == 10000 ? 50.0 : i % 3 + 10.0});
    const QList<QPointF> seen = withoutHiddenPoints(line, 0.5);
    EXPECT_LT(seen.size(), 500);
    const auto [lowest, highest] =
        std::minmax_element(seen.begin(), seen.end(), [](const QPointF &a, const QPointF &b) { return a.y() < b.y(); });
    EXPECT_EQ(lowest->y(), 10);
    EXPECT_EQ(highest->y(), 50);
}

TEST(LineColumns, HoldWhatTheLineFills)
{
    // Up from (0.5, 0) to (2.5, 20), then upright to 30.
    const QList<LineColumn> columns = columnsOf({{0.5, 0}, {2.5, 20}, {2.5, 30}}, 1);
    ASSERT_EQ(columns.size(), 3);
    const double expected[][3] = {{0.5, 0, 5}, {1.5, 5, 15}, {2.5, 15, 30}};
    for (qsizetype i = 0; i < 3; ++i) {
        EXPECT_DOUBLE_EQ(columns[i].x, expected[i][0]);
        EXPECT_DOUBLE_EQ(columns[i].low, expected[i][1]);
        EXPECT_DOUBLE_EQ(columns[i].high, expected[i][2]);
    }
    EXPECT_TRUE(columnsOf({}, 1).isEmpty());
}

TEST(AreaOverEnds, EndsWhereTheLineDipsUnderIt)
{
    // On paper: ends at y 100, a peak up to 40, a dip down to 120 behind it.
    const QList<QPointF> area = areaOverEnds({{0, 100}, {10, 40}, {20, 120}, {30, 100}});
    EXPECT_EQ(area, (QList<QPointF>{{0, 100}, {10, 40}, {17.5, 100}, {20, 100}, {30, 100}}));
    EXPECT_TRUE(areaOverEnds({}).isEmpty());
    EXPECT_TRUE(areaOverEnds({{1, 1}}).isEmpty());
    EXPECT_TRUE(areaOverEnds({{1, 1}, {1, 5}}).isEmpty());
}

} // namespace
} // namespace zav
