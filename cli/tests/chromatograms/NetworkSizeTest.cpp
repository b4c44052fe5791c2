// SPDX-License-Identifier: Apache-2.0
#include "NetworkSize.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

QList<QPointF> rising(int count)
{
    QList<QPointF> points;
    for (int i = 0; i < count; ++i)
        points.append({i * 0.5, double(i)});
    return points;
}

TEST(NetworkSize, SmallestThatHoldsTheTraceIsTaken)
{
    EXPECT_EQ(networkSizeFor(0), 512);
    EXPECT_EQ(networkSizeFor(512), 512);
    EXPECT_EQ(networkSizeFor(513), 1024);
    EXPECT_EQ(networkSizeFor(1025), 2048);
    EXPECT_EQ(networkSizeFor(4096), 4096);
    EXPECT_EQ(networkSizeFor(1000000), 4096);
}

TEST(NetworkSize, TraceThatFitsIsNotThinned)
{
    EXPECT_EQ(thinnedTo(6, rising(6)), rising(6));
    EXPECT_EQ(thinnedTo(6, {}), QList<QPointF>());
}

TEST(NetworkSize, LongerTraceIsAveragedInGroupsOfNeighbours)
{
    const QList<QPointF> expected = {{0, 0.5}, {1, 2.5}, {2, 4.5}};
    EXPECT_EQ(thinnedTo(3, rising(6)), expected);
}

TEST(NetworkSize, GroupsDifferByOnePointAtMost)
{
    // 7 points in 3 groups: of 2, 2 and 3.
    const QList<QPointF> expected = {{0, 0.5}, {1, 2.5}, {2, 5}};
    EXPECT_EQ(thinnedTo(3, rising(7)), expected);
}

TEST(NetworkSize, ThinnedTraceHasExactlyTheSizeAskedFor)
{
    for (const int count : {4097, 5000, 8191, 100000})
        EXPECT_EQ(thinnedTo(4096, rising(count)).size(), 4096) << count;
}

} // namespace
} // namespace zav
