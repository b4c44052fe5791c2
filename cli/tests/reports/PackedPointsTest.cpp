// SPDX-License-Identifier: Apache-2.0
#include "PackedPoints.h"
#include "ReportText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace zav {
namespace {

QList<QPointF> readBack(const QList<QPointF> &points)
{
    qsizetype place = 0;
    const QByteArray bytes = packedPoints(points);
    const QList<QPointF> read = ReportText::readPoints(bytes, &place);
    EXPECT_EQ(place, bytes.size());
    return read;
}

TEST(PackedPoints, BytesStandByRank)
{
    // 10 and 1 are 0x4024000000000000 and 0x3ff0000000000000; 0, 0.5, 1 and 3 are 0, 0x3f000000, 0x3f800000,
    // 0x40400000.
    EXPECT_EQ(packedPoints({{10, 1}, {10.5, 3}}).toHex(), "02000000"
                                                          "0000000000002440"
                                                          "000000000000f03f"
                                                          "0000"
                                                          "0000"
                                                          "0000"
                                                          "003f"
                                                          "0000"
                                                          "0000"
                                                          "8040"
                                                          "3f40");
}

TEST(PackedPoints, NothingIsAHeadingOnly)
{
    EXPECT_EQ(packedPoints({}).size(), 20);
    EXPECT_TRUE(readBack({}).isEmpty());
}

TEST(PackedPoints, PlacesAreExactToAMillionthOfTheirRange)
{
    QList<QPointF> points;
    for (int i = 0; i < 1000; ++i)
        points.append({3600 + i * 0.1234567, i % 17 * 1001.25});
    const QList<QPointF> read = readBack(points);
    ASSERT_EQ(read.size(), points.size());
    for (qsizetype i = 0; i < points.size(); ++i) {
        EXPECT_NEAR(read[i].x(), points[i].x(), 123 * 1e-6);
        EXPECT_EQ(read[i].y(), points[i].y()) << "single precision holds it";
    }
}

TEST(PackedPoints, IntensitiesBeyondSinglePrecisionKeepTheirDigits)
{
    const QList<QPointF> read = readBack({{1, 1.5e300}, {2, -3e299}, {3, 0}});
    ASSERT_EQ(read.size(), 3);
    EXPECT_NEAR(read[0].y() / 1.5e300, 1, 1e-6);
    EXPECT_NEAR(read[1].y() / -3e299, 1, 1e-6);
    EXPECT_EQ(read[2].y(), 0);
    const double most = 1.7e308;
    EXPECT_NEAR(readBack({{0, most}})[0].y() / most, 1, 1e-6);
    const double limit = std::numeric_limits<float>::max();
    EXPECT_EQ(readBack({{0, limit}})[0].y(), limit);
}

TEST(PackedPoints, PlacesBeyondSinglePrecisionAreNoNumbersToDraw)
{
    const QList<QPointF> read = readBack({{-1e308, 1}, {1e308, 2}, {1e50, 3}});
    ASSERT_EQ(read.size(), 3);
    EXPECT_TRUE(std::isinf(read[1].x()));
    EXPECT_TRUE(std::isinf(read[2].x()));
}

TEST(PackedPoints, LongTraceKeepsWhatAPictureShows)
{
    QList<QPointF> points;
    for (int i = 0; i < 1000000; ++i)
        points.append({double(i), double(i % 1000 * 919 % 1000)});
    points[123456].ry() = 1e6;
    points[654321].ry() = -1e6;
    const QList<QPointF> outline = reportedPoints(points);
    EXPECT_LE(outline.size(), MOST_REPORTED_POINTS);
    EXPECT_GT(outline.size(), MOST_REPORTED_POINTS / 4);
    EXPECT_EQ(outline.first(), points.first());
    EXPECT_EQ(outline.last(), points.last());
    EXPECT_TRUE(outline.contains(points[123456]));
    EXPECT_TRUE(outline.contains(points[654321]));
    const auto isEarlier = [](const QPointF &a, const QPointF &b) { return a.x() < b.x(); };
    EXPECT_TRUE(std::is_sorted(outline.begin(), outline.end(), isEarlier));
    EXPECT_EQ(reportedPoints(points.first(MOST_REPORTED_POINTS)), points.first(MOST_REPORTED_POINTS));
}

} // namespace
} // namespace zav
