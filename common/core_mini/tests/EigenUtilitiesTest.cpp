// SPDX-License-Identifier: Apache-2.0
#include "EigenUtilities.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace zav {
namespace {

using Eigen::RowVectorXd;
using Eigen::VectorXd;
using Eigen::VectorXf;

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();

// Sums of a few values near 1.
constexpr double ROUNDING = 1e-14;

VectorXd vectorOf(const std::vector<double> &values)
{
    return Eigen::Map<const VectorXd>(values.data(), static_cast<Eigen::Index>(values.size()));
}

std::vector<double> listOf(const VectorXd &vector)
{
    return {vector.begin(), vector.end()};
}

VectorXd randomVector(int length, std::mt19937 &random)
{
    return VectorXd::NullaryExpr(length, [&] { return std::uniform_real_distribution(-1.0, 1.0)(random); });
}

TEST(GaussianFilter, SamplesTheBellAtWholeDistances)
{
    // exp(-1/32) and exp(-4/32), by hand: sigma 4.
    const VectorXd filter = EigenUtilities::buildGaussianFilter1D(5, 4.0, false);
    ASSERT_EQ(5, filter.size());
    const double expected[] = {0.8824969025845955, 0.9692332344763441, 1.0, 0.9692332344763441, 0.8824969025845955};
    for (int i = 0; i < 5; ++i)
        EXPECT_NEAR(expected[i], filter[i], ROUNDING);
}

TEST(GaussianFilter, NormalisedTapsSumToOne)
{
    // scipy 1.17.1, windows.gaussian(5, 4) over its sum.
    const VectorXd filter = EigenUtilities::buildGaussianFilter1D(5, 4.0, true);
    const double expected[] = {0.1876271619513901, 0.20606812388934165, 0.21260942831853658, 0.20606812388934165,
                               0.1876271619513901};
    for (int i = 0; i < 5; ++i)
        EXPECT_NEAR(expected[i], filter[i], ROUNDING);
    for (const int size : {1, 2, 7, 100, 1001})
        EXPECT_NEAR(1.0, EigenUtilities::buildGaussianFilter1D(size, 4.0, true).sum(), ROUNDING);
}

TEST(GaussianFilter, EvenSizesAreRoundedUp)
{
    EXPECT_EQ(3, EigenUtilities::buildGaussianFilter1D(2, 4.0, true).size());
    EXPECT_EQ(7, EigenUtilities::buildGaussianFilter1D(6, 4.0, true).size());
    EXPECT_EQ(EigenUtilities::buildGaussianFilter1D(7, 4.0, true), EigenUtilities::buildGaussianFilter1D(6, 4.0, true));
}

TEST(GaussianFilter, IsSymmetric)
{
    for (const int size : {3, 8, 101}) {
        const VectorXd filter = EigenUtilities::buildGaussianFilter1D(size, 4.0, true);
        EXPECT_EQ(listOf(filter), listOf(filter.reverse()));
    }
}

TEST(GaussianFilter, SizesBelowOneCountAsOne)
{
    for (const int size : {1, 0, -1, std::numeric_limits<int>::min()})
        for (const bool normalised : {false, true})
            EXPECT_EQ(std::vector<double>({1.0}), listOf(EigenUtilities::buildGaussianFilter1D(size, 4.0, normalised)));
}

TEST(GaussianFilter, SigmaThatIsNotPositiveGivesAnImpulse)
{
    for (const double sigma : {0.0, -1.0, NOT_A_NUMBER, std::numeric_limits<double>::denorm_min()})
        EXPECT_EQ(std::vector<double>({0, 0, 1, 0, 0}), listOf(EigenUtilities::buildGaussianFilter1D(5, sigma, true)))
            << sigma;
}

TEST(GaussianFilter, InfiniteSigmaIsFlat)
{
    EXPECT_EQ(std::vector<double>({1, 1, 1}), listOf(EigenUtilities::buildGaussianFilter1D(3, INFINITE, false)));
}

// The sum as it is written, over indices clamped to the vector.
VectorXd convolvedByDefinition(const VectorXd &vector, const VectorXd &kernel)
{
    const auto length = static_cast<int>(vector.size());
    const auto taps = static_cast<int>(kernel.size());
    VectorXd sums = VectorXd::Zero(length);
    for (int i = 0; i < length; ++i)
        for (int j = 0; j < taps; ++j)
            sums[i] += kernel[j] * vector[std::clamp(i + (taps - 1) / 2 - j, 0, length - 1)];
    return sums;
}

TEST(Convolution, AgreesWithItsDefinitionForAllLengths)
{
    std::mt19937 random(11);
    for (int length = 1; length <= 12; ++length)
        for (int taps = 1; taps <= 30; ++taps) {
            const VectorXd vector = randomVector(length, random);
            const VectorXd kernel = randomVector(taps, random);
            const VectorXd convolved = EigenUtilities::convolveVectorWithKernel(vector, kernel);
            ASSERT_EQ(length, convolved.size());
            EXPECT_LT((convolved - convolvedByDefinition(vector, kernel)).cwiseAbs().maxCoeff(), 30 * ROUNDING)
                << length << " values, " << taps << " taps";
        }
}

TEST(Convolution, MirrorsTheKernelAsConvolutionsDo)
{
    // numpy.convolve([0, 0, 1, 0, 0], [1, 2, 4], "same"): an impulse gives the kernel itself.
    EXPECT_EQ(std::vector<double>({0, 1, 2, 4, 0}),
              listOf(EigenUtilities::convolveVectorWithKernel(vectorOf({0, 0, 1, 0, 0}), vectorOf({1, 2, 4}))));
    // With an even number of taps the one left of the middle is the centre, also as in numpy.
    EXPECT_EQ(std::vector<double>({0, 1, 2, 4, 8}),
              listOf(EigenUtilities::convolveVectorWithKernel(vectorOf({0, 0, 1, 0, 0}), vectorOf({1, 2, 4, 8}))));
}

TEST(Convolution, GoesOnWithTheEdgeValues)
{
    EXPECT_EQ(std::vector<double>({8, 11, 17, 21}),
              listOf(EigenUtilities::convolveVectorWithKernel(vectorOf({2, 4, 5, 8}), vectorOf({1, 1, 1}))));
}

TEST(Convolution, FlatSignalStaysFlatToTheLastPoint)
{
    const VectorXd kernel = EigenUtilities::buildGaussianFilter1D(101, 4.0, true);
    const VectorXd smoothed = EigenUtilities::convolveVectorWithKernel(VectorXd::Constant(64, 3.5), kernel);
    EXPECT_LT((smoothed.array() - 3.5).abs().maxCoeff(), 3.5 * ROUNDING);
}

TEST(Convolution, SmoothingKeepsTheLengthOfTheNetworksInput)
{
    const VectorXd kernel = EigenUtilities::buildGaussianFilter1D(5, 4.0, true);
    EXPECT_EQ(4096, EigenUtilities::convolveVectorWithKernel(VectorXd::Zero(4096), kernel).size());
}

TEST(Convolution, EmptyKernelLeavesTheVectorAndEmptyVectorStaysEmpty)
{
    EXPECT_EQ(std::vector<double>({1, 2}),
              listOf(EigenUtilities::convolveVectorWithKernel(vectorOf({1, 2}), VectorXd())));
    EXPECT_EQ(0, EigenUtilities::convolveVectorWithKernel(VectorXd(), vectorOf({1, 2, 1})).size());
    EXPECT_EQ(0, EigenUtilities::convolveVectorWithKernel(VectorXd(), VectorXd()).size());
}

TEST(Convolution, NaNSpreadsOnlyAsFarAsTheKernelReaches)
{
    const VectorXd smoothed =
        EigenUtilities::convolveVectorWithKernel(vectorOf({1, 1, 1, NOT_A_NUMBER, 1, 1}), vectorOf({0.25, 0.5, 0.25}));
    const bool expected[] = {false, false, true, true, true, false};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(expected[i], std::isnan(smoothed[i])) << i;
}

std::vector<float> floored(const std::vector<float> &values, double threshold)
{
    const VectorXf vector = Eigen::Map<const VectorXf>(values.data(), static_cast<Eigen::Index>(values.size()));
    const Result<VectorXf> result = EigenUtilities::floorAndCeilingVector(vector, threshold, 5);
    EXPECT_FALSE(result.hasError());
    const VectorXf zerosAndOnes = result.hasError() ? VectorXf() : result.value();
    return {zerosAndOnes.begin(), zerosAndOnes.end()};
}

TEST(FloorAndCeiling, ValuesAtOrAboveTheThresholdBecomeOne)
{
    EXPECT_EQ(std::vector<float>({0, 1, 1, 0, 1}), floored({0.1F, 0.5F, 0.7F, 0.4999F, 1.0F}, 0.5));
}

TEST(FloorAndCeiling, ComparesTheWidenedFloatWithTheDouble)
{
    EXPECT_EQ(std::vector<float>({0}), floored({0.95F}, 0.95)) << "0.95F lies below 0.95";
    EXPECT_EQ(std::vector<float>({1}), floored({0.2F}, 0.2)) << "0.2F lies above 0.2";
}

TEST(FloorAndCeiling, NaNBecomesZeroAndNothingReachesANaNThreshold)
{
    const auto nan = static_cast<float>(NOT_A_NUMBER);
    const auto infinite = static_cast<float>(INFINITE);
    EXPECT_EQ(std::vector<float>({0, 1, 0}), floored({nan, infinite, -infinite}, 0.5));
    EXPECT_EQ(std::vector<float>({0, 0}), floored({1.0F, infinite}, NOT_A_NUMBER));
}

TEST(FloorAndCeiling, ShortRunsStay)
{
    const VectorXf vector = (VectorXf(5) << 0, 1, 0, 1, 1).finished();
    for (const int minPointCount : {0, 1, 100}) {
        const auto result = EigenUtilities::floorAndCeilingVector(vector, 0.5, minPointCount);
        ASSERT_FALSE(result.hasError());
        EXPECT_EQ(vector, result.value());
    }
}

TEST(FloorAndCeiling, RefusesAnEmptyVectorAndANegativeCount)
{
    const auto empty = EigenUtilities::floorAndCeilingVector(VectorXf(), 0.5, 5);
    EXPECT_TRUE(empty.error().equals(InvalidInput));
    EXPECT_EQ("Empty vector", empty.error().message());
    const auto negative = EigenUtilities::floorAndCeilingVector(VectorXf::Ones(3), 0.5, -1);
    EXPECT_TRUE(negative.error().equals(InvalidInput));
    EXPECT_EQ("Negative minimum point count -1", negative.error().message());
}

std::vector<int> nearest(const std::vector<double> &values, double cutoff, int count)
{
    const QList<int> indices = EigenUtilities::returnIndexNearestToCutoffF(vectorOf(values).transpose(), cutoff, count);
    return {indices.begin(), indices.end()};
}

TEST(NearestToCutoff, NearestComesFirst)
{
    EXPECT_EQ(std::vector<int>({3, 1, 4}), nearest({0.1, 0.9, 0.5, 0.95, 0.8}, 1.0, 3));
    EXPECT_EQ(std::vector<int>({2, 0}), nearest({-1.0, 5.0, 0.5}, 0.25, 2));
}

TEST(NearestToCutoff, OfEquallyNearValuesTheLowerIndexComesFirst)
{
    EXPECT_EQ(std::vector<int>({0, 1, 2}), nearest({0.75, 1.25, 0.75, 1.25}, 1.0, 3)) << "above and below alike";
}

TEST(NearestToCutoff, ExactZerosAreNeverReturned)
{
    EXPECT_EQ(std::vector<int>({2}), nearest({0.0, -0.0, 0.6, 0.0}, 1.0, 4));
    EXPECT_EQ(std::vector<int>(), nearest({0.0, 0.0}, 0.0, 4)) << "not even when the cutoff is zero";
    EXPECT_EQ(std::vector<int>({1}), nearest({0.0, 1e-300}, 1.0, 4)) << "smallest numbers are values";
}

TEST(NearestToCutoff, FewerValuesThanAskedForAreAllReturned)
{
    EXPECT_EQ(std::vector<int>({1, 0}), nearest({0.3, 0.9}, 1.0, 4));
    EXPECT_EQ(std::vector<int>(), nearest({}, 1.0, 4));
}

TEST(NearestToCutoff, CountOfZeroOrLessReturnsNothing)
{
    for (const int count : {0, -1, std::numeric_limits<int>::min()})
        EXPECT_EQ(std::vector<int>(), nearest({0.3, 0.9}, 1.0, count));
    EXPECT_EQ(2, nearest({0.3, 0.9}, 1.0, std::numeric_limits<int>::max()).size());
}

TEST(NearestToCutoff, NaNIsNeverReturnedAndInfinityLast)
{
    EXPECT_EQ(std::vector<int>({2, 1}), nearest({NOT_A_NUMBER, INFINITE, 0.1}, 1.0, 4));
    EXPECT_EQ(std::vector<int>(), nearest({0.1, 0.2}, NOT_A_NUMBER, 4));
}

TEST(NearestToCutoff, AgreesWithAStableSortOnRandomValues)
{
    std::mt19937 random(5);
    for (int round = 0; round < 300; ++round) {
        std::vector<double> values(std::uniform_int_distribution<std::size_t>(0, 30)(random));
        for (double &value : values)
            value = std::uniform_int_distribution(0, 8)(random) / 8.0; // exact in binary: ties and zeros
        const int count = std::uniform_int_distribution(0, 35)(random);

        std::vector<int> expected;
        for (int i = 0; i < static_cast<int>(values.size()); ++i)
            if (values[static_cast<std::size_t>(i)] != 0.0)
                expected.push_back(i);
        const auto distance = [&](int i) { return std::abs(values[static_cast<std::size_t>(i)] - 0.625); };
        std::stable_sort(expected.begin(), expected.end(), [&](int a, int b) { return distance(a) < distance(b); });
        expected.resize(std::min(expected.size(), static_cast<std::size_t>(count)));
        ASSERT_EQ(expected, nearest(values, 0.625, count)) << "round " << round;
    }
}

} // namespace
} // namespace zav
