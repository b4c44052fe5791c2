// SPDX-License-Identifier: Apache-2.0
#include "Precursor.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

std::string problem(const QString &peptide, int charge)
{
    const auto tenForTwo = [](int z) { return z == 2 ? 10 : 0; };
    const Error error = checkPrecursor({peptide, charge}, tenForTwo);
    EXPECT_TRUE(!error.hasError() || error.equals(InvalidInput));
    return error.message().toStdString();
}

TEST(PrecursorCheck, TheTwentyResiduesUpToTheLimitPass)
{
    EXPECT_EQ(problem(QStringLiteral("ACDEFGHIKL"), 2), "");
    EXPECT_EQ(problem(QStringLiteral("MNPQRSTVWY"), 2), "");
}

TEST(PrecursorCheck, OneResidueOverTheLimitIsTooLong)
{
    EXPECT_EQ(problem(QStringLiteral("AAAAAAAAAAA"), 2), "the peptide has 11 residues; charge 2 allows at most 10");
}

TEST(PrecursorCheck, ChargeWithoutALimitIsNotPredicted)
{
    for (int charge : {0, 7, -1})
        EXPECT_EQ(problem(QStringLiteral("PEPTIDE"), charge),
                  "charge " + std::to_string(charge) + " is not predicted, only 1 to 5");
    EXPECT_EQ(problem(QStringLiteral("PEPTIDE"), 6), "charge 6 is not predicted, only 1 to 5; with --energy, 1 to 6");
}

TEST(PrecursorCheck, EmptyPeptideIsRefused)
{
    EXPECT_EQ(problem({}, 2), "the peptide is empty");
}

TEST(PrecursorCheck, LettersThatAreNoResidueAreNamedWithTheirPosition)
{
    for (const char letter : std::string("BJOUXZ"))
        EXPECT_EQ(problem(QStringLiteral("PEP") + QLatin1Char(letter), 2),
                  std::string("unknown residue '") + letter +
                      "' at position 4; only the 20 standard residues are predicted");
}

TEST(PrecursorCheck, LowerCaseIsNamedWithItsPosition)
{
    EXPECT_EQ(problem(QStringLiteral("PEPtIDE"), 2),
              "lower-case residue 't' at position 4, peptides are written in upper case");
}

TEST(PrecursorCheck, PeptideWithModificationsHasTheLimitsOfItsNetwork)
{
    for (int charge = 1; charge <= 6; ++charge)
        EXPECT_EQ(problem(QStringLiteral("AM[Oxidation]K"), charge), "");
    EXPECT_EQ(problem(QStringLiteral("AM[Oxidation]K"), 7), "charge 7 is not predicted, only 1 to 6");
    EXPECT_EQ(problem(QString(50, u'A') + QStringLiteral("M[Oxidation]K"), 2), "");
    EXPECT_EQ(problem(QString(51, u'A') + QStringLiteral("M[Oxidation]K"), 2),
              "the peptide has 53 residues, not 2 to 52");
    EXPECT_EQ(problem(QStringLiteral("M[Oxidation]"), 2), "the peptide has 1 residues, not 2 to 52");
}

TEST(PrecursorCheck, PeptideWithAnEnergyHasTheLimitsOfItsNetwork)
{
    const auto noCharge = [](int) { return 0; };
    const auto problemAt = [&](const char *peptide, int charge, double energy) {
        return checkPrecursor({peptide, charge, energy}, noCharge).message().toStdString();
    };
    EXPECT_EQ(problemAt("PEPTIDE", 6, 30), "");
    EXPECT_EQ(problemAt("PEPTIDE", 2, 10), "");
    EXPECT_EQ(problemAt("PEPTIDE", 2, 60), "");
    EXPECT_EQ(problemAt("PEPTIDE", 2, 9.5), "energy 9.5 is not predicted, only 10 to 60");
    EXPECT_EQ(problemAt("PEPTIDE", 2, 61), "energy 61 is not predicted, only 10 to 60");
    EXPECT_EQ(problemAt("PEPTIDE", 7, 30), "charge 7 is not predicted, only 1 to 6");
    EXPECT_EQ(problemAt("PEPtIDE", 2, 30), "lower-case residue 't' at position 4, peptides are written in upper case");
}

TEST(PrecursorCheck, ResiduesOfProFormaAreCheckedToo)
{
    EXPECT_EQ(problem(QStringLiteral("AX[Oxidation]K"), 2),
              "unknown residue 'X' at position 2; only the 20 standard residues are predicted");
    EXPECT_NE(problem(QStringLiteral("AM[Oxidized]K"), 2), "") << "a name that nobody has given";
}

TEST(PrecursorCheck, ModificationsMayNotTakeAwayMoreThanThePeptideWeighs)
{
    // AK weighs 71.037 + 128.095 + 18.011 Da.
    EXPECT_EQ(problem(QStringLiteral("A[-217.1]K"), 2), "");
    EXPECT_EQ(problem(QStringLiteral("A[-1217.142638]K"), 2), "the peptide weighs -1000 Da with its modifications");
}

TEST(PeptidoformOfText, HasTheFixedMassInOneLetterCodeOnly)
{
    EXPECT_EQ(peptidoformOf("ACK", 57.021464).value().toProForma().toStdString(), "AC[Carbamidomethyl]K");
    EXPECT_EQ(peptidoformOf("ACM[Oxidation]K", 57.021464).value().toProForma().toStdString(), "ACM[Oxidation]K");
    EXPECT_TRUE(peptidoformOf("AC[", 57.021464).hasError());
}

TEST(PeptidoformOfText, IsAskedOfItsNetworkForModificationsAndEnergies)
{
    EXPECT_FALSE(needsPeptidoforms({"PEPTIDE", 2}));
    EXPECT_TRUE(needsPeptidoforms({"PEPTIDE", 2, 30}));
    EXPECT_TRUE(needsPeptidoforms({"PEPTM[Oxidation]IDE", 2}));
    EXPECT_TRUE(needsPeptidoforms({"<[Carbamidomethyl]@C>PEPTIDE", 2}));
}

TEST(PrecursorCheck, ControlCharactersDoNotReachTheMessage)
{
    EXPECT_EQ(problem(QStringLiteral("P\03331m"), 2),
              "'\\x1b' at position 2 is not a residue; modifications are written as in AM[Oxidation]K");
}

TEST(Precursor, LongPeptidesAreShortenedInMessages)
{
    EXPECT_EQ(displayName({QStringLiteral("PEPTIDE"), 3}).toStdString(), "PEPTIDE/3");
    EXPECT_EQ(displayName({QString(100, QLatin1Char('A')), 3}).toStdString(), std::string(60, 'A') + ".../3");
}

} // namespace
} // namespace zav
