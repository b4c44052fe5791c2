// SPDX-License-Identifier: Apache-2.0
#include "SqliteLibrary.h"

#include "SqliteDatabase.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#endif

// What stands in the files is compared by the tests of tests/readback, with programs that are not ours.
namespace zav {
namespace {

constexpr LibraryFileKind KINDS[] = {LibraryFileKind::Dlib, LibraryFileKind::Blib, LibraryFileKind::Pqp};

Modification named(const char *name)
{
    return modifications::findByName(QString::fromUtf8(name))->modification;
}

/// Peptides of different lengths and proteins at two charges, every third one with an oxidised first residue.
QList<LibraryEntry> entries(int peptideCount)
{
    QList<LibraryEntry> all;
    for (int i = 0; i < 2 * peptideCount; ++i) {
        LibraryEntry entry;
        const QString peptide =
            QString(i / 2 % 20 + 1, QLatin1Char('A')) + QStringLiteral("CCK") + QString(i / 40, QLatin1Char('G'));
        const int first = i / 2 % 20 + 2; // of the cysteines
        QList<PlacedModification> modifications = {{first, named("Carbamidomethyl")},
                                                   {first + 1, named("Carbamidomethyl")}};
        if (i / 2 % 3 == 0)
            modifications.append({1, named("Oxidation")});
        entry.peptidoform = Peptidoform(peptide, modifications);
        entry.retentionTime = i % 5 == 0 ? entry.retentionTime : 0.1 * i - 20;
        entry.charge = 2 + i % 2;
        entry.precursorMz = 400.0 + i;
        entry.proteins = {{"P" + QByteArray::number(i / 2 % 7), "G" + QByteArray::number(i / 2 % 2), {}},
                          {"Q" + QByteArray::number(i / 2 % 3), {}, {}}};
        entry.isDecoy = i % 4 > 1;
        for (int peak = 0; peak <= i % 50; ++peak)
            entry.peaks.append({150.0 + 13.7 * peak, 1.0 / (peak + 1), QLatin1Char('y'), peak + 1, 1, {}, 0});
        all.append(entry);
    }
    return all;
}

class SqliteLibraryTest : public ::testing::TestWithParam<LibraryFileKind>
{
protected:
    std::unique_ptr<SqliteLibrary> library() const { return makeSqliteLibrary(GetParam()); }
    QString path(const QString &name) const { return m_files.path(name); }
    QStringList files() const
    {
        return QDir(m_files.path(QString())).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    void write(const QString &name, const QList<LibraryEntry> &all) const
    {
        const auto written = library();
        ASSERT_EQ(written->open(path(name), info()).message(), QString());
        for (const LibraryEntry &entry : all)
            ASSERT_EQ(written->add(written->encode(entry)).message(), QString());
        ASSERT_EQ(written->finish().message(), QString());
    }

    static LibraryInfo info() { return {QStringLiteral("test"), QStringLiteral("1.0")}; }

    TemporaryFiles m_files;
};

TEST_P(SqliteLibraryTest, TwoRunsWriteTheSameBytes)
{
    write(QStringLiteral("a"), entries(1000));
    write(QStringLiteral("b"), entries(1000));
    EXPECT_GT(m_files.read(QStringLiteral("a")).size(), 100000);
    EXPECT_TRUE(m_files.read(QStringLiteral("a")) == m_files.read(QStringLiteral("b")));
}

TEST_P(SqliteLibraryTest, LibraryAppendedFromPartsIsThatWrittenAtOnce)
{
    const QList<LibraryEntry> all = entries(700);
    write(QStringLiteral("whole"), all);
    write(QStringLiteral("first"), all.mid(0, 3));
    write(QStringLiteral("none"), {});
    write(QStringLiteral("last"), all.mid(3));

    const auto merged = library();
    ASSERT_FALSE(merged->open(path(QStringLiteral("merged")), info()).hasError());
    for (const char *part : {"first", "none", "last"})
        ASSERT_EQ(merged->append(path(QString::fromUtf8(part))).message(), QString());
    ASSERT_FALSE(merged->finish().hasError());
    EXPECT_TRUE(m_files.read(QStringLiteral("merged")) == m_files.read(QStringLiteral("whole")));
}

TEST_P(SqliteLibraryTest, EntriesWithoutPeaksAreLeftOut)
{
    QList<LibraryEntry> all = entries(20);
    write(QStringLiteral("with"), all);
    LibraryEntry empty = all.last();
    empty.peaks.clear();
    all.insert(7, empty);
    write(QStringLiteral("without"), all);
    EXPECT_TRUE(m_files.read(QStringLiteral("with")) == m_files.read(QStringLiteral("without")));
}

TEST_P(SqliteLibraryTest, OlderFileStaysUntilTheLibraryIsFinished)
{
    m_files.write(QStringLiteral("a"), "old");
    {
        const auto unfinished = library();
        ASSERT_FALSE(unfinished->open(path(QStringLiteral("a")), info()).hasError());
        ASSERT_FALSE(unfinished->add(unfinished->encode(entries(1).first())).hasError());
        EXPECT_EQ(files().size(), 2);
    }
    EXPECT_EQ(m_files.read(QStringLiteral("a")), "old");
    EXPECT_EQ(files(), QStringList{QStringLiteral("a")});
    write(QStringLiteral("a"), entries(1));
    EXPECT_TRUE(m_files.read(QStringLiteral("a")).startsWith("SQLite format 3"));
    EXPECT_EQ(files(), QStringList{QStringLiteral("a")});
}

TEST_P(SqliteLibraryTest, MissingFolderIsSaidWithTheNameOfTheFile)
{
    const Error error = library()->open(path(QStringLiteral("nowhere/a")), info());
    EXPECT_EQ(m_files.withoutFolder(error.message()), "cannot write nowhere/a: No such file or directory");
}

TEST_P(SqliteLibraryTest, WhatIsNoRegularFileIsRefused)
{
    for (const QString &target : {QStringLiteral("-"), QStringLiteral("/dev/null"), path(QString())}) {
        const Error error = library()->open(target, info());
        EXPECT_EQ(error.code(), InvalidInput);
        EXPECT_TRUE(error.message().endsWith(QStringLiteral(": this format needs a regular file")));
    }
}

TEST_P(SqliteLibraryTest, AppendedFileThatIsNoLibraryIsNamed)
{
    m_files.write(QStringLiteral("text"), "no database at all, but long enough to be one, with a header of its own\n");
    const auto merged = library();
    ASSERT_FALSE(merged->open(path(QStringLiteral("merged")), info()).hasError());
    EXPECT_EQ(m_files.withoutFolder(merged->append(path(QStringLiteral("text"))).message()),
              "cannot read text: file is not a database");
    EXPECT_EQ(m_files.withoutFolder(merged->append(path(QStringLiteral("absent"))).message()),
              "cannot read absent: No such file or directory");
}

// A view could give rows without end.
TEST_P(SqliteLibraryTest, AppendedLibraryWithOtherTablesIsRefused)
{
    write(QStringLiteral("part"), entries(3));
    {
        SqliteDatabase database(path(QStringLiteral("part")), "cannot write");
        ASSERT_FALSE(database.open(path(QStringLiteral("part")), false).hasError());
        ASSERT_EQ(database
                      .run("CREATE VIEW numbers AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n)"
                           " SELECT i FROM n")
                      .message(),
                  QString());
    }
    const auto merged = library();
    ASSERT_FALSE(merged->open(path(QStringLiteral("merged")), info()).hasError());
    EXPECT_EQ(m_files.withoutFolder(merged->append(path(QStringLiteral("part"))).message()),
              "cannot read part: its tables are not those that zav writes");
}

TEST_P(SqliteLibraryTest, AppendingEndsWithTheErrorOfItsCheck)
{
    write(QStringLiteral("part"), entries(3));
    const auto merged = library();
    ASSERT_FALSE(merged->open(path(QStringLiteral("merged")), info()).hasError());
    int asked = 0;
    const auto check = [&] { return ++asked == 2 ? Error(Failure, QStringLiteral("stopped")) : Error(); };
    EXPECT_EQ(merged->append(path(QStringLiteral("part")), check).message(), QStringLiteral("stopped"));
    EXPECT_EQ(asked, 2);
}

#ifdef Q_OS_UNIX
TEST_P(SqliteLibraryTest, FileThatCannotGrowIsSaidAndLeavesNothing)
{
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small{100000, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);

    auto written = library();
    Error error = written->open(path(QStringLiteral("a")), info());
    for (const LibraryEntry &entry : entries(1000)) {
        if (!error.hasError())
            error = written->add(written->encode(entry));
    }
    if (!error.hasError())
        error = written->finish();
    written.reset();

    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(m_files.withoutFolder(error.message()), "cannot write a: File too large");
    EXPECT_EQ(files(), QStringList());
}
#endif

INSTANTIATE_TEST_SUITE_P(Formats, SqliteLibraryTest, ::testing::ValuesIn(KINDS), [](const auto &tested) {
    return libraryFileKindNames()[qsizetype(tested.param)].toStdString();
});

TEST(DlibLibrary, PeptidoformsThatTheFormatCannotTellApartStandThereOnce)
{
    const TemporaryFiles files;
    const auto library = makeDlibLibrary();
    ASSERT_FALSE(library->open(files.path(QStringLiteral("a")), {}).hasError());
    LibraryEntry entry = entries(1).first();
    for (const int position : {0, 1, 0}) {
        entry.peptidoform = Peptidoform(QStringLiteral("KAAAK"), {{position, named("Acetyl")}});
        ASSERT_EQ(library->add(library->encode(entry)).message(), QString());
    }
    EXPECT_EQ(library->finish().message(), QString());
}

struct Damage
{
    LibraryFileKind kind;
    const char *sql; ///< that does it
};

class DamagedLibrary : public ::testing::TestWithParam<Damage>
{};

TEST_P(DamagedLibrary, EntryThatNoLibraryStoresIsAFailureThatNamesTheFile)
{
    const TemporaryFiles files;
    const QString part = files.path(QStringLiteral("part"));
    const auto written = makeSqliteLibrary(GetParam().kind);
    ASSERT_FALSE(written->open(part, {}).hasError());
    ASSERT_FALSE(written->add(written->encode(entries(3).last())).hasError());
    ASSERT_FALSE(written->finish().hasError());
    {
        SqliteDatabase database(part, "cannot write");
        ASSERT_FALSE(database.open(part, false).hasError());
        ASSERT_EQ(database.run(GetParam().sql).message(), QString());
    }
    const auto merged = makeSqliteLibrary(GetParam().kind);
    ASSERT_FALSE(merged->open(files.path(QStringLiteral("merged")), {}).hasError());
    EXPECT_EQ(files.withoutFolder(merged->append(part).message()),
              "cannot read part: it holds an entry that is damaged");
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, DamagedLibrary,
    ::testing::Values(Damage{LibraryFileKind::Dlib, "UPDATE entries SET MassEncodedLength = 9223372036854775807"},
                      Damage{LibraryFileKind::Dlib, "UPDATE entries SET MassEncodedLength = 16000000000"},
                      Damage{LibraryFileKind::Dlib, "UPDATE entries SET MassEncodedLength = -8"},
                      Damage{LibraryFileKind::Blib, "UPDATE RefSpectra SET numPeaks = 4294967297"},
                      Damage{LibraryFileKind::Pqp, "UPDATE TRANSITION SET TYPE = NULL"},
                      Damage{LibraryFileKind::Pqp, "UPDATE TRANSITION SET TYPE = ''"}));

TEST(SqliteDatabase, StatementThatTakesMoreStepsThanAllowedFails)
{
    const TemporaryFiles files;
    const QString path = files.write(QStringLiteral("a"), "");
    SqliteDatabase database(path, "cannot read");
    ASSERT_FALSE(database.open(path, false).hasError());
    database.limitSteps(100'000);
    SqliteStatement numbers;
    ASSERT_FALSE(numbers
                     .prepare(&database, "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n)"
                                         " SELECT i FROM n")
                     .hasError());
    int rows = 0;
    Result<bool> hasRow = numbers.next();
    for (; !hasRow.hasError() && rows < 1'000'000; ++rows)
        hasRow = numbers.next();
    EXPECT_EQ(files.withoutFolder(hasRow.error().message()), "cannot read a: it is damaged: reading it does not end");
    EXPECT_GT(rows, 1000);
}

TEST(SqliteLibrary, TextKindsHaveNone)
{
    EXPECT_EQ(makeSqliteLibrary(LibraryFileKind::Msp), nullptr);
    EXPECT_EQ(makeSqliteLibrary(LibraryFileKind::MzSpecLib), nullptr);
}

} // namespace
} // namespace zav
