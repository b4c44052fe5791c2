// SPDX-License-Identifier: Apache-2.0
#include "ErrorUtils.h"

#include <gtest/gtest.h>

#include <limits>

namespace zav {
namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();

bool below(double value, double threshold, ErrorUtilsParam param)
{
    return !ErrorUtils::belowThreshold<double>(value, threshold, param, Error(Failure)).hasError();
}

bool belowInt(int value, int threshold, ErrorUtilsParam param)
{
    return !ErrorUtils::belowThreshold<int>(value, threshold, param, Error(Failure)).hasError();
}

bool aboveInt(int value, int threshold, ErrorUtilsParam param)
{
    return !ErrorUtils::aboveThreshold<int>(value, threshold, param, Error(Failure)).hasError();
}

TEST(ErrorUtils, EqualPassesOnEqualIntsAndBools)
{
    EXPECT_FALSE(ErrorUtils::equal<int>(7, 7, Error(Failure)).hasError());
    EXPECT_TRUE(ErrorUtils::equal<int>(7, 8, Error(Failure)).hasError());
    EXPECT_FALSE(ErrorUtils::equal<bool>(true, true, Error(Failure)).hasError());
    EXPECT_FALSE(ErrorUtils::equal<bool>(false, false, Error(Failure)).hasError());
    EXPECT_TRUE(ErrorUtils::equal<bool>(false, true, Error(Failure)).hasError());
}

TEST(ErrorUtils, PassedCheckDropsTheErrorWithItsMessageAndWarnings)
{
    Error error(InvalidInput, QStringLiteral("unused"));
    error.addWarning(QStringLiteral("also unused"));
    const Error passed = ErrorUtils::equal<int>(1, 1, error);
    EXPECT_TRUE(passed.equals(NoError));
    EXPECT_TRUE(passed.message().isEmpty());
    EXPECT_FALSE(passed.hasWarnings());
    EXPECT_TRUE(passed.trail().isEmpty());
}

TEST(ErrorUtils, FailedCheckKeepsCodeMessageWarningsAndEarlierTrail)
{
    Error error(InvalidInput, QStringLiteral("Start is greater than end"));
    error.addWarning(QStringLiteral("w")).ecatch("inner()", "inner", 3);
    const Error failed = ErrorUtils::belowThreshold<double>(2.0, 1.0, Inclusive, error);
    EXPECT_TRUE(failed.equals(InvalidInput));
    EXPECT_EQ(QStringLiteral("Start is greater than end"), failed.message());
    EXPECT_EQ(QList<QString>({"w"}), failed.warnings());
    ASSERT_EQ(2, failed.trail().size());
    EXPECT_EQ(QStringLiteral("inner()"), failed.trail().first().functionSignature);
}

TEST(ErrorUtils, FailedCheckTagsItselfOnce)
{
    const Error equal = ErrorUtils::equal<int>(1, 2, Error(Failure));
    const Error above = ErrorUtils::aboveThreshold<int>(1, 2, Inclusive, Error(Failure));
    const Error below = ErrorUtils::belowThreshold<int>(2, 1, Inclusive, Error(Failure));
    const std::pair<const Error *, const char *> expected[] = {
        {&equal, "equal"}, {&above, "aboveThreshold"}, {&below, "belowThreshold"}};
    for (const auto &[error, name] : expected) {
        ASSERT_EQ(1, error->trail().size()) << name;
        const CaughtAt place = error->trail().first();
        EXPECT_EQ(QStringLiteral("common/core_mini/src/algo/ErrorUtils"), place.sourceFile);
        EXPECT_TRUE(place.functionSignature.contains(QLatin1String("ErrorUtils::") + QLatin1String(name)))
            << place.functionSignature.toStdString();
        EXPECT_TRUE(place.functionSignature.contains(QLatin1String("int"))) << "the signature names the type";
        EXPECT_GT(place.line, 0);
    }
}

TEST(ErrorUtils, FailedCheckWithAnEmptyErrorPassesSilently)
{
    EXPECT_FALSE(ErrorUtils::equal<int>(1, 2, Error()).hasError());
    EXPECT_TRUE(ErrorUtils::equal<int>(1, 2, Error()).trail().isEmpty());
    EXPECT_FALSE(ErrorUtils::equal<bool>(true, false, Error(NoError)).hasError());
    EXPECT_FALSE(ErrorUtils::aboveThreshold<int>(1, 2, Inclusive, Error()).hasError());
    EXPECT_FALSE(ErrorUtils::belowThreshold<double>(2.0, 1.0, Inclusive, Error()).hasError());
}

TEST(ErrorUtils, AboveThresholdOfIntsPassesEqualityOnlyWhenInclusive)
{
    EXPECT_TRUE(aboveInt(5, 5, Inclusive));
    EXPECT_FALSE(aboveInt(5, 5, Exclusive));
    for (const ErrorUtilsParam param : {Inclusive, Exclusive}) {
        EXPECT_TRUE(aboveInt(6, 5, param));
        EXPECT_FALSE(aboveInt(4, 5, param));
    }
}

TEST(ErrorUtils, BelowThresholdOfIntsPassesEqualityOnlyWhenInclusive)
{
    EXPECT_TRUE(belowInt(5, 5, Inclusive));
    EXPECT_FALSE(belowInt(5, 5, Exclusive));
    for (const ErrorUtilsParam param : {Inclusive, Exclusive}) {
        EXPECT_TRUE(belowInt(4, 5, param));
        EXPECT_FALSE(belowInt(6, 5, param));
    }
}

TEST(ErrorUtils, BelowThresholdOfIntsHoldsAtTheEndsOfTheirRange)
{
    constexpr int LOWEST = std::numeric_limits<int>::min();
    constexpr int HIGHEST = std::numeric_limits<int>::max();
    EXPECT_TRUE(belowInt(LOWEST, HIGHEST, Exclusive));
    EXPECT_FALSE(belowInt(HIGHEST, LOWEST, Inclusive));
    EXPECT_FALSE(belowInt(HIGHEST, HIGHEST, Exclusive));
}

TEST(ErrorUtils, ParameterNumbersOtherThanOneAreExclusive)
{
    EXPECT_EQ(0, Exclusive);
    EXPECT_EQ(1, Inclusive);
    for (const int number : {2, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        const auto other = static_cast<ErrorUtilsParam>(number);
        EXPECT_FALSE(aboveInt(5, 5, other)) << number;
        EXPECT_FALSE(belowInt(5, 5, other)) << number;
        EXPECT_FALSE(below(0.5, 0.5, other)) << number;
        EXPECT_FALSE(below(0.5, 0.5 + 1e-13, other)) << number;
        EXPECT_TRUE(aboveInt(6, 5, other)) << number;
        EXPECT_TRUE(belowInt(4, 5, other)) << number;
        EXPECT_TRUE(below(0.4, 0.5, other)) << number;
    }
}

TEST(ErrorUtils, BelowThresholdOfDoublesPassesEqualityOnlyWhenInclusive)
{
    for (const double x : {0.0, 0.5, -0.5, 1.0, 1e6, -1e6}) {
        EXPECT_FALSE(below(x, x, Exclusive)) << x;
        EXPECT_TRUE(below(x, x, Inclusive)) << x;
    }
}

TEST(ErrorUtils, NearlyEqualDoublesFailExclusive)
{
    for (const double x : {0.0, 0.25, -0.25, 0.9}) {
        EXPECT_FALSE(below(x, x + 1e-13, Exclusive)) << x;
        EXPECT_FALSE(below(x, x + 9e-13, Exclusive)) << x;
        EXPECT_TRUE(below(x, x + 2e-12, Exclusive)) << x;
    }
}

TEST(ErrorUtils, InclusiveDoublesCompareWithoutTolerance)
{
    for (const double x : {0.0, 0.25, -0.25, 0.9}) {
        EXPECT_FALSE(below(x + 1e-13, x, Inclusive)) << x;
        EXPECT_TRUE(below(x, x + 1e-13, Inclusive)) << x;
    }
}

TEST(ErrorUtils, NearnessGrowsWithTheLargerMagnitudeAboveOne)
{
    EXPECT_FALSE(below(1e6, 1e6 + 5e-7, Exclusive)) << "within 1e-12 of a million";
    EXPECT_TRUE(below(1e6, 1e6 + 2e-6, Exclusive));
    EXPECT_FALSE(below(-1e6 - 5e-7, -1e6, Exclusive));
    EXPECT_TRUE(below(-1e6 - 2e-6, -1e6, Exclusive));
}

TEST(ErrorUtils, NaNPassesBothModes)
{
    for (const ErrorUtilsParam param : {Inclusive, Exclusive}) {
        EXPECT_TRUE(below(NOT_A_NUMBER, 1.0, param));
        EXPECT_TRUE(below(1.0, NOT_A_NUMBER, param));
        EXPECT_TRUE(below(NOT_A_NUMBER, NOT_A_NUMBER, param));
    }
}

TEST(ErrorUtils, InclusiveOrdersInfiniteDoublesAsUsual)
{
    EXPECT_FALSE(below(INFINITE, 1.0, Inclusive));
    EXPECT_TRUE(below(1.0, INFINITE, Inclusive));
    EXPECT_TRUE(below(-INFINITE, 1.0, Inclusive));
    EXPECT_TRUE(below(-INFINITE, INFINITE, Inclusive));
    EXPECT_TRUE(below(INFINITE, INFINITE, Inclusive));
}

// |a - inf| = inf is within 1e-12 inf = inf; inf - inf is NaN, within nothing.
TEST(ErrorUtils, ExclusiveTakesAnInfinityForNearToAllButItself)
{
    EXPECT_FALSE(below(INFINITE, 1.0, Exclusive));
    EXPECT_FALSE(below(1.0, INFINITE, Exclusive));
    EXPECT_FALSE(below(-INFINITE, 1.0, Exclusive));
    EXPECT_FALSE(below(-INFINITE, INFINITE, Exclusive));
    EXPECT_TRUE(below(INFINITE, INFINITE, Exclusive));
    EXPECT_TRUE(below(-INFINITE, -INFINITE, Exclusive));
}

} // namespace
} // namespace zav
