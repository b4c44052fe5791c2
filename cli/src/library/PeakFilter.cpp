// SPDX-License-Identifier: Apache-2.0
#include "PeakFilter.h"

#include "PeptideMasses.h"

#include <algorithm>

namespace zav {

namespace {

// As the predictor limits its own isotope peaks.
constexpr double HIGHEST_MZ = 2000.0;
constexpr double LOWEST_INTENSITY = 0.025;

double highestIntensity(const QList<LibraryPeak> &peaks)
{
    double highest = 0.0;
    for (const LibraryPeak &peak : peaks)
        highest = std::max(highest, peak.intensity);
    return highest;
}

void sortByMz(QList<LibraryPeak> *peaks)
{
    std::stable_sort(peaks->begin(), peaks->end(),
                     [](const LibraryPeak &a, const LibraryPeak &b) { return a.mz < b.mz; });
}

void scaleToBasePeak(QList<LibraryPeak> *peaks)
{
    const double highest = highestIntensity(*peaks);
    for (LibraryPeak &peak : *peaks)
        peak.intensity /= highest;
}

} // namespace

QList<LibraryPeak> PeakFilter::apply(const QList<FragmentPeak> &peaks) const
{
    QList<LibraryPeak> kept;
    kept.reserve(peaks.size());
    for (const FragmentPeak &peak : peaks) {
        if (isWanted(peak))
            kept.append(peak);
    }
    dropWeak(&kept);
    keepTop(&kept);
    if (m_options.isotopes)
        addIsotopes(&kept);
    scaleToBasePeak(&kept);
    return kept;
}

bool PeakFilter::isWanted(const FragmentPeak &peak) const
{
    return peak.mz >= m_options.minMz && peak.ionNumber >= m_options.minIonNumber && peak.intensity > 0.0 &&
           (m_options.neutralLosses || peak.neutralLoss.isEmpty()) &&
           (m_options.aIons || peak.ionType != QLatin1Char('a'));
}

void PeakFilter::dropWeak(QList<LibraryPeak> *peaks) const
{
    const double lowest = m_options.minIntensity * highestIntensity(*peaks);
    peaks->removeIf([lowest](const LibraryPeak &peak) { return peak.intensity < lowest; });
}

void PeakFilter::keepTop(QList<LibraryPeak> *peaks) const
{
    if (m_options.top == 0 || peaks->size() <= m_options.top)
        return;
    // Stable, so that equally intense peaks stay in the order of their m/z.
    std::stable_sort(peaks->begin(), peaks->end(),
                     [](const LibraryPeak &a, const LibraryPeak &b) { return a.intensity > b.intensity; });
    peaks->resize(m_options.top);
    sortByMz(peaks);
}

void PeakFilter::addIsotopes(QList<LibraryPeak> *peaks) const
{
    const double lowest = std::max(LOWEST_INTENSITY, m_options.minIntensity * highestIntensity(*peaks));
    QList<LibraryPeak> all;
    for (const LibraryPeak &peak : std::as_const(*peaks)) {
        all.append(peak);
        appendIsotopes(peak, lowest, &all);
    }
    sortByMz(&all);
    *peaks = all;
}

void PeakFilter::appendIsotopes(const LibraryPeak &peak, double lowest, QList<LibraryPeak> *peaks) const
{
    const double neutralMass = peak.charge * (peak.mz - peptideMasses::PROTON);
    const Result<QList<QPointF>> envelope =
        m_generator.buildTheoreticalIsotopicDistributionPoints(neutralMass, peak.charge, 0.0);
    if (envelope.hasError())
        return; // the predictor gives no peaks of such a mass
    const QList<QPointF> &points = envelope.value();
    for (int isotope = 1; isotope < points.size(); ++isotope) {
        LibraryPeak heavier = peak;
        heavier.mz = points[isotope].x();
        heavier.intensity = peak.intensity * points[isotope].y();
        heavier.isotope = isotope;
        if (heavier.mz <= HIGHEST_MZ && heavier.intensity >= lowest)
            peaks->append(heavier);
    }
}

} // namespace zav
