// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Export.h>

namespace zav::kelphysica {

/// The neutral monoisotopic mass in Da of an ion of the given m/z and charge number:
/// mz * charge - charge * kelphysicalConsts::PROTON_MASS.
///
/// `isotopeIndex` is the number of heavy isotopes that the peak stands above the monoisotopic one; each takes
/// kelphysicalConsts::ISOTOPE_SPACING off the mass. With `protonated` false the charge carriers are taken to be
/// missing electrons, of negligible mass, and nothing is subtracted for them.
ZAV_COMMON_CORE_MINI_EXPORT double calculateUnchargedMassFromMzCharge(double mz, int charge, int isotopeIndex,
                                                                      bool protonated);

} // namespace zav::kelphysica
