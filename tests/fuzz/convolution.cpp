// SPDX-License-Identifier: Apache-2.0
//
// Door: vectors for the small numerics: convolution, threshold, nearest values.
// Promises: a convolution is its sum, taken one by one; a threshold gives 0 and 1; the nearest values are those of a
// stable sort.
#include "EigenUtilities.h"
#include "PredictorSupport.h"

#include <algorithm>

namespace zav::fuzz {
namespace {

using Eigen::Index;
using Eigen::VectorXd;

VectorXd takeVector(FuzzedDataProvider *data, int most, bool isPlain)
{
    VectorXd vector(data->ConsumeIntegralInRange(0, most));
    for (double &value : vector)
        value = isPlain ? data->ConsumeIntegral<qint16>() / 64.0 : takeNumber(data);
    return vector;
}

/// Of whole 64ths, so that the sums are exact in whatever order.
void requireSums(const VectorXd &vector, const VectorXd &kernel)
{
    const VectorXd result = EigenUtilities::convolveVectorWithKernel(vector, kernel);
    require(result.size() == vector.size(), "a convolution is as long as its vector");
    const Index centre = (kernel.size() - 1) / 2;
    for (Index i = 0; i < vector.size(); ++i) {
        double sum = kernel.size() == 0 ? vector[i] : 0.0;
        for (Index j = 0; j < kernel.size(); ++j)
            sum += kernel[j] * vector[std::clamp<Index>(i + centre - j, 0, vector.size() - 1)];
        require(result[i] == sum, "a convolution is its sum");
    }
}

void requireThreshold(const VectorXd &vector, double threshold, int minPointCount)
{
    const Eigen::VectorXf narrow = vector.cast<float>();
    const auto result = EigenUtilities::floorAndCeilingVector(narrow, threshold, minPointCount);
    require(result.hasError() == (vector.size() == 0 || minPointCount < 0), "what is refused is empty or below 0");
    for (Index i = 0; !result.hasError() && i < narrow.size(); ++i)
        require(result.value()[i] == (static_cast<double>(narrow[i]) >= threshold ? 1.0F : 0.0F), "0 or 1");
}

void requireNearest(const VectorXd &vector, double cutoff, int count)
{
    QList<int> expected;
    for (int i = 0; i < vector.size(); ++i) {
        if (vector[i] != 0.0 && !std::isnan(std::abs(vector[i] - cutoff)))
            expected.append(i);
    }
    std::stable_sort(expected.begin(), expected.end(),
                     [&](int a, int b) { return std::abs(vector[a] - cutoff) < std::abs(vector[b] - cutoff); });
    require(EigenUtilities::returnIndexNearestToCutoffF(vector.transpose(), cutoff, count) ==
                expected.mid(0, std::max(count, 0)),
            "the nearest are those of a stable sort");
}

} // namespace

void tryInput(const QByteArray &input)
{
    FuzzedDataProvider data = dataOf(input);
    requireSums(takeVector(&data, 60, true), takeVector(&data, 20, true));
    const VectorXd wild = takeVector(&data, 60, false);
    EigenUtilities::convolveVectorWithKernel(wild, takeVector(&data, 20, false));
    requireThreshold(wild, takeNumber(&data), data.ConsumeIntegralInRange(-1, 10));
    requireNearest(wild, takeNumber(&data), data.ConsumeIntegralInRange(-1, 10));
}

} // namespace zav::fuzz
