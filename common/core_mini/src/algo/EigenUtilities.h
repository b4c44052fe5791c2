// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Export.h>
#include <zav/Result.h>

#include <QtCore/QList>

#include <Eigen/Core>

namespace zav {

/// Small numerics on dense vectors. Every function is pure: no state, any number of threads.
struct EigenUtilities
{
    /// A Gaussian exp(-d^2 / (2 sigma^2)) sampled at the whole distances d from its centre: `size` taps, an even size
    /// rounded up to the next odd one, anything below 1 taken as 1. With `normalised` the taps sum to 1, else the
    /// centre is 1. A `sigma` that is not above 0 gives the narrowest of all, the unit impulse.
    ZAV_COMMON_CORE_MINI_EXPORT static Eigen::VectorXd buildGaussianFilter1D(int size, double sigma, bool normalised);

    /// The convolution sum_j kernel[j] vector[i + c - j], with c = (taps - 1) / 2 rounded down: as long as `vector`,
    /// and centred for an odd number of taps. Beyond its ends the vector goes on with its first and last value, so
    /// that a kernel of sum 1 leaves a flat signal flat. An empty kernel returns the vector as it is.
    ///
    /// Costs length * taps. A NaN or infinity spreads over the taps that reach it.
    ZAV_COMMON_CORE_MINI_EXPORT static Eigen::VectorXd convolveVectorWithKernel(const Eigen::VectorXd &vector,
                                                                                const Eigen::VectorXd &kernel);

    /// A vector of the same length: 1 where the value, widened to double, is at or above `threshold`, else 0 (also
    /// for NaN). Short runs stay: `minPointCount` is only checked.
    ///
    /// `InvalidInput` for an empty vector and for a `minPointCount` below 0.
    ZAV_COMMON_CORE_MINI_EXPORT static Result<Eigen::VectorXf>
    floorAndCeilingVector(const Eigen::VectorXf &vector, double threshold, int minPointCount);

    /// The indices of the at most `count` values nearest to `cutoff`, nearest first, of equally near ones the lower
    /// index first. Exact zeros stand for "no value" and are never returned, nor are values whose distance is NaN.
    ZAV_COMMON_CORE_MINI_EXPORT static QList<int> returnIndexNearestToCutoffF(const Eigen::RowVectorXd &values,
                                                                              double cutoff, int count);
};

} // namespace zav
