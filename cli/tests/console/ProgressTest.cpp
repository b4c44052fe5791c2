// SPDX-License-Identifier: Apache-2.0
#include "Progress.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

std::string bar(qint64 done, qint64 total, qint64 elapsedMs)
{
    return Progress::barText(done, total, QStringLiteral("peptides"), elapsedMs).toStdString();
}

TEST(Progress, BarFillsInProportionAndTheTimeLeftIsExtrapolated)
{
    EXPECT_EQ(bar(500, 2000, 3000), "[#######.......................] 500 of 2000 peptides, 167 / s, 9 s left");
}

TEST(Progress, NothingDoneSaysNoTime)
{
    EXPECT_EQ(bar(0, 2000, 1000), "[..............................] 0 of 2000 peptides");
}

TEST(Progress, LongTimesAreInMinutesRoundedUp)
{
    EXPECT_EQ(bar(1, 101, 1000), "[..............................] 1 of 101 peptides, 1.0 / s, 2 min left");
}

TEST(Progress, AFullBarHasNoDots)
{
    EXPECT_EQ(bar(7, 7, 1000), "[##############################] 7 of 7 peptides, 7.0 / s, 0 s left");
}

TEST(Progress, UnknownTotalHasNoBar)
{
    EXPECT_EQ(bar(1200, -1, 3900), "1200 peptides, 3 s");
}

TEST(Progress, WritesNothingWhenItIsNotShown)
{
    ::testing::internal::CaptureStderr();
    {
        Progress progress(10, QStringLiteral("peptides"), false);
        progress.update(5);
        progress.clear();
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST(Progress, WritesNothingInTheFirstSecond)
{
    ::testing::internal::CaptureStderr();
    {
        Progress progress(10, QStringLiteral("peptides"), true);
        progress.update(5);
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

} // namespace
} // namespace zav
