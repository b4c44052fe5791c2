// SPDX-License-Identifier: Apache-2.0
#include "RetentionTimeFit.h"
#include "Trail.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

namespace zav {
namespace {

using Curve = std::function<double(double)>;

double gradient(double index) // minutes of a gradient of about an hour
{
    return 12.0 + 0.4 * index;
}

/// Heads that differ by some units, as those of the network do, on a scale from 0 to 100.
Eigen::MatrixXd randomHeads(Eigen::Index count, Eigen::Index headCount, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> index(0.0, 100.0);
    std::normal_distribution<double> deviation(0.0, 3.0);
    Eigen::MatrixXd heads(count, headCount);
    for (Eigen::Index i = 0; i < count; ++i) {
        const double common = index(generator);
        for (Eigen::Index k = 0; k < headCount; ++k)
            heads(i, k) = common + deviation(generator);
    }
    return heads;
}

/// A chromatography whose index is a known mixture of the heads.
struct Chromatography
{
    Eigen::VectorXd mixture;
    Curve curve = gradient;

    Eigen::VectorXd timesOf(const Eigen::MatrixXd &heads) const { return (heads * mixture).unaryExpr(curve); }
};

Chromatography mixed(std::initializer_list<double> weights)
{
    return {Eigen::Map<const Eigen::VectorXd>(weights.begin(), static_cast<Eigen::Index>(weights.size()))};
}

/// Every fifth time is one of the run's, but another peptide's.
void makeOutliers(Eigen::VectorXd *times, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> anywhere(times->minCoeff(), times->maxCoeff());
    for (Eigen::Index i = 0; i < times->size(); i += 5)
        (*times)[i] = anywhere(generator);
}

Eigen::VectorXd predicted(const RetentionTimeFit &fit, const Eigen::MatrixXd &heads)
{
    return fit.indicesOf(heads).unaryExpr([&fit](double index) { return fit.timeAt(index); });
}

double medianError(const RetentionTimeFit &fit, const Chromatography &chromatography, unsigned seed)
{
    const Eigen::MatrixXd heads = randomHeads(501, chromatography.mixture.size(), seed);
    const Eigen::VectorXd errors = (predicted(fit, heads) - chromatography.timesOf(heads)).cwiseAbs();
    std::vector<double> sorted(errors.begin(), errors.end());
    std::sort(sorted.begin(), sorted.end());
    return sorted[250];
}

TEST(RetentionTimeFit, FindsAMixtureOfHeads)
{
    const Chromatography chromatography = mixed({0.6, 0.0, 0.4, 0.0});
    const Eigen::MatrixXd heads = randomHeads(200, 4, 1);
    const auto fit = RetentionTimeFit::fit(heads, chromatography.timesOf(heads));
    ASSERT_FALSE(fit.hasError()) << fit.error().toString().toStdString();
    EXPECT_LT(medianError(fit.value(), chromatography, 2), 0.05); // of 40 minutes
    EXPECT_NEAR(fit.value().headWeights().sum(), 1.0, 1e-9);
    EXPECT_NEAR(fit.value().headWeights()[0], 0.6, 0.05);
    EXPECT_NEAR(fit.value().headWeights()[1], 0.0, 0.05);
}

TEST(RetentionTimeFit, IsNotMovedByOutliers)
{
    const Chromatography chromatography = mixed({0.6, 0.0, 0.4, 0.0});
    const Eigen::MatrixXd heads = randomHeads(200, 4, 3);
    Eigen::VectorXd times = chromatography.timesOf(heads);
    makeOutliers(&times, 4);
    const auto fit = RetentionTimeFit::fit(heads, times);
    ASSERT_FALSE(fit.hasError());
    EXPECT_LT(medianError(fit.value(), chromatography, 5), 0.1);
    EXPECT_GE(fit.value().outlierCount(), 35); // a few of the 40 fall near their true time
    EXPECT_LE(fit.value().outlierCount(), 44);
    EXPECT_LT(fit.value().width95(), 2.0);
}

TEST(RetentionTimeFit, IsNotMovedByTwoOutliersAmongTen)
{
    const Chromatography chromatography = mixed({1.0});
    const Eigen::MatrixXd heads = randomHeads(10, 1, 6);
    Eigen::VectorXd times = chromatography.timesOf(heads);
    times[2] += 30.0;
    times[7] -= 25.0;
    const auto fit = RetentionTimeFit::fit(heads, times);
    ASSERT_FALSE(fit.hasError());
    EXPECT_LT(medianError(fit.value(), chromatography, 7), 1e-6);
    EXPECT_EQ(fit.value().outlierCount(), 2);
    EXPECT_EQ(fit.value().pairCount(), 10);
}

TEST(RetentionTimeFit, FollowsACurvedGradient)
{
    Chromatography chromatography = mixed({0.0, 1.0, 0.0});
    chromatography.curve = [](double index) { return 60.0 / (1.0 + std::exp(-(index - 50.0) / 25.0)); };
    const Eigen::MatrixXd heads = randomHeads(250, 3, 8);
    Eigen::VectorXd times = chromatography.timesOf(heads);
    makeOutliers(&times, 9);
    const auto fit = RetentionTimeFit::fit(heads, times);
    ASSERT_FALSE(fit.hasError());
    EXPECT_LT(medianError(fit.value(), chromatography, 10), 0.25); // of 45 minutes
    EXPECT_GT(fit.value().headWeights()[1], 0.85);
}

TEST(RetentionTimeFit, PullsToTheMeanWhereFewNoisyPairsSayLittle)
{
    const Eigen::MatrixXd heads = randomHeads(12, 9, 11);
    Eigen::VectorXd times = heads.rowwise().mean();
    std::mt19937 generator(12);
    std::normal_distribution<double> noise(0.0, 3.0);
    for (double &time : times)
        time += noise(generator);
    const auto fit = RetentionTimeFit::fit(heads, times);
    ASSERT_FALSE(fit.hasError());
    EXPECT_LT((fit.value().headWeights().array() - 1.0 / 9.0).abs().maxCoeff(), 0.3);
}

TEST(RetentionTimeFit, RisesEverywhere)
{
    const Eigen::MatrixXd heads = randomHeads(150, 3, 13);
    Eigen::VectorXd times = mixed({0.4, 0.3, 0.3}).timesOf(heads);
    std::mt19937 generator(14);
    std::normal_distribution<double> noise(0.0, 6.0);
    for (double &time : times)
        time += noise(generator);
    const auto fit = RetentionTimeFit::fit(heads, times);
    ASSERT_FALSE(fit.hasError());
    for (double index = -200.0; index < 300.0; index += 0.5)
        ASSERT_GT(fit.value().timeAt(index + 0.5), fit.value().timeAt(index)) << index;
}

TEST(RetentionTimeFit, GivesTheSameForAnyOrderOfThePairs)
{
    Eigen::MatrixXd heads = randomHeads(60, 4, 15);
    heads.row(3) = heads.row(4); // equal heads, other times
    Eigen::VectorXd times = mixed({0.1, 0.2, 0.3, 0.4}).timesOf(heads);
    makeOutliers(&times, 16);
    std::vector<Eigen::Index> order(60);
    std::iota(order.begin(), order.end(), Eigen::Index{0});
    const auto straight = RetentionTimeFit::fit(heads, times);
    std::shuffle(order.begin(), order.end(), std::mt19937(17));
    const auto shuffled = RetentionTimeFit::fit(heads(order, Eigen::all), times(order));
    ASSERT_FALSE(straight.hasError() || shuffled.hasError());
    EXPECT_EQ(straight.value().headWeights(), shuffled.value().headWeights());
    EXPECT_EQ(straight.value().width95(), shuffled.value().width95());
    EXPECT_EQ(straight.value().outlierCount(), shuffled.value().outlierCount());
    for (const double index : {-20.0, 3.0, 50.0, 99.0, 150.0})
        EXPECT_EQ(straight.value().timeAt(index), shuffled.value().timeAt(index));
}

TEST(RetentionTimeFit, FollowsUnitAndZeroOfTheTimes)
{
    const Eigen::MatrixXd heads = randomHeads(80, 4, 18);
    Eigen::VectorXd minutes = mixed({0.7, 0.1, 0.1, 0.1}).timesOf(heads);
    makeOutliers(&minutes, 19);
    const auto inMinutes = RetentionTimeFit::fit(heads, minutes);
    const auto inSeconds = RetentionTimeFit::fit(heads, (60.0 * minutes.array() + 300.0).matrix());
    ASSERT_FALSE(inMinutes.hasError() || inSeconds.hasError());
    const Eigen::VectorXd expected = (60.0 * predicted(inMinutes.value(), heads).array() + 300.0).matrix();
    EXPECT_LT((predicted(inSeconds.value(), heads) - expected).cwiseAbs().maxCoeff(), 1e-6);
    EXPECT_NEAR(inSeconds.value().width95(), 60.0 * inMinutes.value().width95(), 1e-6);
}

TEST(RetentionTimeFit, SaysTheWidthOf95PercentOfTheResiduals)
{
    const Eigen::MatrixXd heads = randomHeads(500, 2, 20);
    Eigen::VectorXd times = mixed({0.5, 0.5}).timesOf(heads);
    std::mt19937 generator(21);
    std::normal_distribution<double> noise(0.0, 1.0);
    for (double &time : times)
        time += noise(generator);
    const auto fit = RetentionTimeFit::fit(heads, times);
    ASSERT_FALSE(fit.hasError());
    EXPECT_NEAR(fit.value().width95(), 2 * 1.96, 0.45); // normal distribution; the quantile of 500 scatters by 0.2
    EXPECT_LE(fit.value().outlierCount(), 1);
}

TEST(RetentionTimeFit, SurvivesTimesOfAnySize)
{
    const Chromatography chromatography = mixed({0.5, 0.5});
    const Eigen::MatrixXd heads = randomHeads(50, 2, 22);
    Eigen::VectorXd times = chromatography.timesOf(heads);
    times[4] = 1e300;
    times[5] = -1e300;
    times[6] = std::numeric_limits<double>::denorm_min();
    const auto fit = RetentionTimeFit::fit(heads, times);
    ASSERT_FALSE(fit.hasError());
    EXPECT_LT(medianError(fit.value(), chromatography, 23), 0.05);
}

TEST(RetentionTimeFit, TakesMorePairsThanItCrossValidates)
{
    const Chromatography chromatography = mixed({0.2, 0.8});
    const Eigen::MatrixXd heads = randomHeads(700, 2, 24);
    Eigen::VectorXd times = chromatography.timesOf(heads);
    makeOutliers(&times, 25);
    const auto fit = RetentionTimeFit::fit(heads, times);
    ASSERT_FALSE(fit.hasError());
    EXPECT_LT(medianError(fit.value(), chromatography, 26), 0.05);
    EXPECT_NEAR(fit.value().outlierCount(), 140, 12);
}

struct RefusedCase
{
    const char *name;
    std::function<void(Eigen::MatrixXd *, Eigen::VectorXd *)> spoil;
    const char *message;
};

class RefusedPairs : public ::testing::TestWithParam<RefusedCase>
{};

TEST_P(RefusedPairs, AreInvalidInput)
{
    Eigen::MatrixXd heads = randomHeads(20, 3, 27);
    Eigen::VectorXd times = mixed({0.3, 0.3, 0.4}).timesOf(heads);
    GetParam().spoil(&heads, &times);
    const auto fit = RetentionTimeFit::fit(heads, times);
    ASSERT_TRUE(fit.hasError());
    EXPECT_EQ(fit.error().code(), InvalidInput);
    EXPECT_EQ(fit.error().message(), QString::fromLatin1(GetParam().message));
}

using Heads = Eigen::MatrixXd *;
using Times = Eigen::VectorXd *;

INSTANTIATE_TEST_SUITE_P(
    RetentionTimeFit, RefusedPairs,
    ::testing::Values(
        RefusedCase{"nine",
                    [](Heads heads, Times times) {
                        heads->conservativeResize(9, 3);
                        times->conservativeResize(9);
                    },
                    "A calibration needs 10 pairs, not 9"},
        RefusedCase{"none",
                    [](Heads heads, Times times) {
                        heads->resize(0, 3);
                        times->resize(0);
                    },
                    "A calibration needs 10 pairs, not 0"},
        RefusedCase{"notANumber", [](Heads, Times times) { (*times)[3] = std::nan(""); }, "A time is not finite"},
        RefusedCase{"infinite", [](Heads, Times times) { (*times)[3] = -INFINITY; }, "A time is not finite"},
        RefusedCase{"equalTimes", [](Heads, Times times) { times->setConstant(4.0); }, "All times are equal"},
        RefusedCase{"tooFarApart",
                    [](Heads, Times times) {
                        times->head(10).setConstant(1.7e308);
                        times->tail(10).setConstant(-1.7e308);
                    },
                    "The times are too far apart"},
        RefusedCase{"falling", [](Heads, Times times) { *times = -*times; },
                    "The times do not rise with the predicted ones"},
        RefusedCase{"equalHeads", [](Heads heads, Times) { heads->setConstant(4.0); },
                    "The times do not rise with the predicted ones"},
        RefusedCase{"allTimesEqualButOne",
                    [](Heads, Times times) {
                        times->setConstant(4.0);
                        (*times)[0] = 5.0;
                    },
                    "The times do not rise with the predicted ones"}),
    [](const auto &instance) { return std::string(instance.param.name); });

} // namespace
} // namespace zav
