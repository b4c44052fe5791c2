// SPDX-License-Identifier: Apache-2.0
#include "FastaReader.h"

#include "DigestionFixtures.h"
#include "TemporaryFiles.h"

namespace zav {
namespace {

class FastaReaderTest : public ::testing::Test
{
protected:
    /// `accession|name|gene:sequence` of every protein, a blank between, and the error if there is one.
    std::string read(const QString &path) const
    {
        FastaReader fasta(path);
        if (const Error error = fasta.open(); error.hasError())
            return m_files.withoutFolder(error.message());
        std::string shown;
        while (fasta.next()) {
            const Protein &protein = fasta.protein();
            shown += (shown.empty() ? "" : " ") + protein.accession.toStdString() + '|' + protein.name.toStdString() +
                     '|' + protein.gene.toStdString() + ':' + fasta.sequence().toByteArray().toStdString();
        }
        EXPECT_FALSE(fasta.next());
        return fasta.error().hasError() ? shown + " ! " + m_files.withoutFolder(fasta.error().message()) : shown;
    }

    std::string readText(const QByteArray &text) const { return read(m_files.write(QStringLiteral("p.fasta"), text)); }

    TemporaryFiles m_files;
};

TEST_F(FastaReaderTest, ReadsProteinsOverSeveralLines)
{
    EXPECT_EQ(readText(">P1 first\nMAAK\nCCR\n>P2\nDDD\n"), "P1||:MAAKCCR P2||:DDD");
}

TEST_F(FastaReaderTest, LastLineNeedsNoEnd)
{
    EXPECT_EQ(readText(">P1\nMAAK"), "P1||:MAAK");
    EXPECT_EQ(readText(">P1"), "P1||:");
}

TEST_F(FastaReaderTest, WindowsLinesByteOrderMarkAndBlanksAreNoResidues)
{
    EXPECT_EQ(readText("\xEF\xBB\xBF>P1 first\r\nMA AK\r\n\r\nCC\tR \r\n"), "P1||:MAAKCCR");
}

TEST_F(FastaReaderTest, LowerCaseIsTurnedIntoUpperCase)
{
    EXPECT_EQ(readText(">P1\nmaaK\n"), "P1||:MAAK");
}

TEST_F(FastaReaderTest, StopSignsAreDroppedAtTheEndAndKeptWithin)
{
    EXPECT_EQ(readText(">P1\nMA*\nAK**\n"), "P1||:MA*AK");
    EXPECT_EQ(readText(">P1\nMA\n*\n"), "P1||:MA");
}

TEST_F(FastaReaderTest, CommentsAndEmptyLinesArePassedOver)
{
    EXPECT_EQ(readText("; made by hand\n# too\n\n>P1\nMA\n; in between\n\nAK\n"), "P1||:MAAK");
}

TEST_F(FastaReaderTest, ProteinWithoutResiduesIsRead)
{
    EXPECT_EQ(readText(">P1\n>P2\nMAAK\n>P3\n*\n"), "P1||: P2||:MAAK P3||:");
}

TEST_F(FastaReaderTest, EmptyFileHoldsNothing)
{
    EXPECT_EQ(readText(""), "");
    EXPECT_EQ(readText("\n\n"), "");
}

TEST_F(FastaReaderTest, FaultsNameFileAndLine)
{
    EXPECT_EQ(readText("\nMAAK\n>P1\n"),
              " ! p.fasta, line 2: expected a FASTA header that begins with '>', found 'MAAK'");
    EXPECT_EQ(readText(">P1\nMAAK\nCC3R\n"), " ! p.fasta, line 3: '3' is not a residue");
    EXPECT_EQ(readText(">P1\nAK\n> \nMAAK\n"), "P1||:AK ! p.fasta, line 3: the FASTA header names no protein");
    EXPECT_EQ(readText(">P1\n" + QByteArray((1 << 24) + (1 << 16), 'A') + "\n"),
              " ! p.fasta, line 2: the line is longer than 16777216 bytes");
}

TEST_F(FastaReaderTest, SequenceOfAGenomesLengthIsRefused)
{
    const QByteArray line = QByteArray(1 << 20, 'A') + "\n";
    EXPECT_EQ(readText(">P1\n" + line.repeated(17)), " ! p.fasta, line 18: the sequence is too long for a protein");
}

TEST_F(FastaReaderTest, LongLinesAreReadWhole)
{
    const QByteArray sequence(100000, 'A');
    EXPECT_EQ(readText(">P1\n" + sequence), "P1||:" + sequence.toStdString());
}

TEST_F(FastaReaderTest, MissingFilesAndFoldersAreNamed)
{
    EXPECT_EQ(read(m_files.path(QStringLiteral("none.fasta"))), "cannot read none.fasta: No such file or directory");
    EXPECT_EQ(FastaReader(QStringLiteral("/")).open().message(), QStringLiteral("cannot read /: it is a folder"));
}

TEST_F(FastaReaderTest, CompressedFilesOfSeveralMembersAreReadWhateverTheirName)
{
    const QString fixture = digestionFile("two_members.fasta.gz");
    EXPECT_EQ(read(fixture), "P1|ONE_TEST|G1:MAAK P2||:CCCKDDDR");
    ASSERT_TRUE(QFile::copy(fixture, m_files.path(QStringLiteral("renamed.fasta"))));
    EXPECT_EQ(read(m_files.path(QStringLiteral("renamed.fasta"))), "P1|ONE_TEST|G1:MAAK P2||:CCCKDDDR");
}

TEST_F(FastaReaderTest, TruncatedAndDamagedCompressedFilesAreRefused)
{
    QFile fixture(digestionFile("two_members.fasta.gz"));
    ASSERT_TRUE(fixture.open(QIODevice::ReadOnly));
    const QByteArray whole = fixture.readAll();
    EXPECT_EQ(readText(whole.left(40)), " ! cannot read p.fasta: it ends within its gzipped data");
    QByteArray damaged = whole;
    damaged[30] = static_cast<char>(damaged[30] ^ 0x55);
    EXPECT_NE(readText(damaged).find("cannot read p.fasta: it is damaged gzip: "), std::string::npos);
    EXPECT_NE(readText(whole + "rubbish").find("cannot read p.fasta: it is damaged gzip: "), std::string::npos);
}

std::string header(const QByteArray &text)
{
    const Protein protein = readFastaHeader(text);
    return (protein.accession + '/' + protein.name + '/' + protein.gene).toStdString();
}

TEST(FastaHeader, UniProtHeadersGiveAccessionNameAndGene)
{
    EXPECT_EQ(header("sp|P02768|ALBU_HUMAN Albumin OS=Homo sapiens OX=9606 GN=ALB PE=1 SV=2"), "P02768/ALBU_HUMAN/ALB");
    EXPECT_EQ(header("tr|A0A024|A0A024_HUMAN Uncharacterized protein OS=Homo sapiens OX=9606 PE=4 SV=1"),
              "A0A024/A0A024_HUMAN/");
    EXPECT_EQ(header("sp|P12345-2|TEST_HUMAN Isoform 2 of Test OS=Homo sapiens OX=9606 GN=TEST"),
              "P12345-2/TEST_HUMAN/TEST");
}

TEST(FastaHeader, GeneEndsAtTheNextField)
{
    EXPECT_EQ(header("sp|P1|N x GN=ORF 1 b PE=1"), "P1/N/ORF 1 b");
    EXPECT_EQ(header("sp|P1|N x GN= PE=1"), "P1/N/");
    EXPECT_EQ(header("P1 GN=A"), "P1//A");
    EXPECT_EQ(header("GN=A"), "GN=A//");
}

TEST(FastaHeader, OfOtherHeadersTheFirstWordIsTheAccession)
{
    EXPECT_EQ(header("ENSP00000295897.4 pep chromosome:GRCh38"), "ENSP00000295897.4//");
    EXPECT_EQ(header("gi|4502027|ref|NP_000468.1| albumin"), "gi|4502027|ref|NP_000468.1|//");
    EXPECT_EQ(header("sp||NAME"), "sp||NAME//");
    EXPECT_EQ(header("  P1\tsecond"), "P1//");
    EXPECT_EQ(header("WP_1 first\x01WP_2 second"), "WP_1//");
    EXPECT_EQ(header("WP_1\x01WP_2 second"), "WP_1//");
    EXPECT_EQ(header(""), "//");
}

TEST(FastaHeader, HeadersInLatin1AreReadAsSuch)
{
    EXPECT_EQ(header("P1 GN=Kr\xFCppel"), "P1//Kr\xC3\xBCppel");
    EXPECT_EQ(header("P1 GN=Kr\xC3\xBCppel"), "P1//Kr\xC3\xBCppel");
}

} // namespace
} // namespace zav
