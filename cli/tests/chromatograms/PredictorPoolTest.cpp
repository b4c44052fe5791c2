// SPDX-License-Identifier: Apache-2.0
#include "PredictorPool.h"

#include "SimulatedTraces.h"

#include <zav/XicBaselineLimitsDetector.h>

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

using Pool = PredictorPool<XicBaselineLimitsDetector, XicBaselineLimitsDetectorOptions>;

const QString NETWORK = QStringLiteral(ZAV_MODELS "/xic_limits.pb");

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

TEST(PredictorPool, KeepsOnePredictorForEachSize)
{
    Pool pool({}, NETWORK, 0);
    const Result<XicBaselineLimitsDetector *> small = pool.predictor(pool.sizeFor(300));
    const Result<XicBaselineLimitsDetector *> large = pool.predictor(pool.sizeFor(600));
    ASSERT_FALSE(small.hasError()) << small.error().toString().toStdString();
    ASSERT_FALSE(large.hasError());
    EXPECT_NE(small.value(), large.value());
    EXPECT_EQ(pool.predictor(512).value(), small.value());
    EXPECT_EQ(pool.predictor(1024).value(), large.value());
}

TEST(PredictorPool, EverySizeFindsTheSameLimits)
{
    Pool pool({}, NETWORK, 0);
    const QList<QPointF> trace = simulatedTrace(400, {{100, 5000, 4}, {250, 900, 9}});
    QList<double> expected;
    for (const int size : NETWORK_SIZES) {
        const auto limits = pool.predictor(size).value()->integrateXIC(trace, -1.0, 0);
        ASSERT_FALSE(limits.hasError());
        QList<double> ends;
        for (const Interval<double> &peak : limits.value())
            ends += {peak.start, peak.end};
        EXPECT_FALSE(ends.isEmpty());
        if (size == NETWORK_SIZES.front())
            expected = ends;
        EXPECT_EQ(ends, expected) << size;
    }
}

TEST(PredictorPool, FixedSizeIsUsedForEveryTrace)
{
    const Pool pool({}, NETWORK, 800);
    EXPECT_EQ(pool.sizeFor(3), 800);
    EXPECT_EQ(pool.sizeFor(5000), 800);
}

TEST(PredictorPool, NetworkThatCannotBeLoadedIsNamedEachTime)
{
    Pool pool({}, QStringLiteral("nowhere/lost.pb"), 0);
    for (int i = 0; i < 2; ++i) {
        const Error error = pool.predictor(512).error();
        EXPECT_TRUE(error.message().startsWith("cannot load lost.pb: ")) << error.message().toStdString();
        EXPECT_FALSE(error.trail().isEmpty());
    }
}

} // namespace
} // namespace zav
