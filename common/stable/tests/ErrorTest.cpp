// SPDX-License-Identifier: Apache-2.0
#include <zav/Error.h>

#include <gtest/gtest.h>

namespace zav {
namespace {

TEST(Error, DefaultAndNoErrorCodeAreNoError)
{
    EXPECT_FALSE(Error().hasError());
    EXPECT_FALSE(Error(NoError).hasError());
    EXPECT_TRUE(Error().equals(NoError));
}

TEST(Error, CodesHaveTheirPublishedNumbers)
{
    EXPECT_EQ(0, NoError);
    EXPECT_EQ(1, Failure);
    EXPECT_EQ(2, InvalidInput);
}

TEST(Error, CarriesCodeAndMessage)
{
    const Error error(InvalidInput, QStringLiteral("Start is greater than end"));
    EXPECT_TRUE(error.hasError());
    EXPECT_TRUE(error.equals(InvalidInput));
    EXPECT_FALSE(error.equals(Failure));
    EXPECT_EQ(InvalidInput, error.code());
    EXPECT_EQ(QStringLiteral("Start is greater than end"), error.message());
}

TEST(Error, EcatchAppendsToTheTrailInnermostFirstAndReturnsTheSameObject)
{
    Error error(Failure);
    EXPECT_EQ(&error, &error.ecatch("Error zav::inner()", "ml/src/Inner", 7));
    error.ecatch("Error zav::outer(int)", "ml/src/Outer", 123);

    const QList<CaughtAt> trail = error.trail();
    ASSERT_EQ(2, trail.size());
    EXPECT_EQ(QStringLiteral("Error zav::inner()"), trail[0].functionSignature);
    EXPECT_EQ(QStringLiteral("ml/src/Inner"), trail[0].sourceFile);
    EXPECT_EQ(7, trail[0].line);
    EXPECT_EQ(QStringLiteral("ml/src/Outer"), trail[1].sourceFile);
    EXPECT_EQ(123, trail[1].line);
}

TEST(Error, ToStringPrintsCodeMessageWarningsAndTrail)
{
    Error error(Failure, QStringLiteral("no such file"));
    error.addWarning(QStringLiteral("looked twice"));
    error.ecatch("Error zav::Model::init()", "ml/src/Model", 42);
    EXPECT_EQ(QStringLiteral("Failure: no such file\n"
                             "  warning: looked twice\n"
                             "  at ml/src/Model:42 in Error zav::Model::init()"),
              error.toString());
    EXPECT_EQ(QStringLiteral("InvalidInput"), Error(InvalidInput).toString());
    EXPECT_EQ(QStringLiteral("NoError"), Error().toString());
}

TEST(Error, CodeOfANewerLibraryIsPrintedAsANumber)
{
    EXPECT_EQ(QStringLiteral("ErrorCode(3)"), Error(static_cast<ErrorCode>(3)).toString());
}

TEST(Error, WarningOperationsChain)
{
    Error error;
    EXPECT_EQ(&error, &error.addWarning(QStringLiteral("a")).addWarnings({QStringLiteral("b"), QStringLiteral("c")}));
    EXPECT_EQ(QList<QString>({"a", "b", "c"}), error.warnings());
    EXPECT_EQ(&error, &error.clearWarnings());
    EXPECT_FALSE(error.hasWarnings());
}

TEST(Error, CopyAndMoveKeepEverything)
{
    Error original(Failure, QStringLiteral("m"));
    original.addWarning(QStringLiteral("w")).ecatch("f()", "file", 1);
    const Error copy(original);
    Error assigned;
    assigned = original;
    Error taken;
    taken = Error(original);
    const Error moved(std::move(original));
    for (const Error *error :
         {&copy, static_cast<const Error *>(&assigned), static_cast<const Error *>(&taken), &moved}) {
        EXPECT_EQ(Failure, error->code());
        EXPECT_EQ(QStringLiteral("m"), error->message());
        EXPECT_EQ(QList<QString>({"w"}), error->warnings());
        EXPECT_EQ(1, error->trail().size());
    }
}

TEST(Warnings, AssignedOnesAreACopy)
{
    Warnings warnings, other;
    warnings.addWarning(QStringLiteral("kept"));
    other.addWarning(QStringLiteral("replaced"));
    other = warnings;
    warnings.clearWarnings();
    EXPECT_EQ(QList<QString>({"kept"}), other.warnings());
}

TEST(Warnings, ResetReplacesWhatWasThere)
{
    Warnings warnings;
    warnings.addWarning(QStringLiteral("old"));
    warnings.resetWarning(QStringLiteral("new"));
    EXPECT_EQ(QList<QString>({"new"}), warnings.warnings());
    warnings.resetWarnings({QStringLiteral("x"), QStringLiteral("y")});
    EXPECT_EQ(QList<QString>({"x", "y"}), warnings.warnings());
    warnings.resetWarnings({});
    EXPECT_FALSE(warnings.hasWarnings());
}

TEST(Warnings, PublicOperationsReachTheOverridesOfADerivedClass)
{
    struct Mirror : Warnings
    {
        QStringList calls;
        void addWarningInternal(const QString &) override { calls << QStringLiteral("add"); }
        void addWarningsInternal(const QList<QString> &) override { calls << QStringLiteral("addAll"); }
        void clearWarningsInternal() override { calls << QStringLiteral("clear"); }
        void resetWarningInternal(const QString &) override { calls << QStringLiteral("reset"); }
        void resetWarningsInternal(const QList<QString> &) override { calls << QStringLiteral("resetAll"); }
    };
    Mirror mirror;
    mirror.addWarning({});
    mirror.addWarnings({});
    mirror.clearWarnings();
    mirror.resetWarning({});
    mirror.resetWarnings({});
    EXPECT_EQ(QStringList({"add", "addAll", "clear", "reset", "resetAll"}), mirror.calls);
}

} // namespace
} // namespace zav
