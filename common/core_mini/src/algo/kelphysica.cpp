// SPDX-License-Identifier: Apache-2.0
#include "kelphysica.h"

#include "kelphysicalConsts.h"

namespace zav::kelphysica {

double calculateUnchargedMassFromMzCharge(double mz, int charge, int isotopeIndex, bool protonated)
{
    const double carriers = protonated ? charge * kelphysicalConsts::PROTON_MASS : 0.0;
    return mz * charge - carriers - isotopeIndex * kelphysicalConsts::ISOTOPE_SPACING;
}

} // namespace zav::kelphysica
