// SPDX-License-Identifier: Apache-2.0
#include "RobustStatistics.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace zav::robustStatistics {

namespace {

constexpr double SPREAD_OF_MEDIAN = 1.4826; // standard deviation of a normal distribution over its median magnitude
constexpr double HUBER_LIMIT = 1.345;       // standard deviations
constexpr double BIWEIGHT_LIMIT = 4.685;    // standard deviations
constexpr double SMALLEST_SHARE = 0.01;     // of the quartile distance
constexpr double SMALLEST_SHARE_OF_RANGE = 1e-9;
constexpr int HUBER_STEPS = 5;

constexpr Eigen::Index MOST_POINTS_OF_ALL_SLOPES = 100;

double quantileOf(std::vector<double> values, double share)
{
    const double place = share * static_cast<double>(values.size() - 1);
    const auto below = values.begin() + static_cast<std::ptrdiff_t>(place);
    std::nth_element(values.begin(), below, values.end());
    const auto above = below + 1 == values.end() ? below : std::min_element(below + 1, values.end());
    return std::lerp(*below, *above, place - std::floor(place));
}

std::vector<Eigen::Index> orderOf(const Eigen::VectorXd &x, const Eigen::VectorXd &y)
{
    std::vector<Eigen::Index> order(static_cast<std::size_t>(x.size()));
    std::iota(order.begin(), order.end(), Eigen::Index{0});
    std::sort(order.begin(), order.end(),
              [&](Eigen::Index a, Eigen::Index b) { return x[a] != x[b] ? x[a] < x[b] : y[a] < y[b]; });
    return order;
}

std::vector<double> slopesBetween(const Eigen::VectorXd &x, const Eigen::VectorXd &y)
{
    const std::vector<Eigen::Index> order = orderOf(x, y);
    const std::size_t count = order.size();
    const bool takesAll = x.size() <= MOST_POINTS_OF_ALL_SLOPES;
    std::vector<double> slopes;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t first = takesAll ? i + 1 : i + count / 2;
        const std::size_t end = takesAll ? count : std::min(first + 1, count);
        for (std::size_t j = first; j < end; ++j) {
            const double run = x[order[j]] - x[order[i]];
            if (run > 0)
                slopes.push_back((y[order[j]] - y[order[i]]) / run);
        }
    }
    return slopes;
}

} // namespace

double quantile(const Eigen::VectorXd &values, double share)
{
    return quantileOf({values.begin(), values.end()}, share);
}

double spread(const Eigen::VectorXd &residuals)
{
    return SPREAD_OF_MEDIAN * quantile(residuals.cwiseAbs(), 0.5);
}

double smallestDeviation(const Eigen::VectorXd &values)
{
    const double distance = quantile(values, 0.75) - quantile(values, 0.25);
    return std::max(SMALLEST_SHARE * distance, SMALLEST_SHARE_OF_RANGE * (values.maxCoeff() - values.minCoeff()));
}

Line theilSenLine(const Eigen::VectorXd &x, const Eigen::VectorXd &y)
{
    const std::vector<double> slopes = slopesBetween(x, y);
    const double slope = slopes.empty() ? 0.0 : quantileOf(slopes, 0.5);
    return {quantile(y - slope * x, 0.5), slope};
}

Eigen::VectorXd huberWeights(const Eigen::VectorXd &residuals, double standardDeviation)
{
    return residuals.unaryExpr([limit = HUBER_LIMIT * standardDeviation](double residual) {
        return std::abs(residual) <= limit ? 1.0 : limit / std::abs(residual);
    });
}

Eigen::VectorXd biweights(const Eigen::VectorXd &residuals, double standardDeviation)
{
    return residuals.unaryExpr([limit = BIWEIGHT_LIMIT * standardDeviation](double residual) {
        const double share = std::abs(residual) / limit;
        return share < 1.0 ? std::pow(1.0 - share * share, 2) : 0.0;
    });
}

Eigen::VectorXd weightsOfStep(int step, const Eigen::VectorXd &residuals, double smallest)
{
    const double standardDeviation = std::max(spread(residuals), smallest);
    return step < HUBER_STEPS ? huberWeights(residuals, standardDeviation) : biweights(residuals, standardDeviation);
}

} // namespace zav::robustStatistics
