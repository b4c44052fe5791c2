// SPDX-License-Identifier: Apache-2.0
#include "FragmentAnnotator.h"

#include "SpectrumLimits.h"
#include "kelphysica.h"

#include <zav/TheoreticalIsotopePoint2dListGenerator.h>

#include <algorithm>

namespace zav {

FragmentAnnotator::FragmentAnnotator(int precursorCharge, double fixedMass)
    : ladder(fragmentLadder::ionSeries(precursorCharge)), cysteineFixedMass(fixedMass)
{}

std::optional<QList<FragmentPeak>> FragmentAnnotator::annotate(const QString &peptide, const float *intensities)
{
    weighResidues(peptide);
    candidates.clear();
    for (qsizetype i = 0; i < ladder.size(); ++i) {
        if (!collect(static_cast<int>(i), intensities))
            return std::nullopt;
        intensities += ladder.at(i).slotCount;
    }
    // Stable, so that ions of equal m/z stay in the order of the ladder.
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate &a, const Candidate &b) { return a.mz < b.mz; });
    return namedCandidates();
}

void FragmentAnnotator::weighResidues(const QString &peptide)
{
    fromNTerminus.clear();
    for (const QChar residue : peptide)
        fromNTerminus.push_back({fragmentLadder::residueMass(residue),
                                 residue == fragmentLadder::MODIFIED_RESIDUE ? cysteineFixedMass : 0.0});
    fromCTerminus.assign(fromNTerminus.rbegin(), fromNTerminus.rend());
}

/// False when a fragment has no mass that the isotope generator takes.
bool FragmentAnnotator::collect(int seriesIndex, const float *intensities)
{
    const fragmentLadder::IonSeries &series = ladder.at(seriesIndex);
    const auto &residues = fragmentLadder::startsAtCTerminus(series.ionType) ? fromCTerminus : fromNTerminus;
    const int count = std::min(series.slotCount, static_cast<int>(residues.size()));
    double mass = series.startMass;
    for (int i = 0; i < count; ++i) {
        mass += residues[i].mass;
        mass += residues[i].fixedMass; // by itself, so that the sum rounds as the one-peptide prediction's does
        const double mz = mass / series.charge;
        if (mz < 0.0)
            continue;
        const double neutralMass = kelphysica::calculateUnchargedMassFromMzCharge(mz, series.charge, 0, true);
        if (!(neutralMass > 0.0 && neutralMass <= TheoreticalIsotopePoint2dListGenerator::MAXIMUM_MASS))
            return false;
        if (!spectrumLimits::isOutside(mz, intensities[i]))
            candidates.push_back({mz, intensities[i], seriesIndex, i + 1});
    }
    return true;
}

QList<FragmentPeak> FragmentAnnotator::namedCandidates() const
{
    QList<FragmentPeak> peaks;
    peaks.reserve(static_cast<qsizetype>(candidates.size()));
    for (const Candidate &candidate : candidates) {
        const fragmentLadder::IonSeries &series = ladder.at(candidate.series);
        peaks.append({candidate.mz, candidate.intensity, series.ionType, candidate.ionNumber, series.charge,
                      series.neutralLoss});
    }
    return peaks;
}

} // namespace zav
