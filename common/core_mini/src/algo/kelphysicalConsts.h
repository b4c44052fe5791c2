// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Export.h"

#include <QtCore/QHash>
#include <QtCore/QString>

/// Physical constants in dalton.
namespace zav::kelphysicalConsts {

/// Proton, CODATA 1998 (Mohr and Taylor, Rev. Mod. Phys. 72, 351, 2000): the value that the field's programs share.
inline constexpr double PROTON_MASS = 1.00727646677;

/// Distance of neighbouring isotope peaks of a peptide: 13C - 12C (AME2012).
inline constexpr double ISOTOPE_SPACING = 1.0033548;

/// Monoisotopic masses of the 20 standard residues (amino acid minus water), keyed by the upper-case one-letter code.
ZAV_COMMON_CORE_MINI_EXPORT extern const QHash<QString, double> MONOISOTOPIC_MASSES_AMINO_ACIDS;

} // namespace zav::kelphysicalConsts
