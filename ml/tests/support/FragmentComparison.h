// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FragmentationInspector.h"

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>

#include <algorithm>
#include <cmath>
#include <optional>

namespace zav {

/// The peaks that a batch has to give for one peptide: those of the one-peptide prediction that stand at exactly the
/// m/z of a fragment. Nothing where that prediction fails.
inline std::optional<QList<QPointF>> monoisotopicPeaks(MsMsFragmentationPredictomatic *predictor,
                                                       const QString &peptide, int charge)
{
    QList<QPointF> spectrum;
    if (predictor->predictMsMsFragmentation(peptide, charge, &spectrum).hasError())
        return std::nullopt;
    const auto ladder = MsMsFragmentationPredictomaticInspector(predictor).buildMzPoints(peptide, charge);
    spectrum.removeIf([&ladder](const QPointF &point) {
        return std::none_of(ladder.cbegin(), ladder.cend(),
                            [&point](const auto &fragment) { return fragment.mz == point.x(); });
    });
    return spectrum;
}

/// Whether both have the same peaks, m/z exactly, intensities within the tolerance. Peaks so near the lowest intensity
/// that this may have removed them in one of the two are left aside.
inline bool haveSamePeaks(const QList<FragmentPeak> &peaks, QList<QPointF> expected, double tolerance)
{
    constexpr double LOWEST_INTENSITY = 0.025;
    for (const FragmentPeak &peak : peaks) {
        const auto match = std::find_if(expected.cbegin(), expected.cend(), [&](const QPointF &point) {
            return point.x() == peak.mz && std::abs(point.y() - peak.intensity) <= tolerance;
        });
        if (match != expected.cend())
            expected.erase(match);
        else if (peak.intensity > LOWEST_INTENSITY + tolerance)
            return false;
    }
    return std::all_of(expected.cbegin(), expected.cend(),
                       [&](const QPointF &point) { return point.y() <= LOWEST_INTENSITY + tolerance; });
}

inline bool isSameIon(const FragmentPeak &a, const FragmentPeak &b)
{
    return a.ionType == b.ionType && a.ionNumber == b.ionNumber && a.charge == b.charge &&
           a.neutralLoss == b.neutralLoss && a.isotope == b.isotope;
}

/// Whether each peak is named after a fragment of exactly its m/z, and none twice.
inline bool areNamedAfterFragments(const QList<FragmentPeak> &peaks, MsMsFragmentationPredictomatic *predictor,
                                   const QString &peptide, int charge)
{
    const auto ladder = MsMsFragmentationPredictomaticInspector(predictor).buildMzPoints(peptide, charge);
    return std::all_of(peaks.cbegin(), peaks.cend(), [&](const FragmentPeak &peak) {
        const auto isNamesake = [&peak](const auto &fragment) {
            return fragment.mz == peak.mz && isSameIon(peak, {fragment.mz, 0.0, fragment.ionType, fragment.ionNumber,
                                                              fragment.charge, fragment.neutralLoss});
        };
        const auto isDouble = [&peak](const FragmentPeak &other) { return isSameIon(peak, other); };
        return std::count_if(ladder.cbegin(), ladder.cend(), isNamesake) == 1 &&
               std::count_if(peaks.cbegin(), peaks.cend(), isDouble) == 1;
    });
}

/// Whether each peak is one of the fragment that it is named after: of exactly its m/z, or of exactly that of its
/// isotope; and none twice.
inline bool areNamedAfterIsotopes(const QList<FragmentPeak> &peaks, MsMsFragmentationPredictomatic *predictor,
                                  const QString &peptide, int charge)
{
    const MsMsFragmentationPredictomaticInspector steps(predictor);
    const auto ladder = steps.buildMzPoints(peptide, charge);
    return std::all_of(peaks.cbegin(), peaks.cend(), [&](const FragmentPeak &peak) {
        const auto isDouble = [&peak](const FragmentPeak &other) { return isSameIon(peak, other); };
        const auto fragment = std::find_if(ladder.cbegin(), ladder.cend(), [&peak](const auto &each) {
            return isSameIon(peak,
                             {0.0, 0.0, each.ionType, each.ionNumber, each.charge, each.neutralLoss, peak.isotope});
        });
        if (fragment == ladder.cend() || std::count_if(peaks.cbegin(), peaks.cend(), isDouble) != 1)
            return false;
        if (peak.isotope == 0)
            return peak.mz == fragment->mz;
        const auto isotopes = steps.addIsotopesToFragments({fragment->mz, 1.0}, fragment->charge).value();
        return peak.isotope <= isotopes.size() && peak.mz == isotopes.at(peak.isotope - 1).x();
    });
}

/// Whether both are the same peaks in the same order, m/z exactly, intensities within the tolerance.
inline bool areSamePeaksInOrder(const QList<FragmentPeak> &peaks, const QList<QPointF> &expected, double tolerance)
{
    return std::equal(peaks.cbegin(), peaks.cend(), expected.cbegin(), expected.cend(),
                      [tolerance](const FragmentPeak &peak, const QPointF &point) {
                          return peak.mz == point.x() && std::abs(peak.intensity - point.y()) <= tolerance;
                      });
}

inline bool isSortedByMz(const QList<FragmentPeak> &peaks)
{
    return std::is_sorted(peaks.cbegin(), peaks.cend(),
                          [](const FragmentPeak &a, const FragmentPeak &b) { return a.mz < b.mz; });
}

} // namespace zav
