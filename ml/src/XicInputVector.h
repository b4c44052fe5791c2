// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "EigenUtilities.h"

#include <QtCore/QList>
#include <QtCore/QPointF>

#include <Eigen/Core>

namespace zav {

/// How a chromatogram becomes a network input of fixed length.
struct XicInputVectorSettings
{
    int length = 0;             ///< elements of the vector; at least as many as there are points
    double padding = 0.0;       ///< value of the elements behind the last point, before smoothing
    int smoothingPassCount = 0; ///< convolutions with the kernel; none if 0 or negative
};

/// Element i becomes element n - 1 - i.
Eigen::VectorXd mirrored(const Eigen::VectorXd &filter);

/// Taps for a size, a sigma in points, and whether their sum is 1.
using FilterFunction = Eigen::VectorXd (*)(int size, double sigma, bool normalised);

/// The kernel that chromatograms are smoothed with: the mirror image of a normalised filter of `size` taps and a sigma
/// of 4 points. A Gaussian is its own; the order is kept for a filter that is not.
Eigen::VectorXd buildSmoothingKernel(int size, FilterFunction filter = &EigenUtilities::buildGaussianFilter1D);

/// How many points are left of a chromatogram that does not fit into `maxPointCount`: 200 fewer than that, not below 0.
int thinningTarget(int maxPointCount);

/// The intensities (y) of the points, rounded to float, padded, smoothed together with the padding, and divided by the
/// largest element. Where that is 0 (magnitude up to 1e-12) the divisor is the smallest normal double: zeros stay
/// zeros, and what is tiny becomes huge. Empty for a length of 0 or less.
Eigen::VectorXf buildXicInputVector(const QList<QPointF> &points, const Eigen::VectorXd &kernel,
                                    const XicInputVectorSettings &settings);

} // namespace zav
