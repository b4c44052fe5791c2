// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "HeadMixture.h"
#include "MonotoneMap.h"

#include <zav/Result.h>

#include <Eigen/Core>

namespace zav {

/// The calibration of `RetentionTimeCalibration` in plain numbers: from the outputs ("heads") of the network to the
/// times of a chromatography.
///
/// Mixture and curve are fitted in turn, twice: the second mixture sees the times straightened by the first curve.
class RetentionTimeFit
{
public:
    static constexpr Eigen::Index FEWEST_PAIRS = 10;

    /// `heads` has one row a pair, finite, and at least one column. `InvalidInput`: fewer than 10 pairs; a time that is
    /// not finite; all times equal; times that do not rise with the heads.
    static Result<RetentionTimeFit> fit(const Eigen::MatrixXd &heads, const Eigen::VectorXd &times);

    Eigen::Index headCount() const { return m_mixture.weights().size(); }
    const Eigen::VectorXd &headWeights() const { return m_mixture.weights(); }

    Eigen::VectorXd indicesOf(const Eigen::MatrixXd &heads) const { return m_mixture.indices(heads); }
    double timeAt(double index) const { return m_zero + m_unit * m_map.at(index); }

    double width95() const { return m_unit * m_width95; }
    int pairCount() const { return m_pairCount; }
    int outlierCount() const { return m_outlierCount; }

private:
    struct Pairs;
    struct Model;

    static Model fitModel(const Pairs &pairs, double strength);
    static Eigen::VectorXd heldOutResiduals(const Pairs &pairs, double strength);
    static double chooseStrength(const Pairs &pairs);
    void measureWidth(const Eigen::VectorXd &residuals);

    HeadMixture m_mixture;
    MonotoneMap m_map;   ///< from the index to the time less `m_zero`, in multiples of `m_unit`
    double m_zero = 0.0; ///< in the caller's unit
    double m_unit = 1.0; ///< in the caller's unit
    double m_width95 = 0.0;
    int m_pairCount = 0;
    int m_outlierCount = 0;
};

} // namespace zav
