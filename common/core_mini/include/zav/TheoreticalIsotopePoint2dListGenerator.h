// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Export.h>
#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QPointF>

namespace zav {

/// The isotope envelope of an average peptide of a given mass.
///
/// Composition: averagine (Senko, Beu and McLafferty, J. Am. Soc. Mass Spectrom. 6, 229, 1995; C 4.9384 H 7.7583
/// N 1.3577 O 1.4773 S 0.0417 per unit), scaled by monoisotopic mass with fractional atom counts, so that the envelope
/// is smooth in mass. Isotopic abundances: the element table of IsoSpec 2 (Lacki et al., Anal. Chem. 89, 3272, 2017).
///
/// Stateless; any number of threads may share one object.
class ZAV_COMMON_CORE_MINI_EXPORT TheoreticalIsotopePoint2dListGenerator
{
public:
    static constexpr double MAXIMUM_MASS = 1e6; ///< Da

    /// The peaks of an ion of neutral monoisotopic mass `mass` (Da) and `charge` protons, the monoisotopic one first,
    /// then ascending: x = m/z, spaced 1.0033548 / charge, y = abundance relative to the monoisotopic peak (whose y
    /// is 1; from about 1800 Da on it is not the largest).
    ///
    /// Always two peaks, and on until one falls under `minRelativeAbundance` times the largest, which is left out.
    /// `minRelativeAbundance` lies within 0 to 1; 0 stands for 0.001. A mass of 0 or less, which no atom makes, has the
    /// monoisotopic peak alone, at mass / charge + 1.00727646677 like any other.
    ///
    /// `InvalidInput`, untagged, for a mass that is not finite or above 1e6 Da, where heights relative to the
    /// monoisotopic peak near the end of double; for a charge below 1; for a `minRelativeAbundance` out of range.
    ///
    /// A fragment's envelope takes well under a microsecond; the cost grows with the number of peaks.
    Result<QList<QPointF>> buildTheoreticalIsotopicDistributionPoints(double mass, int charge,
                                                                      double minRelativeAbundance) const;
};

} // namespace zav
