// SPDX-License-Identifier: Apache-2.0
#include "ProgramRun.h"
#include "SimulatedTraces.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

TEST(NoChromatogramPicture, BuildThatCannotDrawSaysSoBeforeItWorks)
{
    for (const char *command : {"limits", "split"}) {
        const ProgramRun run =
            runZav({command, "-", "--plot", "a.svg"}, tsvFile(simulatedTrace(200, {{100, 5000, 5}})));
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.standardOutput, "");
        EXPECT_EQ(run.standardError, "zav: this build of zav cannot draw pictures\n");
    }
}

} // namespace
} // namespace zav
