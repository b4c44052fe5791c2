// SPDX-License-Identifier: Apache-2.0
#include <zav/XicBaselineLimitsDetector.h>

#include "MessageRecorder.h"
#include "NaiveChromatogram.h"
#include "Trail.h"
#include "XicBaselineLimitsDetectorFixture.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

TEST_F(XicBaselineLimitsDetectorTest, FreshDetectorFailsInBothOverloads)
{
    const Intervals withNetwork = found({1, 2, 3}, NO_HINT);
    expectFailure(Failure, QString(), {"XicBaselineLimitsDetector:135"}, withNetwork);
    EXPECT_EQ((QStringList{"ErrorUtils::equal in common/core_mini/src/algo/ErrorUtils",
                           "XicBaselineLimitsDetector::Private::integrateXIC in ml/src/XicBaselineLimitsDetector"}),
              trailOf(withNetwork.error()));
    const Intervals walked = detector.integrateXIC(Network::chromatogram({1, 2, 3}));
    expectFailure(Failure, QString(), {"XicBaselineLimitsDetector:340"}, walked);
}

TEST_F(XicBaselineLimitsDetectorTest, FreshDetectorFailsBeforeItLooksAtThePoints)
{
    EXPECT_TRUE(detector.integrateXIC({}, NO_HINT, 0).hasError());
    EXPECT_TRUE(detector.integrateXIC({}).hasError());
}

TEST_F(XicBaselineLimitsDetectorTest, RefusedOptionsAreTaggedStoredAndLeaveItUnusable)
{
    XicBaselineLimitsDetectorOptions options = plainOptions(Network::identity());
    options.dbscanEpsilon = 0.0;
    options.minPointCount = 17;
    const Error error = detector.init(options);
    EXPECT_TRUE(error.equals(InvalidInput));
    EXPECT_EQ(QStringList{"XicBaselineLimitsDetector:79"}, linesOf(error).mid(linesOf(error).size() - 1));
    EXPECT_EQ(17, inside().options.minPointCount);
    EXPECT_FALSE(inside().initialised);
    EXPECT_TRUE(found({1, 2, 3}).hasError());
}

TEST_F(XicBaselineLimitsDetectorTest, UnreadableNetworkIsTaggedAndLeavesItUnusable)
{
    XicBaselineLimitsDetectorOptions options = plainOptions(Network::identity());
    options.modelFilePath = QStringLiteral("no such file.pb");
    testing::internal::CaptureStderr();
    const Error error = detector.init(options);
    EXPECT_NE(std::string::npos, testing::internal::GetCapturedStderr().find("Unable to open file: no such file.pb\n"));
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_EQ(QStringLiteral("XicBaselineLimitsDetector:81"), linesOf(error).last());
    EXPECT_FALSE(inside().initialised);
}

TEST_F(XicBaselineLimitsDetectorTest, SecondInitReplacesOptionsAndKernel)
{
    XicBaselineLimitsDetectorOptions options = plainOptions(Network::identity());
    options.gaussianFilterSize = 3;
    initialise(options);
    EXPECT_EQ(3, inside().smoothingKernel.size());
    options.gaussianFilterSize = 7;
    initialise(options);
    ASSERT_EQ(7, inside().smoothingKernel.size());
    const std::vector<double> expected = naive::gaussian(7, 4.0);
    for (int i = 0; i < 7; ++i)
        EXPECT_NEAR(expected[i], inside().smoothingKernel[6 - i], 1e-15);
}

TEST_F(XicBaselineLimitsDetectorTest, RefusedOptionsAreNotedBeforeTheirNetworkIsLookedFor)
{
    initialise();
    XicBaselineLimitsDetectorOptions refused = plainOptions(Network::identity());
    refused.modelFilePath = QStringLiteral("no such file.pb");
    refused.limitThreshold = 1.0;
    EXPECT_EQ(QStringLiteral("XicBaselineLimitsDetector:79"), linesOf(detector.init(refused)).last());
    expectIntervals({{2, 5}}, found(markedAt({3, 4, 5}))); // by the old network
}

TEST_F(XicBaselineLimitsDetectorTest, KernelStaysEmptyUntilAnInitSucceeds)
{
    XicBaselineLimitsDetectorOptions missing = plainOptions(Network::identity());
    missing.modelFilePath = QStringLiteral("no such file.pb");
    testing::internal::CaptureStderr();
    EXPECT_TRUE(detector.init(missing).hasError());
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(0, inside().smoothingKernel.size());
}

TEST_F(XicBaselineLimitsDetectorTest, NetworkThatLacksOnlyItsInitOperationIsLoadedAllTheSame)
{
    initialise(Network::constant(std::vector<float>(LENGTH, 0.0F)));
    GraphDefBuilder uninitialised;
    uninitialised.placeholder(Network::INPUT, {{-1, 1, 1}}).identity(Network::OUTPUT, Network::INPUT);
    testing::internal::CaptureStderr();
    const MessageRecorder silence;
    EXPECT_EQ(QStringLiteral("XicBaselineLimitsDetector:81"),
              linesOf(detector.init(plainOptions(uninitialised))).last());
    testing::internal::GetCapturedStderr();
    expectIntervals({{2, 5}}, found(markedAt({3, 4, 5})));
}

TEST_F(XicBaselineLimitsDetectorTest, FailingSecondInitLeavesItInitialisedWithTheNewOptions)
{
    initialise();
    XicBaselineLimitsDetectorOptions refused = plainOptions(Network::identity());
    refused.limitThreshold = 1.0;
    EXPECT_TRUE(detector.init(refused).hasError());
    EXPECT_TRUE(inside().initialised);
    EXPECT_EQ(1.0, inside().options.limitThreshold);
    expectIntervals({{2, 5}}, found(markedAt({3, 4, 5}))); // the network is still the old one
}

TEST_F(XicBaselineLimitsDetectorTest, WithoutANetworkAfterAFailedReloadItFailsAtTheInputTensor)
{
    initialise();
    XicBaselineLimitsDetectorOptions missing = plainOptions(Network::identity());
    missing.modelFilePath = QStringLiteral("no such file.pb");
    testing::internal::CaptureStderr();
    EXPECT_TRUE(detector.init(missing).hasError());
    testing::internal::GetCapturedStderr();
    const MessageRecorder silence;
    expectFailure(Failure, QString(), {"XicBaselineLimitsDetector:149"}, found(markedAt({3, 4, 5})));
}

} // namespace
} // namespace zav
