// SPDX-License-Identifier: Apache-2.0
#include "LibraryManifest.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

#include <QtCore/QFileInfo>

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
    const QString library = m_files.path("lib.tsv");
    EXPECT_EQ(LibraryManifest::pathFor(library), m_files.path("lib.tsv.json"));
    ASSERT_FALSE(example().writeFor(library).hasError());
    EXPECT_FALSE(m_files.read("lib.tsv.json").isEmpty());
    const Result<LibraryManifest> read = LibraryManifest::readFor(library);
    ASSERT_FALSE(read.hasError());
    EXPECT_EQ(read.value().settings, example().settings);
    EXPECT_EQ(read.value().inputSha256, example().inputSha256);
    EXPECT_EQ(read.value().shard, example().shard);
    EXPECT_EQ(read.value().peptideCount, 1001);
    EXPECT_EQ(read.value().file, example().file);
}

TEST_F(Manifest, RefusesOtherFilesByName)
{
    for (const char *content : {"", "{}", "[1]", "{\"settings\": 3", "no json"}) {
        m_files.write("lib.tsv.json", content);
        const Error error = LibraryManifest::readFor(m_files.path("lib.tsv")).error();
        EXPECT_EQ(m_files.withoutFolder(error.message()), "lib.tsv.json is not a zav library manifest") << content;
    }
    EXPECT_TRUE(LibraryManifest::readFor(m_files.path("none")).error().message().contains("none.json"));
}

TEST_F(Manifest, RefusesSettingsThatAreNoObject)
{
    for (const char *settings : {"[]", "3", "\"tsv\"", "null"}) {
        LibraryManifest manifest = example();
        manifest.settings = settings;
        ASSERT_FALSE(manifest.writeFor(m_files.path("a")).hasError());
        EXPECT_TRUE(LibraryManifest::readFor(m_files.path("a")).hasError()) << settings;
    }
}

TEST_F(Manifest, SettingsOfOtherTypesCountAsMissing)
{
    LibraryManifest manifest = example();
    manifest.settings = R"({"version":1,"name":[],"format":{}})";
    ASSERT_FALSE(manifest.writeFor(m_files.path("a")).hasError());
    const Result<LibraryManifest> read = LibraryManifest::readFor(m_files.path("a"));
    ASSERT_FALSE(read.hasError());
    EXPECT_EQ(read.value().info().name, QString());
    EXPECT_EQ(read.value().info().version, QString());
    EXPECT_EQ(read.value().kind(), LibraryFileKind::Tsv);
}

TEST_F(Manifest, RefusesJsonThatIsNestedTooDeeply)
{
    const QByteArray whole = [&] {
        EXPECT_FALSE(example().writeFor(m_files.path("a")).hasError());
        return m_files.read("a.json");
    }();
    const QByteArray deep = QByteArray(1000000, '[') + QByteArray(1000000, ']');
    m_files.write("a.json", QByteArray(whole).replace("\"none\"", deep));
    const Error error = LibraryManifest::readFor(m_files.path("a")).error();
    EXPECT_EQ(m_files.withoutFolder(error.message()), "a.json is not a zav library manifest");
    m_files.write("a.json", QByteArray(whole).replace("\"none\"", "[[1]]"));
    EXPECT_FALSE(LibraryManifest::readFor(m_files.path("a")).hasError());
}

TEST_F(Manifest, RefusesNumbersThatAreNotWhole)
{
    ASSERT_FALSE(example().writeFor(m_files.path("a")).hasError());
    const QByteArray whole = m_files.read("a.json");
    for (const char *number : {"1001", "1e300", "1001.0", "-1", "18446744073709551615", "true", "\"1001\"", "null"}) {
        m_files.write("a.json", QByteArray(whole).replace("1001", number));
        EXPECT_EQ(LibraryManifest::readFor(m_files.path("a")).hasError(), qstrcmp(number, "1001") != 0) << number;
    }
    for (const char *count : {"1e300", "4294967300", "9223372036854775812"}) {
        m_files.write("a.json", QByteArray(whole).replace("\"count\": 4", QByteArray("\"count\": ") + count));
        EXPECT_TRUE(LibraryManifest::readFor(m_files.path("a")).hasError()) << count;
    }
}

TEST_F(Manifest, RefusesNumbersThatNoLibraryReaches)
{
    for (qint64 LibraryFileFacts::*field :
         {&LibraryFileFacts::precursors, &LibraryFileFacts::openingSize, &LibraryFileFacts::closingSize}) {
        LibraryManifest manifest = example();
        manifest.file.*field = qint64{1} << 42;
        ASSERT_FALSE(manifest.writeFor(m_files.path("a")).hasError());
        EXPECT_FALSE(LibraryManifest::readFor(m_files.path("a")).hasError());
        ++(manifest.file.*field);
        ASSERT_FALSE(manifest.writeFor(m_files.path("a")).hasError());
        EXPECT_TRUE(LibraryManifest::readFor(m_files.path("a")).hasError());
    }
}

TEST_F(Manifest, RefusesNumbersThatContradictOneAnother)
{
    LibraryManifest manifest = example();
    manifest.shard = {5, 4};
    ASSERT_FALSE(manifest.writeFor(m_files.path("a")).hasError());
    EXPECT_TRUE(LibraryManifest::readFor(m_files.path("a")).hasError());
}

TEST_F(Manifest, IsNotWrittenForWhatIsNoFile)
{
    EXPECT_FALSE(example().writeFor("-").hasError());
    EXPECT_FALSE(QFileInfo::exists("-.json"));
    EXPECT_FALSE(example().writeFor("/dev/null").hasError());
    EXPECT_FALSE(QFileInfo::exists("/dev/null.json"));
}

TEST(ManifestSettings, SayWhatTheLibraryIs)
{
    LibraryManifest manifest = example();
    manifest.settings = R"({"version":"0.1.0","name":"yeast","format":"blib"})";
    EXPECT_EQ(manifest.kind(), LibraryFileKind::Blib);
    EXPECT_EQ(manifest.info().name, "yeast");
    EXPECT_EQ(manifest.info().version, "0.1.0");
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

} // namespace
} // namespace zav
