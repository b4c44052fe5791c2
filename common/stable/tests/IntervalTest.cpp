// SPDX-License-Identifier: Apache-2.0
#include <zav/Interval.h>

#include <gtest/gtest.h>

#include <limits>

namespace zav {
namespace {

TEST(Interval, HoldsStartThenEnd)
{
    const Interval<int> interval{3, 7};
    EXPECT_EQ(3, interval.start);
    EXPECT_EQ(7, interval.end);
}

TEST(Interval, BothEndsAreInside)
{
    const Interval<double> interval{1.5, 2.5};
    EXPECT_TRUE(interval.contains(1.5));
    EXPECT_TRUE(interval.contains(2.0));
    EXPECT_TRUE(interval.contains(2.5));
    EXPECT_FALSE(interval.contains(1.4999));
    EXPECT_FALSE(interval.contains(2.5001));
}

TEST(Interval, NaNIsNeverInside)
{
    const Interval<double> interval{0.0, 1.0};
    EXPECT_FALSE(interval.contains(std::numeric_limits<double>::quiet_NaN()));
}

} // namespace
} // namespace zav
