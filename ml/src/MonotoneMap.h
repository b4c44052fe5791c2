// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Eigen/Core>

#include <vector>

namespace zav {

/// A curve of straight pieces that rises everywhere, fitted to points with wrong ones among them. Its first and last
/// piece go on beyond the points.
class MonotoneMap
{
public:
    /// Through the origin, slope 1.
    MonotoneMap() = default;

    /// With as many pieces as that number of points supports: one for up to 31, one more for each 16, twelve at most.
    static int pieceCountFor(Eigen::Index pointCount);

    /// The pieces hold equal numbers of points. Squared residuals and squared differences of neighbouring slopes are
    /// least together, with robust weights; each slope is a hundredth of the overall one at least. Where the points do
    /// not rise overall, the curve does not either: `isRising` is false.
    static MonotoneMap fit(const Eigen::VectorXd &x, const Eigen::VectorXd &y, int pieceCount);

    bool isRising() const { return m_slopes.minCoeff() > 0.0; }

    double at(double x) const;
    Eigen::VectorXd at(const Eigen::VectorXd &x) const;

    /// The x at which the curve has these values. Only where it rises.
    Eigen::VectorXd inverseAt(const Eigen::VectorXd &y) const;

private:
    std::vector<double> m_knots; ///< between the pieces, ascending
    double m_start = 0.0;        ///< x at which the curve has the value `m_value`, not after the first knot
    double m_value = 0.0;
    Eigen::VectorXd m_slopes = Eigen::VectorXd::Ones(1); ///< of the pieces
};

} // namespace zav
