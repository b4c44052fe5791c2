// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Export.h>

#include <QtCore/QHash>
#include <QtCore/QString>

/// Physical constants in dalton.
namespace zav::kelphysicalConsts {

/// Masses of the lightest isotopes of the elements of peptides and their modifications: AME2020 (Wang et al., Chin.
/// Phys. C 45, 030003, 2021), which IUPAC's commission on isotopic abundances and atomic weights adopts. Those are the
/// most abundant isotopes too.
inline constexpr double CARBON_MASS = 12.0;
inline constexpr double HYDROGEN_MASS = 1.007825031898;
inline constexpr double NITROGEN_MASS = 14.003074004251;
inline constexpr double OXYGEN_MASS = 15.994914619257;
inline constexpr double PHOSPHORUS_MASS = 30.973761997668;
inline constexpr double SULFUR_MASS = 31.972071173500;

/// Masses of the heavier isotopes that labels are made of, from the same evaluation.
inline constexpr double DEUTERIUM_MASS = 2.014101777844;
inline constexpr double CARBON13_MASS = 13.003354835336;
inline constexpr double NITROGEN15_MASS = 15.000108898266;
inline constexpr double OXYGEN18_MASS = 17.999159612136;

/// Proton, CODATA 1998 (Mohr and Taylor, Rev. Mod. Phys. 72, 351, 2000): the value that the field's programs share.
inline constexpr double PROTON_MASS = 1.00727646677;

/// Distance of neighbouring isotope peaks of a peptide: 13C - 12C (AME2020: 1.0033548353).
inline constexpr double ISOTOPE_SPACING = 1.0033548;

/// Monoisotopic masses of the 20 standard residues (amino acid minus water), keyed by the upper-case one-letter code.
/// Sums of the atomic masses above; read-only once the library is loaded.
ZAV_COMMON_CORE_MINI_EXPORT extern const QHash<QString, double> MONOISOTOPIC_MASSES_AMINO_ACIDS;

} // namespace zav::kelphysicalConsts
