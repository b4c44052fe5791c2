// SPDX-License-Identifier: Apache-2.0
#include "LibraryRun.h"

namespace zav {
namespace {

QString shardName(int number, int count, const QString &ending)
{
    return QStringLiteral("lib.%1-of-%2%3").arg(number).arg(count).arg(ending);
}

class LibraryMerge : public LibraryRun
{
protected:
    void SetUp() override { m_files.write("p.fasta", randomProteins(6, 300)); }

    /// Makes all shards and returns their names, the last one first.
    QStringList shards(int count, const QString &ending, const QStringList &arguments = {}) const
    {
        QStringList names;
        for (int number = 1; number <= count; ++number) {
            const QString name = shardName(number, count, ending);
            run(QStringList{"p.fasta", "-o", name, "--shard", QStringLiteral("%1/%2").arg(number).arg(count)} +
                arguments);
            names.prepend(name);
        }
        return names;
    }

    std::string refusal(const QStringList &names) const
    {
        const ProgramRun refused = run(QStringList{"merge", "-o", "all.tsv"} + names, 1);
        EXPECT_FALSE(QFileInfo::exists(m_files.path("all.tsv")));
        return refused.standardError;
    }
};

class MergedFormats : public LibraryMerge, public testing::WithParamInterface<const char *>
{};

TEST_P(MergedFormats, AreThoseOfOneRunToTheByte)
{
    const QString ending = QString::fromLatin1(GetParam());
    const QStringList decoys = {"--decoys", "reversed"};
    const QByteArray whole = library("whole" + ending, QStringList{"p.fasta"} + decoys);
    const QStringList names = shards(3, ending, decoys);
    run(QStringList{"merge", "-o", "all" + ending} + names);
    EXPECT_TRUE(m_files.read("all" + ending) == whole);
    EXPECT_EQ(m_files.read("all" + ending + ".json"), m_files.read("whole" + ending + ".json"));
    EXPECT_GT(whole.size(), 100000);
}

INSTANTIATE_TEST_SUITE_P(Text, MergedFormats, testing::Values(".tsv", ".msp", ".mgf", ".mzSpecLib.txt"));
INSTANTIATE_TEST_SUITE_P(Sqlite, MergedFormats, testing::Values(".dlib", ".blib", ".pqp"));

TEST_F(LibraryMerge, AnyNumberOfShardsMakesTheSameLibrary)
{
    const QByteArray whole = library("whole.tsv", {"p.fasta"});
    for (const int count : {1, 2, 4, 5}) {
        run(QStringList{"merge", "-o", "all.tsv"} + shards(count, ".tsv"));
        EXPECT_TRUE(m_files.read("all.tsv") == whole) << count;
    }
}

TEST_F(LibraryMerge, StandardOutputTakesTheLibraryWithoutAManifest)
{
    const QStringList names = shards(2, ".tsv");
    EXPECT_EQ(run(QStringList{"merge", "-o", "-"} + names).standardOutput,
              library("whole.tsv", {"p.fasta"}).toStdString());
    EXPECT_FALSE(fileNames().contains("-.json"));
}

TEST_F(LibraryMerge, MoreShardsThanPeptidesAreMergedToo)
{
    m_files.write("p.fasta", ">P\nSAMPLEPEPTIDER\n>Q\nLVNELTEFAK\n");
    const QByteArray whole = library("whole.tsv", {"p.fasta"});
    run(QStringList{"merge", "-o", "all.tsv"} + shards(3, ".tsv"));
    EXPECT_TRUE(m_files.read("all.tsv") == whole);
}

TEST_F(LibraryMerge, RefusesMissingShardsByName)
{
    const QStringList names = shards(4, ".tsv");
    EXPECT_EQ(refusal({names[0], names[2]}), "zav: missing: shard 1/4, 3/4\n");
}

TEST_F(LibraryMerge, RefusesDoubledShardsByName)
{
    const QStringList names = shards(2, ".tsv");
    for (const char *ending : {"", ".json"})
        QFile::copy(m_files.path(names[0] + ending), m_files.path(QStringLiteral("copy.tsv") + ending));
    EXPECT_EQ(refusal({names[0], names[1], "copy.tsv"}), "zav: both lib.2-of-2.tsv and copy.tsv are shard 2/2\n");
    EXPECT_EQ(refusal({names[0], names[1], names[1]}), "zav: both lib.1-of-2.tsv and lib.1-of-2.tsv are shard 1/2\n");
}

TEST_F(LibraryMerge, RefusesForeignShardsByNameAndSaysWhatDiffers)
{
    const QStringList names = shards(2, ".tsv");
    const auto foreign = [&](const QStringList &arguments) {
        run(QStringList{"-o", "other.tsv"} + arguments);
        return refusal({names[1], "other.tsv"});
    };
    EXPECT_EQ(foreign({"p.fasta", "--shard", "2/2", "--top", "5"}),
              "zav: other.tsv is a shard of another library than lib.1-of-2.tsv: peaks\n");
    EXPECT_EQ(foreign({"p.fasta", "--shard", "2/3"}), "zav: other.tsv is shard 2/3, but lib.1-of-2.tsv is shard 1/2\n");
    m_files.write("p.fasta", randomProteins(7, 300));
    EXPECT_EQ(foreign({"p.fasta", "--shard", "2/2"}),
              "zav: other.tsv is a shard of another library than lib.1-of-2.tsv: another input\n");
}

TEST_F(LibraryMerge, RefusesDamagedShardsByName)
{
    const QStringList names = shards(2, ".tsv");
    m_files.write(names[0], m_files.read(names[0]) + "\n");
    EXPECT_EQ(refusal(names), "zav: lib.2-of-2.tsv has changed since it was written: its SHA-256 differs\n");
    QFile::remove(m_files.path(names[0] + ".json"));
    EXPECT_NE(refusal(names).find("lib.2-of-2.tsv.json"), std::string::npos);
}

TEST_F(LibraryMerge, RefusesAnEndingOfAnotherKindOfLibrary)
{
    const QStringList names = shards(1, ".tsv");
    EXPECT_EQ(run({"merge", "-o", "all.msp", names[0]}, 1).standardError,
              "zav: the shards are tsv, which is not what the ending of all.msp says\n");
}

TEST_F(LibraryMerge, RefusesWhatContradictsTheManual)
{
    const QStringList names = shards(1, ".tsv");
    for (const QStringList &arguments :
         {QStringList{"merge"}, QStringList{"merge", names[0]}, QStringList{"merge", "-o", "all.tsv"},
          QStringList{"merge", names[0], "-o", names[0]}})
        EXPECT_EQ(run(arguments, 2).standardOutput, "");
}

} // namespace
} // namespace zav
