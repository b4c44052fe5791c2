// SPDX-License-Identifier: Apache-2.0
#include "XicInputVector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zav {
namespace {

TEST(XicInputVector, AsymmetricFilterComesOutMirrored)
{
    EXPECT_EQ(Eigen::Vector3d(3, 2, 1), mirrored(Eigen::Vector3d(1, 2, 3)));
    EXPECT_EQ(0, mirrored({}).size());
}

TEST(XicInputVector, SmoothingKernelIsTheMirroredFilterOfSigmaFourAndSumOne)
{
    const FilterFunction rising = [](int size, double sigma, bool normalised) -> Eigen::VectorXd {
        return Eigen::Vector4d(1, size, sigma, normalised ? 5 : -5);
    };
    EXPECT_EQ(Eigen::Vector4d(5, 4, 9, 1), buildSmoothingKernel(9, rising));
}

TEST(XicInputVector, LargestElementOfATrillionthIsDividedByTheSmallestNormalDouble)
{
    // One tap scales the intensity of 1 to what no float could be.
    const auto firstOf = [](double largest) {
        return buildXicInputVector({{0, 1}}, Eigen::VectorXd::Constant(1, largest), {1, 0.0, 1})[0];
    };
    EXPECT_EQ(std::numeric_limits<float>::infinity(), firstOf(1e-12));
    EXPECT_EQ(1.0F, firstOf(std::nextafter(1e-12, 1.0)));
    EXPECT_EQ(-std::numeric_limits<float>::infinity(), firstOf(-1e-12));
    EXPECT_EQ(1.0F, firstOf(-std::nextafter(1e-12, 1.0)));
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
