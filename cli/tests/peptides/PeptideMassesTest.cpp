// SPDX-License-Identifier: Apache-2.0
#include "PeptideMasses.h"

#include <QtCore/QHash>

#include <gtest/gtest.h>

namespace zav {
namespace {

constexpr double CARBAMIDOMETHYL = 57.021464;

TEST(PeptideMasses, ResiduesAgreeWithAPublishedTable)
{
    // Matrix Science, "Amino acid reference data", monoisotopic, given to 6 places.
    const QHash<QChar, double> published = {{'G', 57.021464},  {'A', 71.037114},  {'S', 87.032028},  {'P', 97.052764},
                                            {'V', 99.068414},  {'T', 101.047679}, {'C', 103.009185}, {'L', 113.084064},
                                            {'I', 113.084064}, {'N', 114.042927}, {'D', 115.026943}, {'Q', 128.058578},
                                            {'K', 128.094963}, {'E', 129.042593}, {'M', 131.040485}, {'H', 137.058912},
                                            {'F', 147.068414}, {'R', 156.101111}, {'Y', 163.063329}, {'W', 186.079313}};
    for (auto residue = published.begin(); residue != published.end(); ++residue)
        EXPECT_NEAR(peptideMasses::residueMass(residue.key()), residue.value(), 1e-6) << residue.key().toLatin1();
}

TEST(PeptideMasses, OtherCharactersWeighNothing)
{
    for (const QChar character : {u'B', u'J', u'O', u'U', u'X', u'Z', u'a', u'@', u'[', u'\u00C4'})
        EXPECT_EQ(peptideMasses::residueMass(character), 0) << int{character.unicode()};
}

TEST(PeptideMasses, PeptideAgreesWithPyteomics)
{
    // pyteomics 4.7.5, mass.calculate_mass for ACDEFGHK with carbamidomethylated cysteine, to 5 places.
    EXPECT_NEAR(peptideMasses::neutralMass("ACDEFGHK", CARBAMIDOMETHYL), 962.39162, 1e-5);
    EXPECT_NEAR(peptideMasses::precursorMz("ACDEFGHK", 2, CARBAMIDOMETHYL), 482.20308, 1e-5);
    const Peptidoform peptidoform = withCysteines("ACDEFGHK", CARBAMIDOMETHYL);
    EXPECT_NEAR(peptideMasses::precursorMz(peptidoform, 2), 482.20308, 1e-5);
    EXPECT_NEAR(peptideMasses::fragmentMz(peptidoform, u'y', 5, 1), 617.30419, 1e-5);
}

TEST(PeptideMasses, FragmentsOfAlanylGlycineAreTheSumsOfTheirParts)
{
    // Residue, plus water for y, plus the charge's protons, from the table above and H2O 18.010565.
    const Peptidoform peptide("AG");
    EXPECT_NEAR(peptideMasses::fragmentMz(peptide, u'b', 1, 1), 71.037114 + 1.007276, 2e-6);
    EXPECT_NEAR(peptideMasses::fragmentMz(peptide, u'y', 1, 1), 57.021464 + 18.010565 + 1.007276, 2e-6);
    EXPECT_NEAR(peptideMasses::fragmentMz(peptide, u'y', 2, 2), (128.058578 + 18.010565) / 2 + 1.007276, 2e-6);
}

TEST(PeptideMasses, CysteineMassCountsOnEachCysteineOfTheFragment)
{
    EXPECT_DOUBLE_EQ(peptideMasses::neutralMass("CACA", 10) - peptideMasses::neutralMass("CACA", 0), 20);
    EXPECT_DOUBLE_EQ(peptideMasses::fragmentMz(withCysteines("CAAC", 10), u'b', 2, 1) -
                         peptideMasses::fragmentMz(withCysteines("CAAC", 0), u'b', 2, 1),
                     10);
}

TEST(PeptideMasses, ModificationsCountOnTheFragmentsThatHoldThem)
{
    // Acetyl 42.010565 at the N-terminus, amidation -0.984016 at the C-terminus (Unimod), residues as above.
    const Peptidoform peptidoform = Peptidoform::fromProForma("[Acetyl]-AG[+10]S-[Amidated]").value();
    EXPECT_NEAR(peptideMasses::fragmentMz(peptidoform, u'b', 1, 1), 71.037114 + 42.010565 + 1.007276, 2e-6);
    EXPECT_NEAR(peptideMasses::fragmentMz(peptidoform, u'b', 2, 1), 128.058578 + 52.010565 + 1.007276, 2e-6);
    EXPECT_NEAR(peptideMasses::fragmentMz(peptidoform, u'y', 1, 1), 87.032028 - 0.984016 + 18.010565 + 1.007276, 2e-6);
    EXPECT_NEAR(peptideMasses::precursorMz(peptidoform, 2), (215.090606 + 51.026549 + 18.010565) / 2 + 1.007276, 2e-6);
}

TEST(PeptideMasses, CysteinesHaveTheReagentOfTheirMass)
{
    const Peptidoform blocked = withCysteines("CAC", 57.02146);
    EXPECT_EQ(blocked.toProForma().toStdString(), "C[Carbamidomethyl]AC[Carbamidomethyl]");
    EXPECT_EQ(blocked.modifications().first().modification.mass, 57.02146) << "with the digits that were given";
    EXPECT_EQ(withCysteines("AC", 12.5).toProForma().toStdString(), "AC[+12.5]");
    EXPECT_TRUE(withCysteines("CAC", 0).modifications().isEmpty());
}

TEST(CysteineModification, MassWithFewerDigitsIsThatOfUnimod)
{
    EXPECT_EQ(exactCysteineMass(57.02146), 57.021464);
    EXPECT_EQ(exactCysteineMass(57.0215), 57.0215);
    EXPECT_EQ(exactCysteineMass(12.5), 12.5);
    EXPECT_TRUE(isCysteineModified(-2.0));
    EXPECT_FALSE(isCysteineModified(0.0));
}

TEST(CysteineModification, StandsAtEveryCysteineOfAPeptidoform)
{
    const Peptidoform peptidoform = withCysteines(QStringLiteral("CAKC"), 57.02146);
    ASSERT_EQ(peptidoform.modifications().size(), 2);
    EXPECT_EQ(peptidoform.modifications()[0].position, 1);
    EXPECT_EQ(peptidoform.modifications()[1].position, 4);
    EXPECT_EQ(peptidoform.modifications()[1].modification.unimodAccession, 4);
    EXPECT_EQ(peptidoform.modifications()[1].modification.mass, 57.02146);
    EXPECT_TRUE(withCysteines(QStringLiteral("CAKC"), 0.0).modifications().isEmpty());
    EXPECT_TRUE(withCysteines(QStringLiteral("CAKC"), 12.5).modifications()[0].modification.isMassOnly());
}

} // namespace
} // namespace zav
