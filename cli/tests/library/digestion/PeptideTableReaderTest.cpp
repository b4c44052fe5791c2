// SPDX-License-Identifier: Apache-2.0
#include "PeptideTableReader.h"

#include "DigestionFixtures.h"
#include "TemporaryFiles.h"

namespace zav {
namespace {

class PeptideTableReaderTest : public ::testing::Test
{
protected:
    /// `peptide(accession/name/gene,...)` of every row, a blank between, and the error if there is one.
    std::string read(const QByteArray &text) const
    {
        PeptideTableReader table(m_files.write(QStringLiteral("p.tsv"), text));
        EXPECT_FALSE(table.open().hasError());
        QStringList rows;
        while (table.next()) {
            QStringList proteins;
            for (const Protein &protein : table.proteins())
                proteins.append(protein.accession + '/' + protein.name + '/' + protein.gene);
            rows.append(QString::fromLatin1(table.peptide()) + '(' + proteins.join(',') + ')');
        }
        EXPECT_FALSE(table.next());
        const std::string shown = rows.join(' ').toStdString();
        return table.error().hasError() ? shown + " ! " + m_files.withoutFolder(table.error().message()) : shown;
    }

    TemporaryFiles m_files;
};

TEST_F(PeptideTableReaderTest, ReadsOnePeptideALine)
{
    EXPECT_EQ(read("PEPTIDEK\nsampler\n"), "PEPTIDEK() SAMPLER()");
    EXPECT_EQ(read("PEPTIDEK\r\n\r\n# comment\r\n SAMPLER"), "PEPTIDEK() SAMPLER()");
}

TEST_F(PeptideTableReaderTest, BracketsKeepTheirCase)
{
    EXPECT_EQ(read("m[Oxidation]pk\nPEPTIDEK[Label:13C(6)]\n<[Gln->pyro-Glu]@n-term:Q>qak-[Amidated]\n"),
              "M[Oxidation]PK() PEPTIDEK[Label:13C(6)]() <[Gln->pyro-Glu]@n-term:Q>QAK-[Amidated]()");
    EXPECT_EQ(read("a<b>ck\n"), "A<B>CK()");
}

TEST_F(PeptideTableReaderTest, IgnoresTheRestOfALineWithoutAHeader)
{
    EXPECT_EQ(read("PEPTIDEK\t2\nSAMPLER 3\n"), "PEPTIDEK() SAMPLER()");
}

TEST_F(PeptideTableReaderTest, HeaderSaysWhereTheColumnsStand)
{
    EXPECT_EQ(read("Gene\tcharge\tPeptide\tProtein\nG1\t2\tPEPTIDEK\tP1\n"), "PEPTIDEK(P1//G1)");
    EXPECT_EQ(read("sequence\tprotein\nPEPTIDEK\tsp|P1|ONE_TEST\n"), "PEPTIDEK(P1/ONE_TEST/)");
    EXPECT_EQ(read("\xEF\xBB\xBFpeptide\nPEPTIDEK\n"), "PEPTIDEK()");
    EXPECT_EQ(read("sequence\tpeptide\nAK\tCK\n"), "CK()");
}

TEST_F(PeptideTableReaderTest, PeptideOfTheHeadersNameIsAPeptide)
{
    EXPECT_EQ(read("PEPTIDE\nSAMPLER\n"), "PEPTIDE() SAMPLER()");
    EXPECT_EQ(read("PEPTIDE\t2\nSAMPLER\t2\n"), "PEPTIDE() SAMPLER()");
    EXPECT_EQ(read("PEPTIDE\tCHARGE\nSAMPLER\t2\n"), "SAMPLER()");
    EXPECT_EQ(read("peptide\nPEPTIDE\n"), "PEPTIDE()");
}

TEST_F(PeptideTableReaderTest, SeveralProteinsShareOneGeneOrHaveTheirOwn)
{
    const QByteArray header = "peptide\tprotein\tgene\n";
    EXPECT_EQ(read(header + "AK\tP1; P2\tG1;G2\n"), "AK(P1//G1,P2//G2)");
    EXPECT_EQ(read(header + "AK\tP1;P2\tG1\n"), "AK(P1//G1,P2//G1)");
    EXPECT_EQ(read(header + "AK\tP1;P2\t\n"), "AK(P1//,P2//)");
    EXPECT_EQ(read(header + "AK\tP1;P2;\tG1;;\n"), "AK(P1//G1,P2//)");
    EXPECT_EQ(read(header + "AK\t\tG1\n"), "AK()");
    EXPECT_EQ(read(header + "AK\n"), "AK()");
}

TEST_F(PeptideTableReaderTest, FaultsNameFileAndLine)
{
    EXPECT_EQ(read("peptide\tprotein\tgene\nAK\tP1;P2;P3\tG1;G2\n"),
              " ! p.tsv, line 2: 3 proteins and 2 genes cannot be matched");
    EXPECT_EQ(read("# list\npep\tprotein\nAK\tP1\n"), " ! p.tsv, line 2: the header names no column 'peptide'");
}

TEST_F(PeptideTableReaderTest, EmptyFileHoldsNothing)
{
    EXPECT_EQ(read(""), "");
    EXPECT_EQ(read("peptide\tprotein\n"), "");
}

} // namespace
} // namespace zav
