// SPDX-License-Identifier: Apache-2.0
#include "LibraryManifest.h"
#include "EntryNumbering.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

LibraryManifest example()
{
    LibraryManifest manifest;
    manifest.settings = R"({"version":"0.1.0","decoys":"none","peaks":{"top":0}})";
    manifest.inputSha256 = "ab12";
    manifest.shard = {2, 4};
    manifest.peptideCount = 1001;
    manifest.file = {500, 20, 3, "cd34"};
    return manifest;
}

class Manifest : public testing::Test
{
protected:
    TemporaryFiles m_files;
};

TEST_F(Manifest, IsReadAsItWasWritten)
{
    const QString path = LibraryManifest::pathFor(m_files.path("lib.tsv"));
    EXPECT_EQ(path, m_files.path("lib.tsv.json"));
    ASSERT_FALSE(example().write(path).hasError());
    const Result<LibraryManifest> read = LibraryManifest::read(path);
    ASSERT_FALSE(read.hasError());
    EXPECT_EQ(read.value().settings, example().settings);
    EXPECT_EQ(read.value().inputSha256, example().inputSha256);
    EXPECT_EQ(read.value().shard, example().shard);
    EXPECT_EQ(read.value().peptideCount, 1001);
    EXPECT_EQ(read.value().file, example().file);
}

TEST_F(Manifest, RefusesOtherFilesByName)
{
    const QString path = m_files.write("lib.tsv.json", "{}");
    for (const char *content : {"", "{}", "[1]", "{\"settings\": 3", "no json"}) {
        m_files.write("lib.tsv.json", content);
        const Error error = LibraryManifest::read(path).error();
        EXPECT_EQ(m_files.withoutFolder(error.message()), "lib.tsv.json does not describe a library of zav") << content;
    }
    EXPECT_TRUE(LibraryManifest::read(m_files.path("none.json")).error().message().contains("none.json"));
}

TEST_F(Manifest, RefusesNumbersThatContradictOneAnother)
{
    LibraryManifest manifest = example();
    manifest.shard = {5, 4};
    ASSERT_FALSE(manifest.write(m_files.path("a.json")).hasError());
    EXPECT_TRUE(LibraryManifest::read(m_files.path("a.json")).hasError());
}

TEST_F(Manifest, BelongsToFilesOnly)
{
    EXPECT_TRUE(LibraryManifest::isFor(m_files.path("new.tsv")));
    EXPECT_TRUE(LibraryManifest::isFor(m_files.write("old.tsv", "")));
    EXPECT_FALSE(LibraryManifest::isFor("-"));
    EXPECT_FALSE(LibraryManifest::isFor("/dev/null"));
}

TEST(ManifestOrigin, DifferenceNamesWhatDiffers)
{
    LibraryManifest other = example();
    other.shard = {1, 4};
    other.file.sha256 = "ef";
    EXPECT_EQ(differenceOfOrigin(example(), other), "");
    other.settings = R"({"version":"0.1.0","decoys":"reversed","peaks":{"top":0}})";
    EXPECT_EQ(differenceOfOrigin(example(), other), "decoys");
    other.settings = R"({"version":"0.1.0","decoys":"none","peaks":{"top":5}})";
    EXPECT_EQ(differenceOfOrigin(example(), other), "peaks");
    other.settings = R"({"version":"0.1.0","decoys":"none","peaks":{"top":0},"more":1})";
    EXPECT_EQ(differenceOfOrigin(example(), other), "another version's settings");
    other.inputSha256 = "00";
    EXPECT_EQ(differenceOfOrigin(example(), other), "another input");
}

TEST(EntryNumbering, SetsTheNumberOfAnEntryAndNothingElse)
{
    const QByteArray entry = "<Spectrum=1>\nMS:1003061|library spectrum name=PEPTIDE/2\n<Peaks>\n";
    EXPECT_EQ(entryNumbering::numberedEntry(entry, 1234),
              "<Spectrum=1235>\nMS:1003061|library spectrum name=PEPTIDE/2\n<Peaks>\n");
    EXPECT_EQ(entryNumbering::numberedEntry(entry, 0), entry);
}

TEST(EntryNumbering, LeavesLinesWithoutRunningNumbersAlone)
{
    EXPECT_EQ(entryNumbering::numberedLine("102.05496\t1.0\tb1/0.0ppm\n", 7), "102.05496\t1.0\tb1/0.0ppm\n");
    EXPECT_TRUE(entryNumbering::isFirstLine("<Spectrum=12>\n"));
    EXPECT_FALSE(entryNumbering::isFirstLine("<Analyte=1>\n"));
}

} // namespace
} // namespace zav
