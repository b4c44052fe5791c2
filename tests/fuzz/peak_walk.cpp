// SPDX-License-Identifier: Apache-2.0
//
// Door: a smoothed trace for the walk from maximum to maximum.
// Promises: the intervals lie in the trace; they are the same however early the search in blocks begins, and, for
// finite values, those of naive code.
#include "NaiveChromatogram.h"
#include "PredictorSupport.h"
#include "XicPeakWalk.h"

namespace zav::fuzz {
namespace {

constexpr int SCALE = 10000;

bool isPlain(float value)
{
    return std::isfinite(value) && std::abs(value) < 1e6F;
}

} // namespace

void tryInput(const QByteArray &input)
{
    FuzzedDataProvider data = dataOf(input);
    const double threshold = 0.99 * data.ConsumeProbability<double>();
    const std::vector<float> values = takeFloats(&data, 500);
    const Eigen::VectorXf vector =
        Eigen::Map<const Eigen::VectorXf>(values.data(), static_cast<Eigen::Index>(values.size()));
    const QList<LocalMaximum> maxima = findLocalMaxima(vector, SCALE);
    const QList<Interval<int>> usual = walkAllPeakLimits(vector, maxima, threshold);
    const auto isSame = [](const auto &a, const auto &b) { return a.start == b.start && a.end == b.end; };
    for (const int plainVisits : {0, 1, 1000}) {
        const QList<Interval<int>> other = walkAllPeakLimits(vector, maxima, threshold, plainVisits);
        require(std::equal(usual.begin(), usual.end(), other.begin(), other.end(), isSame),
                "the search in blocks finds the same");
    }
    for (const Interval<int> &limits : usual)
        require(limits.start >= 0 && limits.end < vector.size(), "an interval lies in the trace");
    if (!std::all_of(values.begin(), values.end(), isPlain))
        return;
    const std::vector<naive::IndexInterval> expected = naive::walks(values, threshold);
    require(std::equal(usual.begin(), usual.end(), expected.begin(), expected.end(), isSame),
            "naive code finds the same");
}

} // namespace zav::fuzz
