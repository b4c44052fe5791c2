// SPDX-License-Identifier: Apache-2.0
#include <zav/Result.h>

#include "ReturnIfError.h"

#include <gtest/gtest.h>

#include <memory>

namespace zav {
namespace {

using Numbers = QList<int>;

TEST(Result, FromAValueHoldsItWithoutErrorOrWarnings)
{
    const Result<Numbers> result(Numbers{1, 2});
    EXPECT_FALSE(result.hasError());
    EXPECT_EQ(Numbers({1, 2}), result.value());
    EXPECT_FALSE(result.error().hasError());
    EXPECT_FALSE(result.hasWarnings());
}

TEST(Result, FromAnErrorCopiesItsWarnings)
{
    Error error(Failure, QStringLiteral("broken"));
    error.addWarning(QStringLiteral("w")).ecatch("f()", "file", 3);
    const Result<Numbers> result(error);
    EXPECT_TRUE(result.hasError());
    EXPECT_EQ(QStringLiteral("broken"), result.error().message());
    EXPECT_EQ(1, result.error().trail().size()) << "the error is stored as it was tagged, nothing is added";
    EXPECT_EQ(QList<QString>({"w"}), result.warnings());
}

TEST(Result, FromAnErrorThatIsMovedTakesItsWarnings)
{
    Error error(Failure, QStringLiteral("broken"));
    error.addWarnings({QStringLiteral("v"), QStringLiteral("w")});
    const Result<Numbers> result(std::move(error));
    EXPECT_TRUE(result.hasError());
    EXPECT_EQ(QStringLiteral("broken"), result.error().message());
    EXPECT_EQ(QList<QString>({"v", "w"}), result.warnings());
    EXPECT_EQ(QList<QString>({"v", "w"}), result.error().warnings());
}

TEST(Result, MirrorsEveryWarningOperationIntoItsError)
{
    Result<Numbers> result(Error{Failure});
    result.addWarning(QStringLiteral("a"));
    result.addWarnings({QStringLiteral("b"), QStringLiteral("c")});
    EXPECT_EQ(QList<QString>({"a", "b", "c"}), result.warnings());
    EXPECT_EQ(result.warnings(), result.error().warnings());
    result.resetWarning(QStringLiteral("d"));
    EXPECT_EQ(QList<QString>({"d"}), result.error().warnings());
    result.resetWarnings({QStringLiteral("e"), QStringLiteral("f")});
    EXPECT_EQ(QList<QString>({"e", "f"}), result.warnings());
    EXPECT_EQ(result.warnings(), result.error().warnings());
    result.clearWarnings();
    EXPECT_FALSE(result.hasWarnings());
    EXPECT_FALSE(result.error().hasWarnings());
}

TEST(Result, WarningsOfASuccessStayWithTheResult)
{
    Result<Numbers> result(Numbers{});
    result.addWarning(QStringLiteral("thin"));
    EXPECT_EQ(QList<QString>({"thin"}), result.warnings());
    EXPECT_FALSE(result.error().hasWarnings());
}

TEST(Result, MirroringWorksThroughTheBaseClass)
{
    Result<Numbers> result(Error{Failure});
    Warnings &base = result;
    base.addWarning(QStringLiteral("through the base"));
    EXPECT_EQ(QList<QString>({"through the base"}), result.error().warnings());
}

TEST(Result, ValueOfATemporaryMoves)
{
    using Owner = std::unique_ptr<int>;
    Result<Owner> result(std::make_unique<int>(5));
    const Owner owner = std::move(result).value();
    ASSERT_TRUE(owner);
    EXPECT_EQ(5, *owner);
}

TEST(Result, CopiesAreIndependent)
{
    Result<Numbers> first(Error{Failure});
    Result<Numbers> second = first;
    second.addWarning(QStringLiteral("only the second"));
    EXPECT_FALSE(first.hasWarnings());
    EXPECT_FALSE(first.error().hasWarnings());
}

TEST(Result, ValueOfAFailureThrowsInsteadOfReadingTheWrongMember)
{
    const Result<Numbers> result(Error{Failure});
    EXPECT_THROW(static_cast<void>(result.value()), std::bad_variant_access);
}

// Passing a result on

constexpr char SOURCE_FILE[] = "common/stable/tests/ResultTest";

Result<QString> passedOn(const Result<Numbers> &numbers)
{
    ZAV_RETURN_IF_ERROR(numbers, 17);
    return QString::number(numbers.value().size());
}

Error passedOnAsError(const Result<Numbers> &numbers)
{
    ZAV_RETURN_IF_ERROR(numbers, 18);
    return {};
}

TEST(PassedOnResult, WithAValueIsGoneOnWith)
{
    const Result<QString> outcome = passedOn(Numbers{1, 2});
    ASSERT_FALSE(outcome.hasError());
    EXPECT_EQ(QStringLiteral("2"), outcome.value());
    EXPECT_FALSE(passedOnAsError(Numbers{}).hasError());
}

TEST(PassedOnResult, WithAnErrorKeepsItAndTagsACopy)
{
    Error error(InvalidInput, QStringLiteral("broken"));
    error.addWarning(QStringLiteral("w")).ecatch("inner()", "file", 3);
    const Result<Numbers> numbers(error);
    for (const Error &outcome : {passedOn(numbers).error(), passedOnAsError(numbers)}) {
        EXPECT_TRUE(outcome.equals(InvalidInput));
        EXPECT_EQ(QStringLiteral("broken"), outcome.message());
        EXPECT_EQ(QList<QString>({"w"}), outcome.warnings());
        ASSERT_EQ(2, outcome.trail().size());
        EXPECT_EQ(3, outcome.trail()[0].line);
        EXPECT_EQ(QStringLiteral("common/stable/tests/ResultTest"), outcome.trail()[1].sourceFile);
        EXPECT_TRUE(outcome.trail()[1].functionSignature.contains(QStringLiteral("passedOn")));
    }
    EXPECT_EQ(17, passedOn(numbers).error().trail().last().line);
    EXPECT_EQ(1, numbers.error().trail().size());
}

TEST(PassedOnResult, OfAnErrorWithoutACodeHasNoValueToGoOnWith)
{
    const Result<QString> outcome = passedOn(Error(NoError, QStringLiteral("no code")));
    ASSERT_TRUE(outcome.hasError());
    EXPECT_EQ(QStringLiteral("no code"), outcome.error().message());
    EXPECT_EQ(17, outcome.error().trail().last().line);
}

} // namespace
} // namespace zav
