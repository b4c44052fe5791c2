// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Export.h"
#include "Result.h"

#include <QtCore/QList>
#include <QtCore/QPointF>

namespace zav {

/// The isotope envelope of an average peptide of a given mass.
///
/// Composition: averagine (Senko, Beu and McLafferty, J. Am. Soc. Mass Spectrom. 6, 229, 1995; C 4.9384 H 7.7583
/// N 1.3577 O 1.4773 S 0.0417 per unit), scaled by monoisotopic mass with fractional atom counts, so that the envelope
/// is smooth in mass. Stateless; any number of threads may share one object.
class ZAV_COMMON_CORE_MINI_EXPORT TheoreticalIsotopePoint2dListGenerator
{
public:
    /// The peaks of an ion of neutral monoisotopic mass `mass` (Da) and charge number `charge`, the monoisotopic one
    /// first, then ascending: x = m/z, spaced 1.0033548 Da / charge, y = abundance relative to the monoisotopic peak
    /// (whose y is 1).
    ///
    /// At least two peaks, on until one is under `minRelativeAbundance` times the largest; 0 stands for 0.001.
    /// `InvalidInput` for a mass or charge that is not positive and finite. Below a microsecond for fragments.
    Result<QList<QPointF>> buildTheoreticalIsotopicDistributionPoints(double mass, int charge,
                                                                      double minRelativeAbundance) const;
};

} // namespace zav
