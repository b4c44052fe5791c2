// SPDX-License-Identifier: Apache-2.0
#include "RetentionTimeFit.h"

#include "RobustStatistics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

namespace zav {

namespace {

constexpr int ROUNDS = 2;          // of mixture and curve
constexpr Eigen::Index FOLDS = 10; // of the cross-validation
constexpr Eigen::Index MOST_PAIRS_OF_CROSS_VALIDATION = 500;

// From the strongest pull to the weakest.
constexpr std::array<double, 7> STRENGTHS{std::numeric_limits<double>::infinity(), 3.0, 1.0, 0.3, 0.1, 0.03, 0.01};

constexpr double WORTHWHILE = 0.5; // standard errors of a gain

constexpr double OUTLIER_LIMIT = 6.0; // standard deviations

// Further off than this many quartile distances from the median, a time is certainly wrong, and how far is of no use.
constexpr double FURTHEST_TIME = 1000.0;

Error invalid(const QString &message)
{
    return Error(InvalidInput, message);
}

Error doNotRise()
{
    return invalid(QStringLiteral("The times do not rise with the predicted ones"));
}

} // namespace

/// Heads and times, these in the unit of the fit.
struct RetentionTimeFit::Pairs
{
    Eigen::MatrixXd heads;
    Eigen::VectorXd times;

    Eigen::Index count() const { return times.size(); }
    Pairs only(const std::vector<Eigen::Index> &rows) const { return {heads(rows, Eigen::all), times(rows)}; }
    Pairs sorted() const;
    Pairs thinned() const;
};

/// In an order that depends on the numbers alone, by the mean of the heads first.
RetentionTimeFit::Pairs RetentionTimeFit::Pairs::sorted() const
{
    Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor> keys(count(), heads.cols() + 2);
    keys << heads.rowwise().mean(), heads, times;
    std::vector<Eigen::Index> rows(static_cast<std::size_t>(count()));
    std::iota(rows.begin(), rows.end(), Eigen::Index{0});
    std::sort(rows.begin(), rows.end(), [&keys](Eigen::Index a, Eigen::Index b) {
        const double *left = keys.row(a).data();
        const double *right = keys.row(b).data();
        return std::lexicographical_compare(left, left + keys.cols(), right, right + keys.cols());
    });
    return only(rows);
}

/// Those that the cross-validation uses: of many five hundred, evenly.
RetentionTimeFit::Pairs RetentionTimeFit::Pairs::thinned() const
{
    const Eigen::Index kept = std::min(count(), MOST_PAIRS_OF_CROSS_VALIDATION);
    std::vector<Eigen::Index> rows(static_cast<std::size_t>(kept));
    for (Eigen::Index i = 0; i < kept; ++i)
        rows[static_cast<std::size_t>(i)] = i * count() / kept;
    return only(rows);
}

struct RetentionTimeFit::Model
{
    HeadMixture mixture;
    MonotoneMap map;

    bool isRising() const { return mixture.isRising() && map.isRising(); }
    Eigen::VectorXd timesOf(const Eigen::MatrixXd &heads) const { return map.at(mixture.indices(heads)); }
};

RetentionTimeFit::Model RetentionTimeFit::fitModel(const Pairs &pairs, double strength)
{
    Model model;
    Eigen::VectorXd straightened = pairs.times;
    for (int round = 0; round < ROUNDS; ++round) {
        model.mixture = HeadMixture::fit(pairs.heads, straightened, strength);
        if (!model.mixture.isRising())
            break;
        model.map = MonotoneMap::fit(model.mixture.indices(pairs.heads), pairs.times,
                                     MonotoneMap::pieceCountFor(pairs.count()));
        if (!model.map.isRising())
            break;
        straightened = model.map.inverseAt(pairs.times);
    }
    return model;
}

/// Of each pair, from a model of the other folds. Every tenth pair in the order of the index is in the same fold, so
/// that each spans the gradient.
Eigen::VectorXd RetentionTimeFit::heldOutResiduals(const Pairs &pairs, double strength)
{
    Eigen::VectorXd residuals(pairs.count());
    for (Eigen::Index fold = 0; fold < FOLDS; ++fold) {
        std::vector<Eigen::Index> held;
        std::vector<Eigen::Index> others;
        for (Eigen::Index i = 0; i < pairs.count(); ++i)
            (i % FOLDS == fold ? held : others).push_back(i);
        const Model model = fitModel(pairs.only(others), strength);
        const Pairs judged = pairs.only(held);
        if (model.isRising())
            residuals(held) = judged.times - model.timesOf(judged.heads);
        else
            residuals(held) = judged.times;
    }
    return residuals;
}

/// The strength whose held-out residuals are least on average; none counts for more than an outlier's limit. A weaker
/// pull has to gain more than half the standard error of its gain, or it is taken for chance.
double RetentionTimeFit::chooseStrength(const Pairs &pairs)
{
    double best = STRENGTHS.front();
    const Eigen::VectorXd unmixed = heldOutResiduals(pairs, best);
    const double limit = OUTLIER_LIMIT * robustStatistics::spread(unmixed);
    Eigen::ArrayXd errors = unmixed.array().abs().min(limit);
    for (const double strength : STRENGTHS) {
        if (strength == STRENGTHS.front())
            continue;
        const Eigen::ArrayXd weaker = heldOutResiduals(pairs, strength).array().abs().min(limit);
        const Eigen::ArrayXd gains = errors - weaker;
        const double gain = gains.mean();
        const double standardError = std::sqrt((gains - gain).square().mean() / static_cast<double>(gains.size()));
        if (gain > WORTHWHILE * standardError) {
            best = strength;
            errors = weaker;
        }
    }
    return best;
}

void RetentionTimeFit::measureWidth(const Eigen::VectorXd &residuals)
{
    const double limit = OUTLIER_LIMIT * robustStatistics::spread(residuals);
    std::vector<double> inliers;
    for (const double residual : residuals) {
        if (std::abs(residual) <= limit)
            inliers.push_back(std::abs(residual));
    }
    const Eigen::Map<const Eigen::VectorXd> values(inliers.data(), static_cast<Eigen::Index>(inliers.size()));
    m_width95 = 2.0 * robustStatistics::quantile(values, 0.95);
}

Result<RetentionTimeFit> RetentionTimeFit::fit(const Eigen::MatrixXd &heads, const Eigen::VectorXd &times)
{
    if (times.size() < FEWEST_PAIRS)
        return invalid(QStringLiteral("A calibration needs %1 pairs, not %2")
                           .arg(QString::number(FEWEST_PAIRS), QString::number(times.size())));
    if (!times.allFinite())
        return invalid(QStringLiteral("A time is not finite"));
    RetentionTimeFit fit;
    fit.m_pairCount = static_cast<int>(times.size());
    fit.m_zero = robustStatistics::quantile(times, 0.5);
    fit.m_unit = robustStatistics::quantile(times, 0.75) - robustStatistics::quantile(times, 0.25);
    if (fit.m_unit == 0.0)
        fit.m_unit = times.maxCoeff() - times.minCoeff();
    if (fit.m_unit == 0.0)
        return invalid(QStringLiteral("All times are equal"));
    if (!std::isfinite(fit.m_unit))
        return invalid(QStringLiteral("The times are too far apart"));

    const Eigen::ArrayXd scaled = (times.array() - fit.m_zero) / fit.m_unit;
    const Pairs pairs = Pairs{heads, scaled.cwiseMax(-FURTHEST_TIME).cwiseMin(FURTHEST_TIME)}.sorted();
    const Pairs judged = pairs.thinned();
    const double strength = chooseStrength(judged);
    const Model model = fitModel(pairs, strength);
    if (!model.isRising())
        return doNotRise();
    fit.m_mixture = model.mixture;
    fit.m_map = model.map;
    fit.measureWidth(heldOutResiduals(judged, strength));
    const Eigen::VectorXd residuals = pairs.times - model.timesOf(pairs.heads);
    fit.m_outlierCount =
        static_cast<int>((residuals.array().abs() > OUTLIER_LIMIT * robustStatistics::spread(residuals)).count());
    return fit;
}

} // namespace zav
