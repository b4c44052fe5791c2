// SPDX-License-Identifier: Apache-2.0
#include "Trace.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

TEST(TraceTally, CountsWhatWasFound)
{
    TraceTally tally;
    for (const int rows : {2, 0, 1})
        tally.addTrace(rows);
    EXPECT_EQ(tally.text("peaks"), "3 traces: 3 peaks in 2, none in 1");
    EXPECT_EQ(tally.failures(), 0);
}

TEST(TraceTally, NamesFailuresOnlyWhenThereAreSome)
{
    TraceTally tally;
    tally.addTrace(1);
    tally.addFailure();
    EXPECT_EQ(tally.text("splits"), "2 traces: 1 split in 1, none in 0, 1 failed");
    EXPECT_EQ(tally.failures(), 1);
    EXPECT_EQ(tally.traces(), 2);
}

TEST(TraceTally, CountsGroupsWhereThereAreSome)
{
    TraceTally tally;
    tally.addGroup();
    for (const int rows : {1, 1, 0})
        tally.addTrace(rows);
    EXPECT_EQ(tally.text("peaks"), "3 traces in 1 group: 2 peaks in 2, none in 1");
    tally.addGroup();
    EXPECT_EQ(tally.text("peaks"), "3 traces in 2 groups: 2 peaks in 2, none in 1");
}

TEST(TraceTally, CountsWhatWasLeftOut)
{
    TraceTally tally;
    tally.addTrace(2, 3);
    tally.addTrace(1);
    tally.addFailure();
    EXPECT_EQ(tally.text("peaks"), "3 traces: 3 peaks in 2, none in 0, 1 failed, 3 peaks left out");
}

} // namespace
} // namespace zav
