// SPDX-License-Identifier: Apache-2.0
#include "PeptideDigestFixture.h"

namespace zav {
namespace {

using DigestionFuzzTest = PeptideDigestTest;

TEST_F(DigestionFuzzTest, RandomBytesAreNeverMoreThanAFailure)
{
    std::mt19937 random(8);
    constexpr char LETTERS[] = ">>>>\n\n\n\rACDEFKRXacdk|*- ;#\t\x1F\x8B\x00\x01\xFF=GNsp;";
    const std::string_view letters(LETTERS, sizeof LETTERS - 1); // with the zero in their midst
    for (int i = 0; i < 1000; ++i) {
        QByteArray bytes = randomSequence(random, static_cast<int>(random() % 300), letters);
        if (i % 3 == 0)
            bytes.prepend(i % 2 == 0 ? QByteArray("\x1F\x8B\x08\x00\x00\x00\x00\x00\x00\x03", 10) : QByteArray(">P\n"));
        if (i % 7 == 0)
            bytes.prepend("peptide\tprotein\tgene\n");
        const QString path = m_files.write(QStringLiteral("fuzz"), bytes);
        for (const bool isTable : {false, true}) {
            auto result = isTable ? readPeptideTable(path, tryptic(DecoyKind::Shuffled))
                                  : digestFasta(path, tryptic(DecoyKind::Shuffled));
            if (result.hasError()) {
                EXPECT_FALSE(result.error().message().isEmpty());
                continue;
            }
            const DigestedPeptides digested = std::move(result).value();
            for (const LibraryPeptide &peptide : readAll(*digested.peptides))
                EXPECT_EQ(peptide.sequence.toByteArray().toStdString().find_first_not_of("ACDEFGHIKLMNPQRSTVWY"),
                          std::string::npos);
        }
    }
}

TEST_F(DigestionFuzzTest, DamagedCompressedFilesAreNeverMoreThanAFailure)
{
    QFile fixture(digestionFile("two_members.fasta.gz"));
    ASSERT_TRUE(fixture.open(QIODevice::ReadOnly));
    const QByteArray whole = fixture.readAll().left(100);
    std::mt19937 random(9);
    for (int i = 0; i < 1000; ++i) {
        QByteArray bytes = whole;
        for (int change = 0; change < 1 + i % 3; ++change)
            bytes[static_cast<qsizetype>(random() % bytes.size())] = static_cast<char>(random());
        const auto result = digestFasta(m_files.write(QStringLiteral("fuzz.gz"), bytes), tryptic());
        EXPECT_TRUE(!result.hasError() || !result.error().message().isEmpty());
    }
}

} // namespace
} // namespace zav
