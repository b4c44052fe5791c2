// SPDX-License-Identifier: Apache-2.0
#include "MonotoneMap.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>

namespace zav {
namespace {

constexpr double EXACT = 1e-9;

Eigen::VectorXd grid(double from, double to, Eigen::Index count)
{
    return Eigen::VectorXd::LinSpaced(count, from, to);
}

Eigen::VectorXd mapped(const Eigen::VectorXd &x, const std::function<double(double)> &curve)
{
    return x.unaryExpr(curve);
}

void expectRising(const MonotoneMap &map, double from, double to)
{
    const Eigen::VectorXd y = map.at(grid(from, to, 500));
    for (Eigen::Index i = 1; i < y.size(); ++i)
        ASSERT_GT(y[i], y[i - 1]) << i;
}

TEST(MonotoneMap, HasMorePiecesForMorePoints)
{
    EXPECT_EQ(MonotoneMap::pieceCountFor(9), 1);
    EXPECT_EQ(MonotoneMap::pieceCountFor(12), 1);
    EXPECT_EQ(MonotoneMap::pieceCountFor(31), 1);
    EXPECT_EQ(MonotoneMap::pieceCountFor(32), 2);
    EXPECT_EQ(MonotoneMap::pieceCountFor(200), 12);
    EXPECT_EQ(MonotoneMap::pieceCountFor(1000000), 12);
}

TEST(MonotoneMap, ByItselfChangesNothing)
{
    EXPECT_EQ(MonotoneMap().at(-3.5), -3.5);
    EXPECT_TRUE(MonotoneMap().isRising());
}

TEST(MonotoneMap, GoesThroughPointsOfALineAndOnBeyondThem)
{
    const Eigen::VectorXd x = grid(0.0, 10.0, 60);
    const MonotoneMap map = MonotoneMap::fit(x, mapped(x, [](double each) { return 5.0 + 2.0 * each; }), 3);
    EXPECT_NEAR(map.at(4.0), 13.0, EXACT);
    EXPECT_NEAR(map.at(-100.0), -195.0, 1e-7);
    EXPECT_NEAR(map.at(100.0), 205.0, 1e-7);
}

TEST(MonotoneMap, FollowsACurve)
{
    // Its second derivative is 0.16 at most, so that pieces of a length of 8.25 miss it by 8.25^2 / 8 x 0.16 = 1.3.
    const auto curve = [](double x) { return 20.0 * std::sqrt(x + 10.0); };
    const Eigen::VectorXd x = grid(0.0, 99.0, 400);
    const MonotoneMap map = MonotoneMap::fit(x, mapped(x, curve), 12);
    for (const double each : {1.0, 5.0, 20.0, 50.0, 98.0})
        EXPECT_NEAR(map.at(each), curve(each), 2.0) << each; // of a range of 145
    const MonotoneMap line = MonotoneMap::fit(x, mapped(x, curve), 1);
    EXPECT_GT(std::abs(line.at(1.0) - curve(1.0)), 5.0) << "one piece cannot follow it";
}

TEST(MonotoneMap, IsNotMovedByWrongPoints)
{
    const auto curve = [](double x) { return x < 50.0 ? x : 50.0 + 3.0 * (x - 50.0); };
    std::mt19937 generator(1);
    std::uniform_real_distribution<double> anywhere(0.0, 200.0);
    const Eigen::VectorXd x = grid(0.0, 100.0, 200);
    Eigen::VectorXd y = mapped(x, curve);
    for (Eigen::Index i = 0; i < y.size(); i += 5)
        y[i] = anywhere(generator);
    const MonotoneMap map = MonotoneMap::fit(x, y, 12);
    for (const double each : {10.0, 40.0, 60.0, 95.0})
        EXPECT_NEAR(map.at(each), curve(each), 2.0) << each;
}

TEST(MonotoneMap, RisesWherePointsFall)
{
    // Up, down and up again.
    const auto curve = [](double x) { return x < 40.0 ? x : x < 60.0 ? 80.0 - x : x - 40.0; };
    const Eigen::VectorXd x = grid(0.0, 100.0, 200);
    const MonotoneMap map = MonotoneMap::fit(x, mapped(x, curve), 12);
    EXPECT_TRUE(map.isRising());
    expectRising(map, -50.0, 150.0);
}

TEST(MonotoneMap, SaysWhenPointsDoNotRise)
{
    const Eigen::VectorXd x = grid(0.0, 10.0, 40);
    EXPECT_FALSE(MonotoneMap::fit(x, -x, 2).isRising());
    EXPECT_FALSE(MonotoneMap::fit(x, Eigen::VectorXd::Constant(40, 3.0), 2).isRising());
    EXPECT_FALSE(MonotoneMap::fit(Eigen::VectorXd::Constant(40, 3.0), x, 2).isRising());
}

TEST(MonotoneMap, IsUndoneByItsInverse)
{
    const Eigen::VectorXd x = grid(0.0, 99.0, 400);
    const MonotoneMap map = MonotoneMap::fit(x, mapped(x, [](double each) { return std::exp(each / 30.0); }), 12);
    const Eigen::VectorXd there = grid(-40.0, 140.0, 300);
    EXPECT_LT((map.inverseAt(map.at(there)) - there).cwiseAbs().maxCoeff(), 1e-8);
}

TEST(MonotoneMap, TakesManyPointsOfEqualX)
{
    Eigen::VectorXd x = grid(0.0, 10.0, 100);
    x.head(60).setZero();
    const MonotoneMap map = MonotoneMap::fit(x, x, 5);
    EXPECT_TRUE(map.isRising());
    EXPECT_NEAR(map.at(9.0), 9.0, 1e-6);
}

} // namespace
} // namespace zav
