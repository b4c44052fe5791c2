// SPDX-License-Identifier: Apache-2.0
#include "XicInputVector.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zav {

namespace {

constexpr double SMALLEST_DIVISOR = 1e-12;
constexpr int THINNING_MARGIN = 200;    // points
constexpr double SMOOTHING_SIGMA = 4.0; // points

void smoothVector(int passes, const Eigen::VectorXd &kernel, Eigen::VectorXd &vector)
{
    for (int pass = 0; pass < passes; ++pass)
        vector = EigenUtilities::convolveVectorWithKernel(vector, kernel);
}

void normalise(Eigen::VectorXd &vector)
{
    // A NaN intensity must not decide the scale of the others.
    const double largest = vector.maxCoeff<Eigen::PropagateNumbers>();
    vector /= std::abs(largest) > SMALLEST_DIVISOR ? largest : std::numeric_limits<double>::min();
}

} // namespace

Eigen::VectorXd mirrored(const Eigen::VectorXd &filter)
{
    return filter.reverse();
}

Eigen::VectorXd buildSmoothingKernel(int size, FilterFunction filter)
{
    return mirrored(filter(size, SMOOTHING_SIGMA, true));
}

int thinningTarget(int maxPointCount)
{
    return std::max(maxPointCount, THINNING_MARGIN) - THINNING_MARGIN;
}

Eigen::VectorXf buildXicInputVector(const QList<QPointF> &points, const Eigen::VectorXd &kernel,
                                    const XicInputVectorSettings &settings)
{
    if (settings.length <= 0)
        return {};
    Eigen::VectorXd vector = Eigen::VectorXd::Constant(settings.length, settings.padding);
    for (qsizetype i = 0; i < points.size(); ++i)
        vector[i] = static_cast<float>(points.at(i).y());
    smoothVector(settings.smoothingPassCount, kernel, vector);
    normalise(vector);
    return vector.cast<float>();
}

} // namespace zav
