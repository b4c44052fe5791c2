// SPDX-License-Identifier: Apache-2.0
#include "kelphysica.h"

#include <gtest/gtest.h>

namespace zav::kelphysica {
namespace {

// Sums of a few doubles near 1000: a few units in the last place.
constexpr double ROUNDING = 1e-12;

TEST(Kelphysica, UnchargedMassTakesOneProtonOffPerCharge)
{
    // 3 * 500.25 - 3 * 1.00727646677, and the same for one and two charges.
    EXPECT_NEAR(1497.72817059969, calculateUnchargedMassFromMzCharge(500.25, 3, 0, true), ROUNDING);
    EXPECT_NEAR(998.48544706646, calculateUnchargedMassFromMzCharge(500.25, 2, 0, true), ROUNDING);
    EXPECT_NEAR(499.24272353323, calculateUnchargedMassFromMzCharge(500.25, 1, 0, true), ROUNDING);
}

TEST(Kelphysica, EachHeavyIsotopeTakesItsSpacingOff)
{
    // 998.48544706646 - 2 * 1.0033548
    EXPECT_NEAR(996.47873746646, calculateUnchargedMassFromMzCharge(500.25, 2, 2, true), ROUNDING);
}

TEST(Kelphysica, UnprotonatedIonKeepsItsMass)
{
    EXPECT_DOUBLE_EQ(1000.5, calculateUnchargedMassFromMzCharge(500.25, 2, 0, false));
    EXPECT_NEAR(999.4966452, calculateUnchargedMassFromMzCharge(500.25, 2, 1, false), ROUNDING);
}

TEST(Kelphysica, LadderIonsOfUnknownResiduesMayHaveNegativeMass)
{
    // a1 of a residue that weighs nothing stands at proton - CO.
    EXPECT_NEAR(-27.994915, calculateUnchargedMassFromMzCharge(1.00727646677 - 27.994915, 1, 0, true), ROUNDING);
}

} // namespace
} // namespace zav::kelphysica
