// SPDX-License-Identifier: Apache-2.0
#include "HeadMixture.h"

#include "RobustStatistics.h"

#include <Eigen/Cholesky>

#include <cmath>
#include <limits>

namespace zav {

namespace {

/// time = intercept + slope m + deviations . v
struct Coefficients
{
    double intercept = 0.0;
    double slope = 0.0;
    Eigen::VectorXd v;
};

/// The heads as the regression sees them.
struct Regressors
{
    Eigen::VectorXd mean;
    Eigen::MatrixXd deviations;

    explicit Regressors(const Eigen::MatrixXd &heads) : mean(heads.rowwise().mean()), deviations(heads.colwise() - mean)
    {}

    Eigen::VectorXd timesOf(const Coefficients &fitted) const
    {
        return (deviations * fitted.v + fitted.slope * mean).array() + fitted.intercept;
    }
};

double weightedMean(const Eigen::VectorXd &values, const Eigen::VectorXd &weights)
{
    return values.dot(weights) / weights.sum();
}

Coefficients solveWeighted(const Regressors &x, const Eigen::VectorXd &times, const Eigen::VectorXd &weights,
                           double strength)
{
    Eigen::MatrixXd columns(x.mean.size(), 1 + x.deviations.cols());
    columns << x.mean, x.deviations;
    const Eigen::RowVectorXd centre = weights.transpose() * columns / weights.sum();
    const double timeCentre = weightedMean(times, weights);
    columns.rowwise() -= centre;
    const Eigen::MatrixXd weighted = weights.asDiagonal() * columns;
    Eigen::MatrixXd normal = columns.transpose() * weighted;
    const Eigen::VectorXd right = weighted.transpose() * (times.array() - timeCentre).matrix();
    // The scatter of an average head; the second term keeps the matrix regular where the heads do not differ.
    const double scatter = normal.diagonal().tail(x.deviations.cols()).mean() + 1e-9 * normal(0, 0);
    normal.diagonal().tail(x.deviations.cols()).array() += strength * scatter;
    const Eigen::VectorXd solution = normal.ldlt().solve(right);
    return {timeCentre - centre.dot(solution), solution[0], solution.tail(x.deviations.cols())};
}

Coefficients solveRobustly(const Regressors &x, const Eigen::VectorXd &times, double strength)
{
    const robustStatistics::Line line = robustStatistics::theilSenLine(x.mean, times);
    Coefficients fitted{line.intercept, line.slope, Eigen::VectorXd::Zero(x.deviations.cols())};
    const double smallest = robustStatistics::smallestDeviation(times);
    if (std::isinf(strength) || !(smallest > 0.0) || !(line.slope > 0.0))
        return fitted;
    for (int step = 0; step < robustStatistics::STEPS; ++step) {
        const Eigen::VectorXd weights = robustStatistics::weightsOfStep(step, times - x.timesOf(fitted), smallest);
        fitted = solveWeighted(x, times, weights, strength);
    }
    return fitted;
}

} // namespace

HeadMixture HeadMixture::fit(const Eigen::MatrixXd &heads, const Eigen::VectorXd &times, double strength)
{
    const Coefficients fitted = solveRobustly(Regressors(heads), times, strength);
    HeadMixture mixture;
    mixture.m_slope = fitted.slope;
    const double ownShare = (1.0 - fitted.v.sum() / fitted.slope) / static_cast<double>(heads.cols());
    mixture.m_weights = fitted.v / fitted.slope + Eigen::VectorXd::Constant(heads.cols(), ownShare);
    return mixture;
}

} // namespace zav
