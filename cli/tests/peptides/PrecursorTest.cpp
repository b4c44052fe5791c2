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
    for (int charge : {0, 6, -1})
        EXPECT_EQ(problem(QStringLiteral("PEPTIDE"), charge),
                  "charge " + std::to_string(charge) + " is not predicted, only 1 to 5");
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

TEST(PrecursorCheck, ModificationsAreSaidToBeImpossible)
{
    EXPECT_EQ(problem(QStringLiteral("AM[16]K"), 2),
              "'[' at position 3 is not a residue; modifications are not supported");
}

TEST(PrecursorCheck, ControlCharactersDoNotReachTheMessage)
{
    EXPECT_EQ(problem(QStringLiteral("P\033[31m"), 2),
              "'\\x1b' at position 2 is not a residue; modifications are not supported");
}

TEST(Precursor, LongPeptidesAreShortenedInMessages)
{
    EXPECT_EQ(displayName({QStringLiteral("PEPTIDE"), 3}).toStdString(), "PEPTIDE/3");
    EXPECT_EQ(displayName({QString(100, QLatin1Char('A')), 3}).toStdString(), std::string(60, 'A') + ".../3");
}

} // namespace
} // namespace zav
