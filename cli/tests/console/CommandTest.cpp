// SPDX-License-Identifier: Apache-2.0
#include "Command.h"

#include <QtCore/QStringList>

#include <gtest/gtest.h>

#include <csignal>
#include <functional>

namespace zav {
namespace {

/// Notes which of its steps ran.
class ThreeSteps : public Command
{
public:
    explicit ThreeSteps(std::function<Error(ThreeSteps *)> second) : Command(false), m_second(std::move(second)) {}

    using Command::checkForInterrupt;
    using Command::fail;
    using Command::noteInterrupts;

    QString ran;

private:
    Error work() override { return inTurn(this, {&ThreeSteps::first, &ThreeSteps::second, &ThreeSteps::third}); }

    Error first()
    {
        ran += QLatin1Char('1');
        return {};
    }

    Error second()
    {
        ran += QLatin1Char('2');
        return m_second(this);
    }

    Error third()
    {
        ran += QLatin1Char('3');
        return {};
    }

    std::function<Error(ThreeSteps *)> m_second;
};

struct Outcome
{
    int exitCode;
    std::string ran;
    std::string standardError;
};

Outcome outcomeOf(std::function<Error(ThreeSteps *)> second)
{
    testing::internal::CaptureStderr();
    ThreeSteps command(std::move(second));
    const int exitCode = command.run();
    return {exitCode, command.ran.toStdString(), testing::internal::GetCapturedStderr()};
}

TEST(Command, TakesItsStepsInTurn)
{
    const Outcome outcome = outcomeOf([](ThreeSteps *) { return Error(); });
    EXPECT_EQ(outcome.exitCode, AllDone);
    EXPECT_EQ(outcome.ran, "123");
    EXPECT_EQ(outcome.standardError, "");
}

TEST(Command, EndsAtTheFirstErrorAndReportsIt)
{
    const Outcome outcome = outcomeOf([](ThreeSteps *) { return Error(Failure, QStringLiteral("no disk")); });
    EXPECT_EQ(outcome.exitCode, SomeFailed);
    EXPECT_EQ(outcome.ran, "12");
    EXPECT_EQ(outcome.standardError, "zav: no disk\n");
}

TEST(Command, GoesOnAfterAFailureOfAPartAndRemembersIt)
{
    const Outcome outcome = outcomeOf([](ThreeSteps *command) {
        command->fail(Error(InvalidInput, QStringLiteral("the peptide is empty")), QStringLiteral("list:7"));
        return Error();
    });
    EXPECT_EQ(outcome.exitCode, SomeFailed);
    EXPECT_EQ(outcome.ran, "123");
    EXPECT_EQ(outcome.standardError, "zav: list:7: the peptide is empty\n");
}

TEST(Command, InterruptGivesTheExitCodeOfAShell)
{
    std::signal(SIGTERM, SIG_DFL);
    const Outcome outcome = outcomeOf([](ThreeSteps *command) {
        command->noteInterrupts();
        EXPECT_FALSE(command->checkForInterrupt().hasError());
        std::raise(SIGTERM);
        return command->checkForInterrupt();
    });
    EXPECT_EQ(outcome.exitCode, 143);
    EXPECT_EQ(outcome.standardError, "zav: interrupted\n");
}

TEST(Command, InterruptThatStoppedNothingIsNoFailure)
{
    std::signal(SIGINT, SIG_DFL);
    const Outcome outcome = outcomeOf([](ThreeSteps *command) {
        command->noteInterrupts();
        std::raise(SIGINT);
        return Error();
    });
    EXPECT_EQ(outcome.exitCode, AllDone);
    EXPECT_EQ(outcome.ran, "123");
}

} // namespace
} // namespace zav
