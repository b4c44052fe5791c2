// SPDX-License-Identifier: Apache-2.0
#include "XicInputVector.h"

#include <gtest/gtest.h>

#include <limits>

namespace zav {
namespace {

TEST(XicInputVector, AsymmetricFilterComesOutMirrored)
{
    EXPECT_EQ(Eigen::Vector3d(3, 2, 1), mirrored(Eigen::Vector3d(1, 2, 3)));
    EXPECT_EQ(0, mirrored({}).size());
}

TEST(XicInputVector, ThinningLeavesTwoHundredPointsOfRoom)
{
    EXPECT_EQ(3896, thinningTarget(4096));
    EXPECT_EQ(1, thinningTarget(201));
}

TEST(XicInputVector, ThinningTargetIsNeverBelowZero)
{
    for (const int count : {200, 0, -1, std::numeric_limits<int>::min()})
        EXPECT_EQ(0, thinningTarget(count)) << count;
}

TEST(XicInputVector, LengthOfZeroOrLessGivesAnEmptyVector)
{
    for (const int length : {0, -5})
        EXPECT_EQ(0, buildXicInputVector({}, Eigen::VectorXd::Ones(1), {length, -1.0, 1}).size()) << length;
}

} // namespace
} // namespace zav
