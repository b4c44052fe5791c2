// SPDX-License-Identifier: Apache-2.0
#include "ExtractedTraces.h"

#include "PrintableText.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

namespace zav {

namespace {

using Values = std::vector<double>;

constexpr double PARTS_PER_MILLION = 1e6;

Values reordered(const Values &values, const std::vector<std::size_t> &order)
{
    Values out(values.size());
    std::transform(order.begin(), order.end(), out.begin(), [&](std::size_t i) { return values[i]; });
    return out;
}

void sortByMz(SpectrumPeaks *peaks)
{
    const Values &mzs = peaks->mzs;
    if (std::is_sorted(mzs.begin(), mzs.end()))
        return;
    std::vector<std::size_t> order(mzs.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return mzs[a] < mzs[b]; });
    *peaks = {reordered(mzs, order), reordered(peaks->intensities, order)};
}

/// The index of the first value that is `lowest` or more, at `from` or behind it. Steps of growing length come first:
/// the next window is often a few peaks away, where a search in all of the rest would take longer.
std::size_t firstFrom(std::size_t from, double lowest, const Values &values)
{
    std::size_t step = 1;
    std::size_t to = from;
    while (to < values.size() && values[to] < lowest) {
        from = to + 1;
        to += step;
        step *= 2;
    }
    const auto begin = values.begin();
    const auto end = begin + static_cast<std::ptrdiff_t>(std::min(to, values.size()));
    return static_cast<std::size_t>(std::lower_bound(begin + static_cast<std::ptrdiff_t>(from), end, lowest) - begin);
}

double sumUpTo(double highest, std::size_t first, const SpectrumPeaks &peaks)
{
    double sum = 0;
    for (std::size_t i = first; i < peaks.mzs.size() && peaks.mzs[i] <= highest; ++i)
        sum += peaks.intensities[i];
    return sum;
}

} // namespace

ExtractedTraces::ExtractedTraces(QList<ExtractionTarget> targets, bool keepsTraces)
    : m_targets(std::move(targets)), m_keepsTraces(keepsTraces), m_grown(static_cast<std::size_t>(m_targets.size())),
      m_isGivenAway(m_grown.size(), false), m_latest(-std::numeric_limits<double>::infinity())
{
    m_windows.reserve(m_grown.size());
    for (qsizetype i = 0; i < m_targets.size(); ++i) {
        const ExtractionTarget &target = m_targets[i];
        const double halfWidth = target.mz * target.ppm / PARTS_PER_MILLION;
        m_windows.push_back({target.mz - halfWidth, target.mz + halfWidth, target.rtFrom, target.rtTo, i});
    }
    std::stable_sort(m_windows.begin(), m_windows.end(),
                     [](const Window &a, const Window &b) { return a.lowest < b.lowest; });
}

QString ExtractedTraces::addSpectrum(double time, SpectrumPeaks *peaks)
{
    sortByMz(peaks);
    m_times.push_back(time);
    m_latest = std::max(m_latest, time);
    std::size_t first = 0;
    for (const Window &window : m_windows) {
        if (!(time >= window.rtFrom && time <= window.rtTo))
            continue;
        if (m_isGivenAway[static_cast<std::size_t>(window.target)])
            return QStringLiteral("its scan start time is before that of a spectrum in front of it, and the "
                                  "chromatogram of target '%1' was closed there")
                .arg(displayText(m_targets[window.target].id));
        first = firstFrom(first, window.lowest, peaks->mzs);
        append(window.target, sumUpTo(window.highest, first, *peaks));
    }
    return {};
}

void ExtractedTraces::append(qsizetype target, double intensity)
{
    std::unique_ptr<Growth> &grown = m_grown[static_cast<std::size_t>(target)];
    if (!grown)
        grown = std::make_unique<Growth>(Growth{m_times.size() - 1, {}});
    grown->intensities.push_back(intensity);
}

Chromatogram ExtractedTraces::take(qsizetype index)
{
    const auto place = static_cast<std::size_t>(index);
    const ExtractionTarget &target = m_targets[index];
    Chromatogram trace;
    trace.id = target.id;
    trace.origin.group = target.group;
    if (const Growth *grown = m_grown[place].get()) {
        trace.points.reserve(static_cast<qsizetype>(grown->intensities.size()));
        auto intensity = grown->intensities.begin();
        for (std::size_t i = grown->firstSpectrum; intensity != grown->intensities.end(); ++i) {
            if (m_times[i] >= target.rtFrom && m_times[i] <= target.rtTo)
                trace.points.append({m_times[i], *intensity++});
        }
    }
    if (!m_keepsTraces) {
        m_grown[place].reset();
        m_isGivenAway[place] = true;
    }
    return trace;
}

} // namespace zav
