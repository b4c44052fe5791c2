// SPDX-License-Identifier: Apache-2.0
#include "kelphysicalConsts.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zav::kelphysicalConsts {
namespace {

struct Reference
{
    const char *residue;
    double molmass;   // molmass 2026.1.8: isotope mass of the one-residue peptide minus that of H2O
    double pyteomics; // pyteomics 5.0.1, std_aa_mass, an older atomic mass evaluation
    double mascot;    // Matrix Science, Amino acid reference data, six digits
};

const Reference REFERENCES[] = {
    {"G", 57.021463721, 57.021463721, 57.021464},    {"A", 71.037113785, 71.037113785, 71.037114},
    {"S", 87.032028405, 87.032028404, 87.032028},    {"P", 97.052763850, 97.052763849, 97.052764},
    {"V", 99.068413914, 99.068413913, 99.068414},    {"T", 101.047678469, 101.047678468, 101.047679},
    {"C", 103.009184960, 103.009184785, 103.009185}, {"I", 113.084063979, 113.084063977, 113.084064},
    {"L", 113.084063979, 113.084063977, 113.084064}, {"N", 114.042927441, 114.042927441, 114.042927},
    {"D", 115.026943024, 115.026943024, 115.026943}, {"Q", 128.058577506, 128.058577505, 128.058578},
    {"K", 128.094963015, 128.094963014, 128.094963}, {"E", 129.042593089, 129.042593088, 129.042593},
    {"M", 131.040485088, 131.040484913, 131.040485}, {"H", 137.058911858, 137.058911858, 137.058912},
    {"F", 147.068413914, 147.068413913, 147.068414}, {"R", 156.101111024, 156.101111024, 156.101111},
    {"Y", 163.063328534, 163.063328533, 163.063329}, {"W", 186.079312951, 186.079312950, 186.079313},
};

// Atomic mass evaluations of 2003 to 2020 differ by 2e-7 Da at most (sulfur), far less for the other elements.
constexpr double EVALUATIONS_DIFFER = 5e-7;
constexpr double SIX_DIGITS = 1e-6;

TEST(KelphysicalConsts, ResidueMassesAgreeWithThreeOtherTables)
{
    for (const Reference &reference : REFERENCES) {
        SCOPED_TRACE(reference.residue);
        const QString key = QString::fromLatin1(reference.residue);
        ASSERT_TRUE(MONOISOTOPIC_MASSES_AMINO_ACIDS.contains(key));
        const double mass = MONOISOTOPIC_MASSES_AMINO_ACIDS.value(key);
        EXPECT_NEAR(reference.molmass, mass, EVALUATIONS_DIFFER);
        EXPECT_NEAR(reference.pyteomics, mass, EVALUATIONS_DIFFER);
        EXPECT_NEAR(reference.mascot, mass, SIX_DIGITS);
    }
}

TEST(KelphysicalConsts, TableHoldsTheTwentyStandardResiduesOnly)
{
    EXPECT_EQ(20, MONOISOTOPIC_MASSES_AMINO_ACIDS.size());
    for (const char *other : {"B", "J", "O", "U", "X", "Z", "g", "c", "", "GA"})
        EXPECT_FALSE(MONOISOTOPIC_MASSES_AMINO_ACIDS.contains(QString::fromLatin1(other))) << other;
}

TEST(KelphysicalConsts, IsotopeSpacingIsThatOfCarbon)
{
    // 13C from AME2020.
    EXPECT_NEAR(13.00335483534 - CARBON_MASS, ISOTOPE_SPACING, 5e-8) << "rounded to seven digits";
}

TEST(KelphysicalConsts, HydrogenIsAProtonAndAnElectron)
{
    // Electron mass and hydrogen's binding energy (13.6 eV), CODATA, in Da; evaluations differ in the ninth digit.
    EXPECT_NEAR(HYDROGEN_MASS, PROTON_MASS + 0.000548579909 - 1.46e-8, 1e-9);
}

} // namespace
} // namespace zav::kelphysicalConsts
