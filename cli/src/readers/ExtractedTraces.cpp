// SPDX-License-Identifier: Apache-2.0
#include "ExtractedTraces.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace zav {

namespace {

constexpr double PARTS_PER_MILLION = 1e6;

std::vector<double> reordered(const std::vector<double> &values, const std::vector<std::size_t> &order)
{
    std::vector<double> out(values.size());
    std::transform(order.begin(), order.end(), out.begin(), [&](std::size_t i) { return values[i]; });
    return out;
}

void sortByMz(std::vector<double> *mzs, std::vector<double> *intensities)
{
    if (std::is_sorted(mzs->begin(), mzs->end()))
        return;
    std::vector<std::size_t> order(mzs->size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return (*mzs)[a] < (*mzs)[b]; });
    *mzs = reordered(*mzs, order);
    *intensities = reordered(*intensities, order);
}

double sumInWindow(const ExtractionTarget &target, const std::vector<double> &mzs,
                   const std::vector<double> &intensities)
{
    const double halfWidth = target.mz * target.ppm / PARTS_PER_MILLION;
    const auto first = std::lower_bound(mzs.begin(), mzs.end(), target.mz - halfWidth);
    const auto last = std::upper_bound(first, mzs.end(), target.mz + halfWidth);
    return std::accumulate(intensities.begin() + (first - mzs.begin()), intensities.begin() + (last - mzs.begin()),
                           0.0);
}

} // namespace

ExtractedTraces::ExtractedTraces(QList<ExtractionTarget> targets)
    : m_targets(std::move(targets)), m_points(m_targets.size())
{}

void ExtractedTraces::addSpectrum(double time, std::vector<double> *mzs, std::vector<double> *intensities)
{
    sortByMz(mzs, intensities);
    for (qsizetype i = 0; i < m_targets.size(); ++i) {
        if (time >= m_targets[i].rtFrom && time <= m_targets[i].rtTo)
            m_points[i].append({time, sumInWindow(m_targets[i], *mzs, *intensities)});
    }
}

Chromatogram ExtractedTraces::take(qsizetype index)
{
    return {m_targets[index].id, std::exchange(m_points[index], {}), {}, {}};
}

} // namespace zav
