// SPDX-License-Identifier: Apache-2.0
#include "PeptideDigestFixture.h"

namespace zav {
namespace {

DigestionHooks collecting(QStringList *skipped)
{
    DigestionHooks hooks;
    hooks.skipped = [skipped](const SkippedPeptide &peptide) {
        skipped->append(peptide.protein + ' ' + peptide.peptide + ": " + peptide.reason);
        return Error();
    };
    return hooks;
}

TEST_F(PeptideDigestTest, PeptideOfSeveralProteinsComesOnceWithAllOfThem)
{
    const auto digested = digest(">P1\nDDDKAAAK\n>P2\nAAAKCCC\n>P3\nAAAKAAAK\n", tryptic());
    EXPECT_EQ(shown(digested), "AAAK:P1,P2,P3 CCC:P2 DDDK:P1");
    EXPECT_EQ(digested.counts.proteins, 3);
    EXPECT_EQ(digested.counts.targets, 3);
    EXPECT_EQ(digested.counts.decoys, 0);
}

TEST_F(PeptideDigestTest, OrderIsThatOfTheBytesWithShorterPeptidesFirst)
{
    PeptideRequest request = tryptic();
    request.digestion.missedCleavages = 2;
    EXPECT_EQ(shown(digest(">P1\nYYYK\n>P2\nAAKAAKAAK\n", request)), "AAK:P2 AAKAAK:P2 AAKAAKAAK:P2 YYYK:P1");
}

TEST_F(PeptideDigestTest, PeptidesWithOtherResiduesAreSkippedCountedAndListed)
{
    QStringList skipped;
    const auto digested = digest(">P1\nAAXKCCCKUDDK\n>P2\nA*AKEEEKXK\n", tryptic(), collecting(&skipped));
    EXPECT_EQ(shown(digested), "CCCK:P1 EEEK:P2");
    EXPECT_EQ(skipped, QStringList({"P1 AAXK: residue X at position 3", "P1 UDDK: residue U at position 1",
                                    "P2 A*AK: residue * at position 2"}));
    EXPECT_EQ(digested.counts.skipped, 3);
}

TEST_F(PeptideDigestTest, RepeatedAccessionsAreOneProtein)
{
    const auto digested = digest(">P1\nAAAK\n>P1\nAAAKCCCK\n>P2\n\n", tryptic());
    EXPECT_EQ(shown(digested), "AAAK:P1 CCCK:P1");
    EXPECT_EQ(digested.counts.proteins, 3);
    EXPECT_EQ(digested.counts.repeatedAccessions, 1);
    EXPECT_EQ(digested.counts.emptyProteins, 1);
}

TEST_F(PeptideDigestTest, ProteinsKeepNameAndGene)
{
    const auto digested = digest(">sp|P1|ONE_TEST First OS=x GN=G1 PE=1\nAAAK\n", tryptic());
    EXPECT_EQ(digested.peptides->proteins().protein(0),
              (Protein{QStringLiteral("P1"), QStringLiteral("ONE_TEST"), QStringLiteral("G1")}));
}

TEST_F(PeptideDigestTest, ProteinsWithoutPeptidesAreNoFailure)
{
    const auto digested = digest(">P1\nAK\n", tryptic(DecoyKind::Shuffled));
    EXPECT_EQ(digested.peptides->count(), 0);
    EXPECT_EQ(digested.counts.targets, 0);
    PeptideRequest onDisk = tryptic(DecoyKind::Reversed);
    onDisk.space.onDisk = true;
    EXPECT_EQ(digest(">P1\nAK\n", onDisk).peptides->count(), 0);
}

TEST_F(PeptideDigestTest, FailuresNameTheFileOrTheField)
{
    const auto failure = [this](const QByteArray &fasta, const PeptideRequest &request) {
        const auto result = digestFasta(m_files.write(QStringLiteral("p.fasta"), fasta), request);
        return m_files.withoutFolder(result.error().message());
    };
    EXPECT_EQ(failure("", tryptic()), "cannot read p.fasta: it holds no protein (no line that begins with '>')");
    EXPECT_EQ(failure(">P1\nAA1K\n", tryptic()), "p.fasta, line 2: '1' is not a residue");
    PeptideRequest request = tryptic();
    request.digestion.missedCleavages = -1;
    EXPECT_EQ(failure(">P1\nAAAK\n", request), "missedCleavages is -1, must be 0 or more");
    request = tryptic();
    request.digestion.cleavagePattern = QStringLiteral("(?<=K)|CDEF");
    EXPECT_EQ(failure(">P1\nAAAKCDEFK\n", request).substr(0, 36), "cleavagePattern is '(?<=K)|CDEF', mu");
    request = tryptic();
    request.space.onDisk = true;
    request.space.temporaryFolder = QStringLiteral("/nowhere");
    EXPECT_EQ(failure(">P1\nAAAK\n", request), "cannot make a temporary file in /nowhere: No such file or directory");
}

TEST_F(PeptideDigestTest, HooksHearOfProgressAndStopTheDigestion)
{
    const QString path = m_files.write(QStringLiteral("p.fasta"), randomFasta(7, 300, "ACDEFGHIKLMNPQRSTVWYX"));
    DigestionHooks hooks;
    double last = 0;
    hooks.progress = [&](double fraction) {
        EXPECT_GE(fraction, last);
        last = fraction;
    };
    EXPECT_FALSE(digestFasta(path, tryptic(), hooks).hasError());
    EXPECT_EQ(last, 1.0);

    int asked = 0;
    for (const int turn : {1, 1000, 4000, 8000}) { // while digesting, sorting and making decoys
        asked = 0;
        hooks = {};
        hooks.isInterrupted = [&] { return ++asked == turn; };
        EXPECT_EQ(digestFasta(path, tryptic(DecoyKind::Reversed), hooks).error().message(),
                  QStringLiteral("interrupted"));
    }
    hooks = {};
    hooks.skipped = [](const SkippedPeptide &) { return Error(Failure, QStringLiteral("full")); };
    EXPECT_EQ(digestFasta(path, tryptic(), hooks).error().message(), QStringLiteral("full"));
}

TEST_F(PeptideDigestTest, ListIsNotCutAndKeepsItsProteins)
{
    const auto digested =
        readTable("peptide\tprotein\nAKCK\tP1\nDDD\tP2;P1\nAKCK\tP2\nEEE\t\n", tryptic(DecoyKind::Reversed));
    EXPECT_EQ(shown(digested), "AKCK:P1,P2 [CKAK]:DECOY_P1,DECOY_P2 DDD:P1,P2 EEE:");
    EXPECT_EQ(digested.counts.proteins, 2);
    EXPECT_EQ(digested.counts.decoysEqualToTarget, 2);
}

TEST_F(PeptideDigestTest, PeptidesOfAListOutsideTheLengthsOrWithOtherResiduesAreSkippedAndListed)
{
    QStringList skipped;
    PeptideRequest request = tryptic();
    request.digestion.maximumLength = 5;
    const auto digested =
        readTable("peptide\tprotein\nAAA\t\nAA\tP1\nAAAAAA\t\nAXA\tP1\nC[+57]A\t\n\t\n", request, collecting(&skipped));
    EXPECT_EQ(shown(digested), "AAA:");
    EXPECT_EQ(skipped, QStringList({"P1 AA: 2 residues, not 3 to 5", " AAAAAA: 6 residues, not 3 to 5",
                                    "P1 AXA: residue X at position 2", " C[+57]A: 2 residues, not 3 to 5"}));
    EXPECT_EQ(digested.counts.skipped, 4);
}

/// `SEQUENCE` of every peptide: in brackets for a decoy, `>` and `<` at the ends of a protein, and in braces what a
/// list names, with a `+` where the peptide is meant plain too.
std::string withForms(const DigestedPeptides &digested)
{
    QStringList texts;
    for (const LibraryPeptide &peptide : readAll(*digested.peptides)) {
        QByteArray text = peptide.sequence.toByteArray();
        if (peptide.isDecoy)
            text = '[' + text + ']';
        text = (peptide.ends.start ? ">" : "") + text + (peptide.ends.end ? "<" : "");
        if (!peptide.named.isEmpty())
            text += '{' + peptide.named.join(' ') + '}' + (peptide.isPlain ? "+" : "");
        texts.append(QString::fromLatin1(text));
    }
    return texts.join(QLatin1Char(' ')).toStdString();
}

TEST_F(PeptideDigestTest, EndsOfAnyOfItsProteinsAreThoseOfAPeptideAndOfItsDecoy)
{
    for (const bool onDisk : {false, true}) {
        PeptideRequest request = tryptic(DecoyKind::Reversed);
        request.space.onDisk = onDisk;
        EXPECT_EQ(withForms(digest(">P1\nAACKDEFKGHI\n>P2\nLLLKAACK\n>P3\nLLLKDEFKGHI\n", request)),
                  ">AACK< >[CAAK]< DEFK [FEDK] GHI< [HGI]< >LLLK");
    }
}

TEST_F(PeptideDigestTest, ListNamesPeptidoforms)
{
    for (const bool onDisk : {false, true}) {
        PeptideRequest request = tryptic();
        request.space.onDisk = onDisk;
        const auto digested = readTable("peptide\tprotein\n"
                                        "m[Oxidation]AK\tP1\nMAK\tP2\nM[UNIMOD:35]AK\tP3\n"
                                        "[Acetyl]-CDEK\t\n<[Methyl]@D>CDEK\t\n<[Methyl]@W>EEEK\t\n",
                                        request);
        EXPECT_EQ(withForms(digested), "CDEK{CD[Methyl]EK [Acetyl]-CDEK} EEEK MAK{M[Oxidation]AK}+");
        EXPECT_EQ(shown(digested), "CDEK: EEEK: MAK:P1,P2,P3");
        EXPECT_EQ(digested.counts.targets, 3);
    }
}

TEST_F(PeptideDigestTest, ModificationsOfADecoyGoWithTheirResidues)
{
    const QByteArray list = "[Acetyl]-M[Oxidation]CDEK[Methyl]-[Amidated]\n";
    EXPECT_EQ(withForms(readTable(list, tryptic(DecoyKind::Reversed))),
              "[EDCMK]{[Acetyl]-EDCM[Oxidation]K[Methyl]-[Amidated]} "
              "MCDEK{[Acetyl]-M[Oxidation]CDEK[Methyl]-[Amidated]}");

    // Every residue is told apart by its modification.
    const auto shuffled = readTable("A[+1]C[+3]D[+4]E[+5]F[+6]G[+7]H[+8]K[+11]\n", tryptic(DecoyKind::Shuffled));
    const PeptideBlock peptides = readAll(*shuffled.peptides);
    ASSERT_EQ(peptides.size(), 2);
    for (const LibraryPeptide &peptide : peptides) {
        ASSERT_EQ(peptide.named.size(), 1);
        QByteArray expected;
        for (const char residue : peptide.sequence)
            expected += residue + QByteArray("[+") + QByteArray::number(residue - 'A' + 1) + ']';
        EXPECT_EQ(peptide.named[0], expected);
    }
}

TEST_F(PeptideDigestTest, TextsThatAreNoProFormaAreLeftOutCountedAndListed)
{
    QStringList skipped;
    const auto digested = readTable("peptide\tprotein\nM[Foo]AAK\tP1\nAAAK/2\t\nM[Oxidation]AK/2\t\nAX[Methyl]K\t\n",
                                    tryptic(), collecting(&skipped));
    EXPECT_EQ(digested.peptides->count(), 0);
    EXPECT_EQ(skipped,
              QStringList({"P1 M[Foo]AAK: no modification 'Foo' at character 3", " AAAK/2: residue / at position 5",
                           " M[Oxidation]AK/2: unsupported: a charge ('/') at character 15",
                           " AXK: residue X at position 2"}));
    EXPECT_EQ(digested.counts.unreadable, 2);
    EXPECT_EQ(digested.counts.skipped, 2);
}

} // namespace
} // namespace zav
