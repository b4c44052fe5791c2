// SPDX-License-Identifier: Apache-2.0
#include "RobustStatistics.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zav {
namespace {

namespace robust = robustStatistics;

Eigen::VectorXd values(std::initializer_list<double> list)
{
    return Eigen::Map<const Eigen::VectorXd>(list.begin(), static_cast<Eigen::Index>(list.size()));
}

TEST(RobustStatistics, InterpolateQuantilesBetweenNeighbours)
{
    EXPECT_EQ(robust::quantile(values({7.0}), 0.3), 7.0);
    EXPECT_EQ(robust::quantile(values({4.0, 1.0, 2.0}), 0.5), 2.0);
    EXPECT_EQ(robust::quantile(values({4.0, 1.0, 2.0, 8.0}), 0.5), 3.0);
    EXPECT_EQ(robust::quantile(values({0.0, 10.0, 20.0}), 0.25), 5.0);
    EXPECT_EQ(robust::quantile(values({0.0, 10.0, 20.0}), 0.0), 0.0);
    EXPECT_EQ(robust::quantile(values({0.0, 10.0, 20.0}), 1.0), 20.0);
}

TEST(RobustStatistics, TakeTheSpreadFromTheMedianMagnitude)
{
    EXPECT_DOUBLE_EQ(robust::spread(values({-1.0, 2.0, -3.0, 100.0, 0.5})), 1.4826 * 2.0);
}

TEST(RobustStatistics, AssumeAHundredthOfTheQuartileDistance)
{
    EXPECT_DOUBLE_EQ(robust::smallestDeviation(values({0.0, 10.0, 20.0, 30.0, 1000.0})), 0.2);
    EXPECT_DOUBLE_EQ(robust::smallestDeviation(values({1.0, 1.0, 1.0, 1.0, 3.0})), 2e-9);
    EXPECT_EQ(robust::smallestDeviation(values({1.0, 1.0})), 0.0);
}

TEST(RobustStatistics, DrawTheLineOfTheMedianSlope)
{
    // Slopes between the points, by hand: 1, 1, 10/3, 1, 9/2, 8: the median is (1 + 10/3) / 2.
    const robust::Line line = robust::theilSenLine(values({0.0, 1.0, 2.0, 3.0}), values({0.0, 1.0, 2.0, 10.0}));
    const double slope = 13.0 / 6.0;
    EXPECT_DOUBLE_EQ(line.slope, slope);
    // y - slope x: 0, -7/6, -14/6, 21/6: the median is -7/12.
    EXPECT_NEAR(line.intercept, -7.0 / 12.0, 1e-12);
}

TEST(RobustStatistics, DrawAFlatLineWhereAllXAreEqual)
{
    const robust::Line line = robust::theilSenLine(values({1.0, 1.0, 1.0}), values({3.0, 5.0, 100.0}));
    EXPECT_EQ(line.slope, 0.0);
    EXPECT_EQ(line.intercept, 5.0);
}

TEST(RobustStatistics, DrawTheLineOfManyPointsWithWrongOnes)
{
    constexpr int COUNT = 1000; // more than those whose slopes are all looked at
    Eigen::VectorXd x(COUNT);
    Eigen::VectorXd y(COUNT);
    for (int i = 0; i < COUNT; ++i) {
        x[i] = (i * 617) % COUNT;
        y[i] = i % 5 == 0 ? -1e6 : 3.0 * x[i] + 2.0;
    }
    const robust::Line line = robust::theilSenLine(x, y);
    EXPECT_NEAR(line.slope, 3.0, 1e-9);
    EXPECT_NEAR(line.intercept, 2.0, 1e-6);
}

TEST(RobustStatistics, WeighFarPointsLess)
{
    const Eigen::VectorXd residuals = values({0.0, -2.69, 5.38, 1e300});
    const Eigen::VectorXd huber = robust::huberWeights(residuals, 2.0); // from 2.69 on
    EXPECT_EQ(huber[0], 1.0);
    EXPECT_EQ(huber[1], 1.0);
    EXPECT_DOUBLE_EQ(huber[2], 0.5);
    EXPECT_GT(huber[3], 0.0);

    const Eigen::VectorXd biweight = robust::biweights(values({0.0, -4.685, 9.37, 1e300}), 2.0); // up to 9.37
    EXPECT_EQ(biweight[0], 1.0);
    EXPECT_DOUBLE_EQ(biweight[1], 0.5625); // (1 - 1/4)^2
    EXPECT_EQ(biweight[2], 0.0);
    EXPECT_EQ(biweight[3], 0.0);
}

} // namespace
} // namespace zav
