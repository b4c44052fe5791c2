// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>

#include <vector>

/// A second implementation of the spectrum of a peptide, slow and from first principles: masses from atoms, each
/// fragment summed anew, isotope envelopes by the binomial series of each element. It shares no code, no table and no
/// method with the library.
namespace zav::naive {

/// m/z of every slot of the ladder; -1 for slots that the peptide is too short for. Unknown residues weigh nothing.
std::vector<double> fragmentMzs(const QString &peptide, int precursorCharge, double cysteineMass);

/// The fragment charge of every slot.
std::vector<int> fragmentCharges(int precursorCharge);

/// Every fragment, as (m/z, intensity), and its isotope peaks: not limited, not sorted. Isotope peaks that cannot
/// reach `lowestIntensity` or stay under `highestMz` may be missing.
QList<QPointF> spectrum(const QString &peptide, int precursorCharge, double cysteineMass,
                        const std::vector<float> &intensities, double lowestIntensity, double highestMz);

/// The abundances of an average peptide relative to the monoisotopic peak, `count` of them.
std::vector<double> isotopeEnvelope(double neutralMass, int count);

} // namespace zav::naive
