// SPDX-License-Identifier: Apache-2.0
#include "PredictorPool.h"

#include "SimulatedTraces.h"

#include <zav/XicBaselineLimitsDetector.h>

#include <gtest/gtest.h>

namespace zav {
namespace {

using Pool = PredictorPool<XicBaselineLimitsDetector, XicBaselineLimitsDetectorOptions>;

XicBaselineLimitsDetectorOptions withNetwork(const QString &path)
{
    XicBaselineLimitsDetectorOptions options;
    options.modelFilePath = path;
    return options;
}

const QString NETWORK = QStringLiteral(ZAV_MODELS "/xic_limits.pb");

TEST(PredictorPool, KeepsOnePredictorForEachSize)
{
    Pool pool(withNetwork(NETWORK), 0);
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
    Pool pool(withNetwork(NETWORK), 0);
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
    const Pool pool(withNetwork(NETWORK), 800);
    EXPECT_EQ(pool.sizeFor(3), 800);
    EXPECT_EQ(pool.sizeFor(5000), 800);
}

TEST(PredictorPool, NetworkThatCannotBeLoadedIsNamedEachTime)
{
    Pool pool(withNetwork(QStringLiteral("nowhere/lost.pb")), 0);
    for (int i = 0; i < 2; ++i) {
        const Error error = pool.predictor(512).error();
        EXPECT_TRUE(error.message().startsWith("cannot load lost.pb: ")) << error.message().toStdString();
        EXPECT_FALSE(error.trail().isEmpty());
    }
}

} // namespace
} // namespace zav
