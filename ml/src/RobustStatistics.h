// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Eigen/Core>

/// Statistics that a minority of wrong values cannot move far.
namespace zav::robustStatistics {

/// The value under which a share of the values lies, 0 to 1, interpolated between neighbours. Needs a value.
double quantile(const Eigen::VectorXd &values, double share);

/// The standard deviation of normal residuals around 0, from the median of their magnitudes.
double spread(const Eigen::VectorXd &residuals);

/// The standard deviation that a fit to these values assumes at least: a hundredth of their quartile distance, so that
/// a fit that meets most of them exactly does not take all others for wrong. 0 where all are equal.
double smallestDeviation(const Eigen::VectorXd &values);

/// A straight line: intercept + slope x.
struct Line
{
    double intercept = 0.0;
    double slope = 0.0; ///< 0 also where all x are equal
};

/// The line whose slope is the median of the slopes between points, and from which half of the points lie to each side
/// (Theil 1950; Sen, J. Am. Stat. Assoc. 63, 1379, 1968): right as long as fewer than 29 % of the points are wrong.
/// Of more than 100 points each gives the slope to one other only, half of the points away.
Line theilSenLine(const Eigen::VectorXd &x, const Eigen::VectorXd &y);

/// Weights of Huber (Ann. Math. Stat. 35, 73, 1964): far points pull as if they were 1.345 standard deviations away.
Eigen::VectorXd huberWeights(const Eigen::VectorXd &residuals, double standardDeviation);

/// The biweight of Beaton and Tukey (Technometrics 16, 147, 1974): points further than 4.685 standard deviations do
/// not pull at all.
Eigen::VectorXd biweights(const Eigen::VectorXd &residuals, double standardDeviation);

/// The weights of one step of a fit that weighs its points anew after each of `STEPS` steps: Huber's at first, which
/// lead to the same fit from anywhere, then the biweight. The standard deviation is that of the residuals, but
/// `smallest` at least.
inline constexpr int STEPS = 12;
Eigen::VectorXd weightsOfStep(int step, const Eigen::VectorXd &residuals, double smallest);

} // namespace zav::robustStatistics
