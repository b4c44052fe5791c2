// SPDX-License-Identifier: Apache-2.0
#include "PeakNaming.h"

#include "IonNames.h"

#include <zav/TheoreticalIsotopePoint2dListGenerator.h>

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

// Two computations of one ion differ by rounding only; different ions of a peptide are hardly ever this close.
constexpr double MZ_TOLERANCE = 1e-4;

// CODATA 1998, as in the predictor: the charge carriers of a fragment.
constexpr double PROTON_MASS = 1.00727646677;

Error addIon(const FragmentPeak &fragment, QList<AnnotatedPeak> *ions)
{
    const AnnotatedPeak monoisotopic = annotatedPeak(fragment);
    ions->append(monoisotopic);
    const double neutralMass = (fragment.mz - PROTON_MASS) * fragment.charge;
    const auto envelope = TheoreticalIsotopePoint2dListGenerator().buildTheoreticalIsotopicDistributionPoints(
        neutralMass, fragment.charge, 0.0);
    if (envelope.hasError())
        return envelope.error();
    for (int i = 1; i < envelope.value().size(); ++i) {
        AnnotatedPeak isotope = isotopeOf(monoisotopic, i);
        isotope.mz = envelope.value()[i].x();
        isotope.intensity = envelope.value()[i].y() * fragment.intensity;
        ions->append(isotope);
    }
    return {};
}

/// The ion nearest in intensity among those at the point's m/z that are not given yet; -1 when there is none.
int bestIon(const QPointF &point, const QList<AnnotatedPeak> &ions, const QList<bool> &given)
{
    const auto first = std::lower_bound(ions.begin(), ions.end(), point.x() - MZ_TOLERANCE,
                                        [](const AnnotatedPeak &ion, double mz) { return ion.mz < mz; });
    int best = -1;
    for (int i = int(first - ions.begin()); i < ions.size() && ions[i].mz <= point.x() + MZ_TOLERANCE; ++i) {
        const auto distance = [&](int ion) { return std::abs(ions[ion].intensity - point.y()); };
        if (!given[i] && (best < 0 || distance(i) < distance(best)))
            best = i;
    }
    return best;
}

Result<QList<AnnotatedPeak>> nameByIons(const QList<QPointF> &points, const QList<FragmentPeak> &fragments)
{
    QList<AnnotatedPeak> ions;
    for (const FragmentPeak &fragment : fragments) {
        if (Error error = addIon(fragment, &ions); error.hasError())
            return error;
    }
    std::stable_sort(ions.begin(), ions.end(),
                     [](const AnnotatedPeak &a, const AnnotatedPeak &b) { return a.mz < b.mz; });

    QList<bool> given(ions.size(), false);
    QList<AnnotatedPeak> peaks;
    peaks.reserve(points.size());
    for (const QPointF &point : points) {
        const int ion = bestIon(point, ions, given);
        AnnotatedPeak peak = ion < 0 ? AnnotatedPeak() : ions[ion];
        if (ion >= 0)
            given[ion] = true;
        peak.mz = point.x();
        peak.intensity = point.y();
        peaks.append(peak);
    }
    return peaks;
}

bool isSameIon(const FragmentPeak &a, const FragmentPeak &b)
{
    return a.ionType == b.ionType && a.ionNumber == b.ionNumber && a.charge == b.charge &&
           a.neutralLoss == b.neutralLoss;
}

} // namespace

Result<QList<AnnotatedPeak>> namePeaks(const QList<QPointF> &points, const QList<FragmentPeak> &fragments,
                                       const QList<FragmentPeak> &silentFragments)
{
    const Result<QList<AnnotatedPeak>> named = nameByIons(points, fragments);
    const auto isUnnamed = [](const AnnotatedPeak &peak) { return peak.ionName.isEmpty(); };
    if (named.hasError() || std::none_of(named.value().begin(), named.value().end(), isUnnamed))
        return named;
    QList<FragmentPeak> all = fragments;
    for (const FragmentPeak &silent : silentFragments) {
        const auto isListed = [&](const FragmentPeak &fragment) { return isSameIon(fragment, silent); };
        if (std::none_of(fragments.begin(), fragments.end(), isListed))
            all.append(silent);
    }
    return nameByIons(points, all);
}

} // namespace zav
