// SPDX-License-Identifier: Apache-2.0
#include "PeakFilter.h"

#include "PeptideMasses.h"

#include <algorithm>

namespace zav {

namespace {

// As the predictor limits its own isotope peaks.
constexpr double HIGHEST_MZ = 2000.0;
constexpr double LOWEST_INTENSITY = 0.025;

double highestIntensity(const QList<FragmentPeak> &peaks)
{
    double highest = 0.0;
    for (const FragmentPeak &peak : peaks)
        highest = std::max(highest, peak.intensity);
    return highest;
}

void sortByMz(QList<FragmentPeak> *peaks)
{
    std::stable_sort(peaks->begin(), peaks->end(),
                     [](const FragmentPeak &a, const FragmentPeak &b) { return a.mz < b.mz; });
}

void scaleToBasePeak(QList<FragmentPeak> *peaks)
{
    const double highest = highestIntensity(*peaks);
    for (FragmentPeak &peak : *peaks)
        peak.intensity /= highest;
}

} // namespace

void PeakFilter::apply(const QList<FragmentPeak> &peaks, QList<FragmentPeak> *kept) const
{
    kept->clear();
    for (const FragmentPeak &peak : peaks) {
        if (isWanted(peak))
            kept->append(peak);
    }
    dropWeak(kept);
    keepTop(kept);
    if (m_options.isotopes)
        addIsotopes(kept);
    scaleToBasePeak(kept);
}

bool PeakFilter::isWanted(const FragmentPeak &peak) const
{
    return peak.mz >= m_options.minMz && peak.ionNumber >= m_options.minIonNumber && peak.intensity > 0.0 &&
           (m_options.neutralLosses || peak.neutralLoss.isEmpty()) &&
           (m_options.aIons || peak.ionType != QLatin1Char('a'));
}

void PeakFilter::dropWeak(QList<FragmentPeak> *peaks) const
{
    const double lowest = m_options.minIntensity * highestIntensity(*peaks);
    peaks->removeIf([lowest](const FragmentPeak &peak) { return peak.intensity < lowest; });
}

void PeakFilter::keepTop(QList<FragmentPeak> *peaks) const
{
    if (m_options.top == 0 || peaks->size() <= m_options.top)
        return;
    // Stable, so that equally intense peaks stay in the order of their m/z.
    std::stable_sort(peaks->begin(), peaks->end(),
                     [](const FragmentPeak &a, const FragmentPeak &b) { return a.intensity > b.intensity; });
    peaks->resize(m_options.top);
    sortByMz(peaks);
}

void PeakFilter::addIsotopes(QList<FragmentPeak> *peaks) const
{
    const double lowest = std::max(LOWEST_INTENSITY, m_options.minIntensity * highestIntensity(*peaks));
    QList<FragmentPeak> all;
    for (const FragmentPeak &peak : std::as_const(*peaks)) {
        all.append(peak);
        appendIsotopes(peak, lowest, &all);
    }
    sortByMz(&all);
    *peaks = all;
}

void PeakFilter::appendIsotopes(const FragmentPeak &peak, double lowest, QList<FragmentPeak> *peaks) const
{
    const double neutralMass = peak.charge * (peak.mz - peptideMasses::PROTON);
    const Result<QList<QPointF>> envelope =
        m_generator.buildTheoreticalIsotopicDistributionPoints(neutralMass, peak.charge, 0.0);
    if (envelope.hasError())
        return; // the predictor gives no peaks of such a mass
    const QList<QPointF> &points = envelope.value();
    for (int isotope = 1; isotope < points.size(); ++isotope) {
        FragmentPeak heavier = peak;
        heavier.mz = points[isotope].x();
        heavier.intensity = peak.intensity * points[isotope].y();
        heavier.isotope = isotope;
        if (heavier.mz <= HIGHEST_MZ && heavier.intensity >= lowest)
            peaks->append(heavier);
    }
}

} // namespace zav
