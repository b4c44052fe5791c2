// SPDX-License-Identifier: Apache-2.0
#include "Interruption.h"

#include <gtest/gtest.h>

#include <csignal>

namespace zav {
namespace {

class Signals : public testing::Test
{
protected:
    // The program that runs the tests may ignore signals, which processes inherit.
    void SetUp() override
    {
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGTERM, SIG_DFL);
#ifdef SIGHUP
        std::signal(SIGHUP, SIG_DFL);
#endif
    }
};

using SignalsDeathTest = Signals;

TEST_F(Signals, NothingIsRequestedWithoutASignal)
{
    const Interruption interruption;
    EXPECT_FALSE(interruption.isRequested());
    EXPECT_EQ(interruption.exitCode(), 0);
}

TEST_F(Signals, NotesAnInterruptAndGivesTheExitCodeOfAShell)
{
    const Interruption interruption;
    std::raise(SIGINT);
    EXPECT_TRUE(interruption.isRequested());
    EXPECT_EQ(interruption.exitCode(), 130);
}

TEST_F(Signals, NotesATerminationAndGivesTheExitCodeOfAShell)
{
    const Interruption interruption;
    std::raise(SIGTERM);
    EXPECT_EQ(interruption.exitCode(), 143);
}

#ifdef SIGHUP
TEST_F(Signals, NotesThatTheTerminalIsGoneAndGivesTheExitCodeOfAShell)
{
    const Interruption interruption;
    std::raise(SIGHUP);
    EXPECT_TRUE(interruption.isRequested());
    EXPECT_EQ(interruption.exitCode(), 129);
}
#endif

TEST_F(Signals, ForgetsTheSignalsOfTheObjectBefore)
{
    {
        const Interruption interruption;
        std::raise(SIGINT);
    }
    const Interruption interruption;
    EXPECT_FALSE(interruption.isRequested());
}

TEST_F(Signals, IgnoresWhatTheProcessIgnored)
{
    std::signal(SIGINT, SIG_IGN);
    {
        const Interruption interruption;
        std::raise(SIGINT);
        EXPECT_FALSE(interruption.isRequested());
    }
    EXPECT_EQ(std::signal(SIGINT, SIG_DFL), SIG_IGN);
}

TEST_F(SignalsDeathTest, TheSecondSignalEndsTheProcess)
{
    EXPECT_EXIT(
        {
            const Interruption interruption;
            std::raise(SIGINT);
            std::raise(SIGINT);
        },
        testing::KilledBySignal(SIGINT), "");
}

TEST_F(SignalsDeathTest, ASignalAfterTheObjectEndsTheProcess)
{
    EXPECT_EXIT(
        {
            {
                const Interruption interruption;
            }
            std::raise(SIGTERM);
        },
        testing::KilledBySignal(SIGTERM), "");
}

} // namespace
} // namespace zav
