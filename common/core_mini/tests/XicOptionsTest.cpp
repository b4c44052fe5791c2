// SPDX-License-Identifier: Apache-2.0
#include <zav/XicBaselineLimitsDetectorOptions.h>
#include <zav/XicPeakSplitterOptions.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zav {
namespace {

using DetectorOptions = XicBaselineLimitsDetectorOptions;
using SplitterOptions = XicPeakSplitterOptions;

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

template <typename Options>
Options usable()
{
    Options options;
    options.modelFilePath = QStringLiteral("xic.pb");
    return options;
}

// The message for usable options with one field changed; empty when they are still usable.
template <typename Options, typename Field, typename Value>
QString complaint(Field Options::*field, Value value)
{
    auto options = usable<Options>();
    options.*field = value;
    const Error error = options.checkForParameterErrors();
    EXPECT_EQ(error.hasError(), error.equals(InvalidInput));
    EXPECT_EQ(error.hasError(), !error.message().isEmpty());
    EXPECT_TRUE(error.trail().isEmpty());
    return error.message();
}

// Structured bindings name every field in order: a new one does not compile until it is listed here.
TEST(XicBaselineLimitsDetectorOptions, HasTheseFieldsAndDefaults)
{
    const auto &[modelFilePath, maxPointCount, probabilityTolerance, dbscanEpsilon, dbscanMinPoints, minPointCount,
                 smoothingPassCount, gaussianFilterSize, limitThreshold] = DetectorOptions();
    EXPECT_EQ(QString(), modelFilePath);
    EXPECT_EQ(8192, maxPointCount);
    EXPECT_EQ(0.8, probabilityTolerance);
    EXPECT_EQ(1.5, dbscanEpsilon);
    EXPECT_EQ(2, dbscanMinPoints);
    EXPECT_EQ(5, minPointCount);
    EXPECT_EQ(1, smoothingPassCount);
    EXPECT_EQ(5, gaussianFilterSize);
    EXPECT_EQ(0.05, limitThreshold);
}

TEST(XicPeakSplitterOptions, HasTheseFieldsAndDefaults)
{
    const auto &[modelFilePath, maxPointCount, probabilityTolerance, gaussianFilterSize, smoothingPassCount] =
        SplitterOptions();
    EXPECT_EQ(QString(), modelFilePath);
    EXPECT_EQ(1024, maxPointCount);
    EXPECT_EQ(0.5, probabilityTolerance);
    EXPECT_EQ(5, gaussianFilterSize);
    EXPECT_EQ(0, smoothingPassCount);
}

template <typename Options>
class XicOptions : public testing::Test
{};
using BothOptions = testing::Types<DetectorOptions, SplitterOptions>;
TYPED_TEST_SUITE(XicOptions, BothOptions);

TYPED_TEST(XicOptions, DefaultsWithAModelFileAreUsable)
{
    EXPECT_FALSE(usable<TypeParam>().checkForParameterErrors().hasError());
}

TYPED_TEST(XicOptions, ModelFilePathMustBeSet)
{
    EXPECT_EQ("modelFilePath is empty, must be set", complaint(&TypeParam::modelFilePath, QString()));
    EXPECT_EQ("", complaint(&TypeParam::modelFilePath, QStringLiteral("no such file"))) << "not looked at here";
}

TYPED_TEST(XicOptions, MaxPointCountMustExceedTheThinningMargin)
{
    EXPECT_EQ("maxPointCount is 200, must be greater than 200", complaint(&TypeParam::maxPointCount, 200));
    EXPECT_EQ("maxPointCount is -5, must be greater than 200", complaint(&TypeParam::maxPointCount, -5));
    EXPECT_EQ("", complaint(&TypeParam::maxPointCount, 201));
}

TYPED_TEST(XicOptions, MaxPointCountIsAtMostTwoToThe24)
{
    const auto field = &TypeParam::maxPointCount;
    EXPECT_EQ("", complaint(field, 16777216));
    EXPECT_EQ("maxPointCount is 16777217, must be 16777216 or less", complaint(field, 16777217));
    EXPECT_EQ("maxPointCount is 2147483647, must be 16777216 or less",
              complaint(field, std::numeric_limits<int>::max()));
}

TYPED_TEST(XicOptions, ProbabilityToleranceLiesWithinZeroToOne)
{
    const auto field = &TypeParam::probabilityTolerance;
    EXPECT_EQ("probabilityTolerance is -0.001, must be within 0 to 1", complaint(field, -0.001));
    EXPECT_EQ("probabilityTolerance is 1.5, must be within 0 to 1", complaint(field, 1.5));
    EXPECT_EQ("probabilityTolerance is nan, must be within 0 to 1", complaint(field, NOT_A_NUMBER));
    for (const double value : {0.0, 0.3, 1.0})
        EXPECT_EQ("", complaint(field, value));
}

TYPED_TEST(XicOptions, SmoothingPassCountIsNotNegative)
{
    EXPECT_EQ("smoothingPassCount is -1, must be 0 or more", complaint(&TypeParam::smoothingPassCount, -1));
    EXPECT_EQ("", complaint(&TypeParam::smoothingPassCount, 0));
    EXPECT_EQ("", complaint(&TypeParam::smoothingPassCount, 9));
}

TYPED_TEST(XicOptions, GaussianFilterHasATap)
{
    EXPECT_EQ("gaussianFilterSize is 0, must be 1 or more", complaint(&TypeParam::gaussianFilterSize, 0));
    EXPECT_EQ("", complaint(&TypeParam::gaussianFilterSize, 1));
    EXPECT_EQ("", complaint(&TypeParam::gaussianFilterSize, 6));
}

TYPED_TEST(XicOptions, GaussianFilterHasAtMostTwoToThe20Taps)
{
    EXPECT_EQ("", complaint(&TypeParam::gaussianFilterSize, 1048576));
    EXPECT_EQ("gaussianFilterSize is 1048577, must be 1048576 or less",
              complaint(&TypeParam::gaussianFilterSize, 1048577));
}

TYPED_TEST(XicOptions, FirstBrokenFieldIsNamed)
{
    TypeParam options;
    options.maxPointCount = 0;
    options.probabilityTolerance = 2.0;
    EXPECT_EQ("modelFilePath is empty, must be set", options.checkForParameterErrors().message());
    options.modelFilePath = QStringLiteral("xic.pb");
    EXPECT_EQ("maxPointCount is 0, must be greater than 200", options.checkForParameterErrors().message());
}

TYPED_TEST(XicOptions, CopyAssignmentTakesRejectedValuesToo)
{
    TypeParam rejected;
    rejected.maxPointCount = 3;
    TypeParam stored = usable<TypeParam>();
    stored = rejected;
    EXPECT_EQ(3, stored.maxPointCount);
    EXPECT_TRUE(stored.modelFilePath.isEmpty());
}

TEST(XicBaselineLimitsDetectorOptions, DbscanEpsilonIsPositive)
{
    const auto field = &DetectorOptions::dbscanEpsilon;
    EXPECT_EQ("dbscanEpsilon is 0, must be greater than 0", complaint(field, 0.0));
    EXPECT_EQ("dbscanEpsilon is -1.5, must be greater than 0", complaint(field, -1.5));
    EXPECT_EQ("dbscanEpsilon is nan, must be greater than 0", complaint(field, NOT_A_NUMBER));
    EXPECT_EQ("", complaint(field, 0.5));
}

TEST(XicBaselineLimitsDetectorOptions, DbscanMinPointsIsOneOrMore)
{
    EXPECT_EQ("dbscanMinPoints is 0, must be 1 or more", complaint(&DetectorOptions::dbscanMinPoints, 0));
    EXPECT_EQ("", complaint(&DetectorOptions::dbscanMinPoints, 1));
}

TEST(XicBaselineLimitsDetectorOptions, DbscanMinPointsIsAtMostTwoToThe20)
{
    EXPECT_EQ("", complaint(&DetectorOptions::dbscanMinPoints, 1048576));
    EXPECT_EQ("dbscanMinPoints is 1048577, must be 1048576 or less",
              complaint(&DetectorOptions::dbscanMinPoints, 1048577));
}

TEST(XicBaselineLimitsDetectorOptions, MinPointCountIsNotNegative)
{
    EXPECT_EQ("minPointCount is -1, must be 0 or more", complaint(&DetectorOptions::minPointCount, -1));
    EXPECT_EQ("", complaint(&DetectorOptions::minPointCount, 0));
}

TEST(XicBaselineLimitsDetectorOptions, LimitThresholdIsAShareBelowTheApex)
{
    const auto field = &DetectorOptions::limitThreshold;
    EXPECT_EQ("limitThreshold is 1, must be 0 or more and less than 1", complaint(field, 1.0));
    EXPECT_EQ("limitThreshold is -0.1, must be 0 or more and less than 1", complaint(field, -0.1));
    EXPECT_EQ("limitThreshold is nan, must be 0 or more and less than 1", complaint(field, NOT_A_NUMBER));
    EXPECT_EQ("", complaint(field, 0.0));
    EXPECT_EQ("", complaint(field, std::nextafter(1.0, 0.0)));
}

} // namespace
} // namespace zav
