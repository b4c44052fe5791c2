// SPDX-License-Identifier: Apache-2.0
#include "EigenUtilities.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zav {

Eigen::VectorXd EigenUtilities::buildGaussianFilter1D(int size, double sigma, bool normalised)
{
    const int reach = std::max(size, 1) / 2;
    const Eigen::Index taps = 2 * Eigen::Index(reach) + 1;
    if (!(sigma > 0.0))
        return Eigen::VectorXd::Unit(taps, reach);

    // std::exp, as Eigen's vectorised one is off by a digit from its scalar one and the two ends would differ.
    const Eigen::VectorXd filter = Eigen::VectorXd::NullaryExpr(taps, [&](Eigen::Index tap) {
        const double deviations = static_cast<double>(tap - reach) / sigma;
        return std::exp(-0.5 * deviations * deviations);
    });
    return normalised ? Eigen::VectorXd(filter / filter.sum()) : filter;
}

Eigen::VectorXd EigenUtilities::convolveVectorWithKernel(const Eigen::VectorXd &vector, const Eigen::VectorXd &kernel)
{
    const Eigen::Index taps = kernel.size();
    const Eigen::Index length = vector.size();
    if (taps == 0 || length == 0)
        return vector;

    const Eigen::Index after = (taps - 1) / 2;
    const Eigen::Index before = taps - 1 - after;
    Eigen::VectorXd extended(before + length + after);
    extended << Eigen::VectorXd::Constant(before, vector[0]), vector,
        Eigen::VectorXd::Constant(after, vector[length - 1]);

    Eigen::VectorXd convolved = Eigen::VectorXd::Zero(length);
    for (Eigen::Index j = 0; j < taps; ++j)
        convolved += kernel[j] * extended.segment(taps - 1 - j, length);
    return convolved;
}

Result<Eigen::VectorXf> EigenUtilities::floorAndCeilingVector(const Eigen::VectorXf &vector, double threshold,
                                                              int minPointCount)
{
    if (vector.size() == 0)
        return Error(InvalidInput, QStringLiteral("Empty vector"));
    if (minPointCount < 0)
        return Error(InvalidInput, QStringLiteral("Negative minimum point count %1").arg(minPointCount));
    return Eigen::VectorXf((vector.array().cast<double>() >= threshold).cast<float>());
}

QList<int> EigenUtilities::returnIndexNearestToCutoffF(const Eigen::RowVectorXd &values, double cutoff, int count)
{
    struct Candidate
    {
        double distance;
        int index;
    };
    std::vector<Candidate> candidates;
    for (int i = 0; i < values.size(); ++i) {
        const double distance = std::abs(values[i] - cutoff);
        if (values[i] != 0.0 && !std::isnan(distance))
            candidates.push_back({distance, i});
    }

    const auto end = candidates.begin() + std::clamp<std::ptrdiff_t>(count, 0, std::ssize(candidates));
    std::partial_sort(candidates.begin(), end, candidates.end(), [](const Candidate &a, const Candidate &b) {
        return a.distance != b.distance ? a.distance < b.distance : a.index < b.index;
    });
    QList<int> nearest;
    nearest.reserve(end - candidates.begin());
    std::transform(candidates.begin(), end, std::back_inserter(nearest),
                   [](const Candidate &candidate) { return candidate.index; });
    return nearest;
}

} // namespace zav
