// SPDX-License-Identifier: Apache-2.0
#include "SpectrumAssembler.h"

#include "SpectrumLimits.h"
#include "kelphysica.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace zav {

namespace {

constexpr std::size_t TYPICAL_PEAK_COUNT = 128;

double neutralMass(double mz, int charge)
{
    return kelphysica::calculateUnchargedMassFromMzCharge(mz, charge, 0, true);
}

} // namespace

double highestIsotopeAbundance(double neutralMass)
{
    constexpr double SAFE_MASS = 1800.0; // the +1 peak is the highest, and grows linearly to 1 at 1832 Da
    constexpr double HIGHEST = 10.0;     // up to the mass of three charges at the highest m/z, 6 kDa
    return neutralMass <= SAFE_MASS ? neutralMass / SAFE_MASS : HIGHEST;
}

Result<QList<QPointF>> heavyIsotopePeaks(const TheoreticalIsotopePoint2dListGenerator &generator,
                                         const QPointF &monoisotopic, int charge)
{
    Result<QList<QPointF>> distribution =
        generator.buildTheoreticalIsotopicDistributionPoints(neutralMass(monoisotopic.x(), charge), charge, 0.0);
    if (distribution.hasError())
        return distribution;
    QList<QPointF> points = std::move(distribution).value();
    if (!points.isEmpty())
        points.removeFirst();
    for (QPointF &point : points)
        point.setY(point.y() * monoisotopic.y());
    return points;
}

SpectrumAssembler::SpectrumAssembler(int precursorCharge, double fixedMass, IsotopePeaks isotopePeaks)
    : ladder(fragmentLadder::ionSeries(precursorCharge)), cysteineFixedMass(fixedMass), isotopes(isotopePeaks)
{
    peaks.reserve(TYPICAL_PEAK_COUNT);
}

bool SpectrumAssembler::assemble(const QString &peptide, const float *intensities)
{
    weighResidues(peptide);
    peaks.clear();
    for (qsizetype i = 0; i < ladder.size(); ++i) {
        if (!collectSeries(static_cast<int>(i), intensities))
            return false;
        intensities += ladder.at(i).slotCount;
    }
    std::stable_sort(peaks.begin(), peaks.end(), [](const Peak &a, const Peak &b) { return a.mz < b.mz; });
    return true;
}

void SpectrumAssembler::weighResidues(const QString &peptide)
{
    fromNTerminus.clear();
    fromNTerminus.reserve(static_cast<std::size_t>(peptide.size()));
    for (const QChar residue : peptide)
        fromNTerminus.push_back(fragmentLadder::weigh(residue, cysteineFixedMass));
    fromCTerminus.assign(fromNTerminus.rbegin(), fromNTerminus.rend());
}

/// False when a fragment has no mass that the isotope generator takes, however weak it is.
bool SpectrumAssembler::collectSeries(int index, const float *intensities)
{
    const fragmentLadder::IonSeries &series = ladder.at(index);
    const auto &residues = fragmentLadder::startsAtCTerminus(series.ionType) ? fromCTerminus : fromNTerminus;
    const int count = std::min(series.slotCount, static_cast<int>(residues.size()));
    fragmentLadder::GrowingIon ion(series.startMass, series.charge);
    for (int i = 0; i < count; ++i) {
        const double mz = ion.mzWith(residues[i]);
        if (mz < 0.0)
            continue;
        const double mass = neutralMass(mz, series.charge);
        if (!(mass <= TheoreticalIsotopePoint2dListGenerator::MAXIMUM_MASS))
            return false;
        const Peak peak{mz, intensities[i], index, static_cast<qint16>(i + 1), 0};
        if (!spectrumLimits::isOutside(mz, peak.intensity))
            peaks.push_back(peak);
        // Isotopes stand above the fragment: where none is high enough either, there is no need to know them.
        if (isotopes == IsotopePeaks::Included &&
            !spectrumLimits::isOutside(mz, peak.intensity * highestIsotopeAbundance(mass)) &&
            !collectIsotopes(peak, series.charge))
            return false;
    }
    return true;
}

bool SpectrumAssembler::collectIsotopes(const Peak &monoisotopic, int charge)
{
    const auto points = heavyIsotopePeaks(isotopeGenerator, {monoisotopic.mz, monoisotopic.intensity}, charge);
    if (points.hasError())
        return false;
    Peak peak = monoisotopic;
    for (const QPointF &point : points.value()) {
        peak.mz = point.x();
        peak.intensity = point.y();
        ++peak.isotope;
        if (!spectrumLimits::isOutside(peak.mz, peak.intensity))
            peaks.push_back(peak);
    }
    return true;
}

QList<QPointF> SpectrumAssembler::points() const
{
    QList<QPointF> points;
    points.reserve(static_cast<qsizetype>(peaks.size()));
    for (const Peak &peak : peaks)
        points.append({peak.mz, peak.intensity});
    return points;
}

QList<FragmentPeak> SpectrumAssembler::namedPeaks() const
{
    QList<FragmentPeak> named;
    named.reserve(static_cast<qsizetype>(peaks.size()));
    for (const Peak &peak : peaks) {
        const fragmentLadder::IonSeries &series = ladder.at(peak.series);
        named.append(
            {peak.mz, peak.intensity, series.ionType, peak.ionNumber, series.charge, series.neutralLoss, peak.isotope});
    }
    return named;
}

} // namespace zav
