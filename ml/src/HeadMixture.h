// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Eigen/Core>

namespace zav {

/// A mixture of the outputs ("heads") of the retention-time network, fitted to the times of one chromatography.
///
/// Ridge regression that pulls to the mean of the heads: with m the mean of a peptidoform's heads h,
///
///     time = a + b m + sum of v_k (h_k - m),   the squared residuals and p |v|^2 least together
///
/// and the index, on the scale of the heads, is m + sum of v_k (h_k - m) / b. Robust weights keep wrong times from
/// mattering.
class HeadMixture
{
public:
    /// The share of the ridge: 1 pulls with the strength of the heads' own scatter around their mean. Infinite: the
    /// index is the mean.
    ///
    /// `heads` has one row a pair and at least one column; all numbers are finite.
    static HeadMixture fit(const Eigen::MatrixXd &heads, const Eigen::VectorXd &times, double strength);

    /// False where the times do not rise with the index.
    bool isRising() const { return m_slope > 0.0; }

    /// What each head counts; the sum is 1. Only where the times rise.
    const Eigen::VectorXd &weights() const { return m_weights; }

    /// The index of each row of heads.
    Eigen::VectorXd indices(const Eigen::MatrixXd &heads) const { return heads * m_weights; }

private:
    double m_slope = 0.0; ///< of the times over the index
    Eigen::VectorXd m_weights;
};

} // namespace zav
