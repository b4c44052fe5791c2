// SPDX-License-Identifier: Apache-2.0
#include "LibraryWriter.h"

#include "FileDigest.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

const LibraryInfo INFO{QStringLiteral("test"), QStringLiteral("1.0")};

Error goOn()
{
    return {};
}

LibraryEntry entryOf(const char *peptide)
{
    LibraryEntry entry;
    entry.peptidoform = Peptidoform(QString::fromUtf8(peptide));
    entry.charge = 2;
    entry.precursorMz = 400.5;
    entry.peaks = {{147.11280, 1.0, QLatin1Char('y'), 1, 1, {}, 0}};
    return entry;
}

/// What a text library with these peptides holds.
QByteArray document(const LibraryFormat &format, const QList<const char *> &peptides)
{
    TextBuffer text;
    text.add(format.opening(INFO));
    for (qsizetype i = 0; i < peptides.size(); ++i)
        format.addEntry(entryOf(peptides[i]), i, &text);
    return text.take() + format.closing();
}

class LibraryWriterTest : public ::testing::TestWithParam<LibraryFileKind>
{
protected:
    LibraryFileFacts write(const QString &name, const QList<const char *> &peptides) const
    {
        const auto writer = makeLibraryWriter(GetParam(), m_files.path(name), INFO);
        EXPECT_EQ(writer->open().message(), QString());
        TextArena arena;
        for (const char *peptide : peptides)
            EXPECT_EQ(writer->add(writer->encode(entryOf(peptide), &arena)).message(), QString());
        const Result<LibraryFileFacts> facts = writer->finish();
        EXPECT_FALSE(facts.hasError());
        return facts.value();
    }

    const LibraryFormat &format() const { return *textLibraryFormat(GetParam()); }

    TemporaryFiles m_files;
};

TEST_P(LibraryWriterTest, WritesEntriesNumberedInTheirOrder)
{
    const LibraryFileFacts facts = write("a", {"AAAAK", "CCCCK", "DDDDK"});
    EXPECT_EQ(m_files.read("a").toStdString(), document(format(), {"AAAAK", "CCCCK", "DDDDK"}).toStdString());
    EXPECT_EQ(facts.precursors, 3);
    EXPECT_EQ(facts.openingSize, format().opening(INFO).size());
    Sha256 hash;
    hash.add(m_files.read("a"));
    EXPECT_EQ(facts.sha256, hash.result());
}

TEST_P(LibraryWriterTest, AppendedFilesGiveWhatOneRunWrites)
{
    const LibraryFileFacts first = write("first", {"AAAAK"});
    const LibraryFileFacts none = write("none", {});
    const LibraryFileFacts last = write("last", {"CCCCK", "DDDDK"});
    const auto writer = makeLibraryWriter(GetParam(), m_files.path("merged"), INFO);
    ASSERT_FALSE(writer->open().hasError());
    ASSERT_FALSE(writer->append(m_files.path("first"), first, goOn).hasError());
    ASSERT_FALSE(writer->append(m_files.path("none"), none, goOn).hasError());
    ASSERT_FALSE(writer->append(m_files.path("last"), last, goOn).hasError());
    const Result<LibraryFileFacts> merged = writer->finish();
    ASSERT_FALSE(merged.hasError());
    EXPECT_EQ(merged.value().precursors, 3);
    EXPECT_EQ(m_files.read("merged").toStdString(), document(format(), {"AAAAK", "CCCCK", "DDDDK"}).toStdString());
}

TEST_P(LibraryWriterTest, FileThatIsShorterThanItsManifestSaysIsNotAppended)
{
    const LibraryFileFacts facts = write("a", {"AAAAK"});
    const qint64 size = m_files.read("a").size();
    for (const LibraryFileFacts &wrong : {LibraryFileFacts{1, size + 1, 0, {}}, LibraryFileFacts{1, 0, size + 1, {}},
                                          LibraryFileFacts{1, size, 1, {}}}) {
        const auto writer = makeLibraryWriter(GetParam(), m_files.path("merged"), INFO);
        ASSERT_FALSE(writer->open().hasError());
        EXPECT_EQ(m_files.withoutFolder(writer->append(m_files.path("a"), wrong, goOn).message()),
                  "cannot read a: it is shorter than its manifest says");
    }
    const auto writer = makeLibraryWriter(GetParam(), m_files.path("merged"), INFO);
    ASSERT_FALSE(writer->open().hasError());
    EXPECT_FALSE(writer->append(m_files.path("a"), facts, goOn).hasError());
}

TEST_P(LibraryWriterTest, AppendingEndsWithTheErrorOfItsCheck)
{
    const LibraryFileFacts facts = write("a", {"AAAAK", "CCCCK"});
    const auto writer = makeLibraryWriter(GetParam(), m_files.path("merged"), INFO);
    ASSERT_FALSE(writer->open().hasError());
    const auto stop = [] { return Error(Failure, QStringLiteral("stopped")); };
    EXPECT_EQ(writer->append(m_files.path("a"), facts, stop).message(), QStringLiteral("stopped"));
}

TEST_P(LibraryWriterTest, EntryWithoutPeaksIsEmpty)
{
    LibraryEntry entry = entryOf("AAAAK");
    entry.peaks.clear();
    TextArena arena;
    EXPECT_TRUE(makeLibraryWriter(GetParam(), m_files.path("a"), INFO)->encode(entry, &arena).isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Formats, LibraryWriterTest,
                         ::testing::Values(LibraryFileKind::Msp, LibraryFileKind::Tsv, LibraryFileKind::Mgf,
                                           LibraryFileKind::MzSpecLib),
                         [](const auto &tested) {
                             return libraryFileKindNames()[qsizetype(tested.param)].toStdString();
                         });

// A shard that zav did not write: a line of megabytes is not held as a whole, and no piece of it is taken for a
// heading.
TEST(MzSpecLibWriter, LongLineIsAppendedInPieces)
{
    const TemporaryFiles files;
    const QByteArray line = QByteArray(1 << 20, 'x') + "<Spectrum=7>" + QByteArray(3 << 20, 'y') + '\n';
    files.write("shard", "<Spectrum=5>\n" + line + "<Spectrum=6>\n");
    const auto writer = makeLibraryWriter(LibraryFileKind::MzSpecLib, files.path("merged"), INFO);
    ASSERT_FALSE(writer->open().hasError());
    ASSERT_FALSE(writer->append(files.path("shard"), {2, 0, 0, {}}, goOn).hasError());
    const Result<LibraryFileFacts> facts = writer->finish();
    ASSERT_FALSE(facts.hasError());
    const QByteArray merged = files.read("merged").sliced(facts.value().openingSize).chopped(facts.value().closingSize);
    EXPECT_TRUE(merged == "<Spectrum=1>\n" + line + "<Spectrum=2>\n");
}

} // namespace
} // namespace zav
