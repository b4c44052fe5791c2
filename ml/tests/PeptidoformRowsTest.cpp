// SPDX-License-Identifier: Apache-2.0
#include "PeptidoformRows.h"
#include "Trail.h"

#include <gtest/gtest.h>

#include <vector>

namespace zav {
namespace {

constexpr int COLUMNS = 13;

/// A modification of this composition: C, H, N, O, P, S.
Modification ofAtoms(int carbon, int hydrogen, int nitrogen, int oxygen, int phosphorus, int sulfur)
{
    Modification modification;
    modification.name = QStringLiteral("Some");
    modification.unimodAccession = 1;
    modification.composition = {carbon, hydrogen, nitrogen, oxygen, phosphorus, sulfur};
    return modification;
}

// Unimod's compositions.
const Modification ACETYL = ofAtoms(2, 2, 0, 1, 0, 0);
const Modification OXIDATION = ofAtoms(0, 0, 0, 1, 0, 0);
const Modification CARBAMIDOMETHYL = ofAtoms(2, 3, 1, 1, 0, 0);
const Modification PHOSPHO = ofAtoms(0, 1, 0, 3, 1, 0);
const Modification METHYLTHIO = ofAtoms(1, 2, 0, 0, 0, 1);
const Modification AMIDATED = ofAtoms(0, 1, 1, -1, 0, 0);

std::vector<float> rowsOf(const Peptidoform &peptidoform)
{
    std::vector<float> rows(std::size_t{52} * COLUMNS, 0.0F);
    peptidoformRows::write(peptidoform, rows.data());
    return rows;
}

/// The expected rows, and zeros behind them.
std::vector<float> padded(const std::vector<std::vector<float>> &rows)
{
    std::vector<float> values;
    for (const std::vector<float> &row : rows)
        values.insert(values.end(), row.begin(), row.end());
    values.resize(std::size_t{52} * COLUMNS, 0.0F);
    return values;
}

TEST(PeptidoformRows, NumberTheResidues)
{
    std::vector<std::vector<float>> expected;
    for (int number = 1; number <= 20; ++number) {
        expected.emplace_back(COLUMNS, 0.0F);
        expected.back()[0] = static_cast<float>(number);
    }
    EXPECT_EQ(rowsOf(Peptidoform(QStringLiteral("DESTILVFYWACGMPNQHKR"))), padded(expected));
}

TEST(PeptidoformRows, HoldTheAtomsOfResiduesAndTermini)
{
    const Peptidoform peptidoform(
        QStringLiteral("MCSK"),
        {{0, ACETYL}, {1, OXIDATION}, {2, CARBAMIDOMETHYL}, {3, PHOSPHO}, {4, ACETYL}, {5, AMIDATED}});
    EXPECT_EQ(rowsOf(peptidoform), padded({{14, 0, 0, 0, 1, 0, 0, 2, 2, 0, 1, 0, 0},
                                           {12, 2, 3, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0},
                                           {3, 0, 1, 0, 3, 1, 0, 0, 0, 0, 0, 0, 0},
                                           {19, 2, 2, 0, 1, 0, 0, 0, 1, 1, -1, 0, 0}}));
}

TEST(PeptidoformRows, HoldSulfurInTheLastColumn)
{
    EXPECT_EQ(rowsOf(Peptidoform(QStringLiteral("CK"), {{0, METHYLTHIO}, {1, METHYLTHIO}})),
              padded({{12, 1, 2, 0, 0, 0, 1, 1, 2, 0, 0, 0, 1}, {19, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}}));
}

TEST(PeptidoformRows, CountLabelledAtomsAsTheirElement)
{
    Modification labelled; // a dimethyl of two 13C, four 2H, and an 18O for an 16O; two 15N for two N
    labelled.unimodAccession = 1;
    labelled.composition.hydrogen = 0;
    labelled.composition.oxygen = -1;
    labelled.composition.nitrogen = -2;
    labelled.composition.carbon13 = 2;
    labelled.composition.deuterium = 4;
    labelled.composition.oxygen18 = 1;
    labelled.composition.nitrogen15 = 2;
    EXPECT_EQ(rowsOf(Peptidoform(QStringLiteral("KR"), {{1, labelled}})),
              padded({{19, 2, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, {20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}}));
}

TEST(PeptidoformRows, LeaveAModificationOfMassAloneOut)
{
    Modification massOnly;
    massOnly.name = QStringLiteral("+15.9949");
    massOnly.mass = 15.9949;
    EXPECT_EQ(rowsOf(Peptidoform(QStringLiteral("MK"), {{1, massOnly}})), rowsOf(Peptidoform(QStringLiteral("MK"))));
}

TEST(PeptidoformRows, HoldAPyroglutamateAtTheTerminusWhereverItIsWritten)
{
    for (const char *text : {"Q[Gln->pyro-Glu]K", "[Gln->pyro-Glu]-QK"})
        EXPECT_EQ(rowsOf(Peptidoform::fromProForma(QString::fromLatin1(text)).value()),
                  padded({{17, 0, 0, 0, 0, 0, 0, 0, -3, -1, 0, 0, 0}, {19, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}}))
            << text;
    EXPECT_EQ(rowsOf(Peptidoform::fromProForma(QStringLiteral("E[Glu->pyro-Glu]K")).value()),
              padded({{2, 0, 0, 0, 0, 0, 0, 0, -2, 0, -1, 0, 0}, {19, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}}));
    EXPECT_EQ(rowsOf(Peptidoform::fromProForma(QStringLiteral("KQ[Gln->pyro-Glu]")).value()),
              padded({{19, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, {17, 0, -3, -1, 0, 0, 0, 0, 0, 0, 0, 0, 0}}));
}

TEST(PeptidoformRows, TakeTwoTo52Residues)
{
    EXPECT_EQ(peptidoformRows::problemOf(Peptidoform(QStringLiteral("GK"))), QString());
    EXPECT_EQ(peptidoformRows::problemOf(Peptidoform(QString(52, u'G'))), QString());
    EXPECT_EQ(rowsOf(Peptidoform(QString(52, u'G'), {{53, AMIDATED}})).back(), 0.0F);
    EXPECT_EQ(peptidoformRows::problemOf(Peptidoform()), QStringLiteral("has 0 residues, not 2 to 52"));
    EXPECT_EQ(peptidoformRows::problemOf(Peptidoform(QStringLiteral("K"))),
              QStringLiteral("has 1 residues, not 2 to 52"));
    EXPECT_EQ(peptidoformRows::problemOf(Peptidoform(QString(53, u'G'))),
              QStringLiteral("has 53 residues, not 2 to 52"));
}

TEST(PeptidoformRows, NameWhatCannotBeRead)
{
    for (const QChar residue : {QChar(u'X'), QChar(u'U'), QChar(u'k'), QChar(u'\0'), QChar(u'\u00c4')})
        EXPECT_EQ(peptidoformRows::problemOf(Peptidoform(QStringLiteral("PEP") + residue)),
                  QStringLiteral("has the residue %1, which is not one of the 20 standard ones").arg(residue));
    EXPECT_EQ(peptidoformRows::problemOf(Peptidoform(QStringLiteral("GK"), {{4, ACETYL}})),
              QStringLiteral("has a modification at position 4, not 0 to 3"));
    EXPECT_EQ(peptidoformRows::problemOf(Peptidoform(QStringLiteral("GK"), {{-1, ACETYL}})),
              QStringLiteral("has a modification at position -1, not 0 to 3"));
    EXPECT_EQ(peptidoformRows::unreadableRemark(Peptidoform(QStringLiteral("PEPX"))),
              QStringLiteral("PEPX has the residue X, which is not one of the 20 standard ones: not predicted"));
    EXPECT_EQ(peptidoformRows::unreadableRemark(Peptidoform()),
              QStringLiteral("An empty peptidoform has 0 residues, not 2 to 52: not predicted"));
}

} // namespace
} // namespace zav
