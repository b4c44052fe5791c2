// SPDX-License-Identifier: Apache-2.0
#include "PeptideList.h"

#include "MzMlText.h"
#include "TemporaryFiles.h"

#include <cmath>

namespace zav {
namespace {

QList<PeptideListRow> read(const QByteArray &text)
{
    const TemporaryFiles files;
    const Result<QList<PeptideListRow>> rows = readPeptideList(files.write("list.tsv", text));
    EXPECT_FALSE(rows.hasError());
    return rows.hasError() ? QList<PeptideListRow>() : rows.value();
}

/// `line:peptide/charge[!problem]` of every row, a blank between.
std::string summary(const QByteArray &text)
{
    QStringList rows;
    for (const PeptideListRow &row : read(text)) {
        QString shown = QStringLiteral("%1:%2/%3").arg(row.line).arg(row.precursor.peptide).arg(row.precursor.charge);
        rows.append(row.problem.isEmpty() ? shown : shown + QLatin1Char('!') + row.problem);
    }
    return rows.join(QLatin1Char(' ')).toStdString();
}

TEST(PeptideList, RowsWithoutAHeaderHavePeptideAndChargeFirst)
{
    EXPECT_EQ(summary("PEPTIDE\t2\nSAMPLER\t3\n"), "1:PEPTIDE/2 2:SAMPLER/3");
}

TEST(PeptideList, LastLineNeedsNoEnd)
{
    EXPECT_EQ(summary("PEPTIDE\t2"), "1:PEPTIDE/2");
}

TEST(PeptideList, HeaderIsSkippedAndSaysWhereTheColumnsStand)
{
    EXPECT_EQ(summary("peptide\tcharge\nPEPTIDE\t2\n"), "2:PEPTIDE/2");
    EXPECT_EQ(summary("protein\tCharge\tSequence\nP1 of\t2\tPEPTIDE\n"), "2:PEPTIDE/2");
    EXPECT_EQ(summary("charge  peptide\n2 PEPTIDE\n3\tSAMPLER\n"), "2:PEPTIDE/2 3:SAMPLER/3");
    EXPECT_EQ(summary("charge\tpeptide\tsequence\n2\tAK\tCK\n"), "2:AK/2");
    EXPECT_EQ(summary("charge\tsequence\tpeptide\n2\tAK\tCK\n"), "2:AK/2");
}

TEST(PeptideList, HeaderMayNameTheScan)
{
    const QList<PeptideListRow> rows =
        read("Scan\tpeptide\tcharge\n30069\tPEPTIDE\t2\ncontroller=1 scan=7\tSAMPLER\t3\n\tSAMPLER\t2\n");
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(rows[0].scan, QStringLiteral("30069"));
    EXPECT_EQ(rows[1].scan, QStringLiteral("controller=1 scan=7"));
    EXPECT_EQ(rows[2].scan, QString());
    EXPECT_EQ(read("PEPTIDE\t2\t30069\n").first().scan, QString()) << "only a header says where it stands";
}

TEST(PeptideList, HeaderNamesBothColumnsAndComesFirst)
{
    EXPECT_EQ(summary("peptide\nPEPTIDE\t2\n"), "1:peptide/0!the charge is missing 2:PEPTIDE/2");
    EXPECT_EQ(summary("PEPTIDE\t2\npeptide\tcharge\n"),
              "1:PEPTIDE/2 2:peptide/0!charge 'charge' is not a whole number");
}

TEST(PeptideList, WindowsLinesReadAsUnixLines)
{
    EXPECT_EQ(summary("peptide\tcharge\r\nPEPTIDE\t2\r\n\r\nSAMPLER\t3\r\n"), "2:PEPTIDE/2 4:SAMPLER/3");
}

TEST(PeptideList, ByteOrderMarkIsNotPartOfTheHeader)
{
    EXPECT_EQ(summary("\xEF\xBB\xBFpeptide\tcharge\nPEPTIDE\t2\n"), "2:PEPTIDE/2");
}

TEST(PeptideList, CommentsEmptyLinesAndMoreColumnsAreIgnored)
{
    EXPECT_EQ(summary("# ours\n\nPEPTIDE\t2\tprotein 1\n"), "3:PEPTIDE/2");
}

TEST(PeptideList, BlanksSeparateWhereThereIsNoTab)
{
    EXPECT_EQ(summary("  PEPTIDE   2 \n"), "1:PEPTIDE/2");
}

TEST(PeptideList, RowsThatCannotBeUnderstoodStayWithTheirProblem)
{
    EXPECT_EQ(summary("PEPTIDE\nSAMPLER\ttwo\nLASTONE\t2\n"),
              "1:PEPTIDE/0!the charge is missing 2:SAMPLER/0!charge 'two' is not a whole number 3:LASTONE/2");
}

TEST(PeptideList, EmptyFileHasNoRows)
{
    EXPECT_EQ(summary(""), "");
    EXPECT_EQ(summary("peptide\tcharge\n"), "");
}

TEST(PeptideList, GzippedListIsRead)
{
    EXPECT_EQ(summary(gzip("peptide\tcharge\nPEPTIDE\t2\n")), "2:PEPTIDE/2");
}

TEST(PeptideList, MissingFileIsNamedInTheError)
{
    const auto rows = readPeptideList(QStringLiteral("nowhere/peptides.tsv"));
    EXPECT_EQ(rows.error().message().toStdString(), "cannot read nowhere/peptides.tsv: No such file or directory");
}

TEST(PeptideList, EnergiesStandInAColumnOfAHeader)
{
    const auto rows = read("peptide\tenergy\tcharge\nPEPTIDE\t27.5\t2\nSAMPLER\t\t3\nLASTONE\thigh\t2\n");
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(rows[0].precursor.collisionEnergy, 27.5);
    EXPECT_EQ(rows[0].precursor.charge, 2);
    EXPECT_TRUE(std::isnan(rows[1].precursor.collisionEnergy));
    EXPECT_EQ(rows[1].problem, QString());
    EXPECT_EQ(rows[2].problem.toStdString(), "energy 'high' is not a number");
    EXPECT_TRUE(std::isnan(read("PEPTIDE\t2\t27\n").first().precursor.collisionEnergy)) << "a column without a name";
}

TEST(PeptideList, ProFormaIsOneCell)
{
    EXPECT_EQ(summary("[Acetyl]-AC[Carbamidomethyl]M[Oxidation]K 2\n"),
              "1:[Acetyl]-AC[Carbamidomethyl]M[Oxidation]K/2");
}

} // namespace
} // namespace zav
