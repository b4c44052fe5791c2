// SPDX-License-Identifier: Apache-2.0
#include "Terminal.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace zav {
namespace {

template <typename Talk>
std::string seenOf(const Talk &talk)
{
    testing::internal::CaptureStderr();
    talk();
    std::fflush(stderr);
    return testing::internal::GetCapturedStderr();
}

TEST(QuietStandardErrorTest, LetsNothingThroughWhileItLives)
{
    const std::string seen = seenOf([] {
        {
            const QuietStandardError quiet(true);
            std::fputs("lost\n", stderr);
        }
        std::fputs("seen\n", stderr);
    });
    EXPECT_EQ(seen, "seen\n");
}

TEST(QuietStandardErrorTest, ThatIsEndedLetsLastWordsThrough)
{
    const std::string seen = seenOf([] {
        const QuietStandardError quiet(true);
        std::fputs("lost\n", stderr);
        QuietStandardError::end();
        std::fputs("last words\n", stderr);
    });
    EXPECT_EQ(seen, "last words\n");
}

TEST(QuietStandardErrorTest, ThatIsNotQuietLetsEverythingThrough)
{
    const std::string seen = seenOf([] {
        const QuietStandardError quiet(false);
        std::fputs("seen\n", stderr);
        QuietStandardError::end();
        std::fputs("too\n", stderr);
    });
    EXPECT_EQ(seen, "seen\ntoo\n");
}

TEST(QuietStandardErrorTest, ThatIsNotQuietLeavesTheQuietOfAnotherAlone)
{
    const std::string seen = seenOf([] {
        const QuietStandardError quiet(true);
        {
            const QuietStandardError other(false);
        }
        std::fputs("lost\n", stderr);
    });
    EXPECT_EQ(seen, "");
}

} // namespace
} // namespace zav
