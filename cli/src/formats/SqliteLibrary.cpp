// SPDX-License-Identifier: Apache-2.0
#include "SqliteLibrary.h"

#include "SqliteDatabase.h"

#include <QtCore/QFileInfo>

#include <algorithm>

namespace zav {

namespace {

// One transaction into a file that nobody else sees: a journal would only protect what is thrown away anyway.
constexpr char SETTINGS[] = "PRAGMA page_size = 4096; PRAGMA encoding = 'UTF-8'; PRAGMA auto_vacuum = NONE;"
                            "PRAGMA journal_mode = OFF; PRAGMA synchronous = FULL; PRAGMA locking_mode = EXCLUSIVE;"
                            "PRAGMA cache_size = -16384; BEGIN";

// Four hundred times the ions that the longest peptide has.
constexpr int MOST_PEAKS = 1 << 20;

// Of SQLite's machine, to read a library. Those that zav wrote take less than one step a byte.
constexpr qint64 MOST_STEPS = 1'000'000;
constexpr qint64 MOST_STEPS_A_BYTE = 20;

/// The definitions of all that a query can read from, in order. An index is no such thing, and comes last in a library.
Result<QByteArray> tablesOf(SqliteDatabase *database)
{
    SqliteStatement definitions;
    if (Error error = definitions.prepare(
            database, "SELECT type, name, sql FROM sqlite_master WHERE type <> 'index' ORDER BY name");
        error.hasError())
        return error;
    QByteArray tables;
    for (;;) {
        const Result<bool> hasRow = definitions.next();
        if (hasRow.hasError())
            return hasRow.error();
        if (!hasRow.value())
            return tables;
        tables += definitions.bytes(0) + ' ' + definitions.bytes(1) + ' ' + definitions.bytes(2) + '\n';
    }
}

/// That both have the same tables: a view, say, could give rows without end.
Error checkTables(SqliteDatabase *own, SqliteDatabase *other)
{
    const Result<QByteArray> expected = tablesOf(own);
    if (expected.hasError())
        return expected.error();
    const Result<QByteArray> tables = tablesOf(other);
    if (tables.hasError())
        return tables.error();
    const bool areSame = tables.value() == expected.value();
    return areSame ? Error() : other->failure(QStringLiteral("its tables are not those that zav writes"));
}

// Whether a library can have stored it; sizes that are multiples of the number of peaks fit an int.
bool isSound(const EncodedEntry &entry)
{
    return entry.peakCount >= 0 && entry.peakCount <= MOST_PEAKS &&
           std::all_of(entry.transitions.begin(), entry.transitions.end(),
                       [](const EncodedTransition &transition) { return transition.ionType != '\0'; });
}

} // namespace

SqliteLibrary::SqliteLibrary() = default;
SqliteLibrary::~SqliteLibrary() = default;

Error SqliteLibrary::open(const QString &path, const LibraryInfo &info)
{
    if (Error error = m_file.create(path); error.hasError())
        return error;
    m_database = std::make_unique<SqliteDatabase>(path, "cannot write");
    if (Error error = m_database->open(m_file.temporaryPath(), false); error.hasError())
        return error;
    if (Error error = m_database->run(SETTINGS); error.hasError())
        return error;
    return createTables(m_database.get(), info);
}

Error SqliteLibrary::add(const EncodedEntry &entry)
{
    return entry.peakCount > 0 ? insert(entry) : Error();
}

Error SqliteLibrary::append(const QString &path, const std::function<Error()> &check)
{
    SqliteDatabase other(path, "cannot read");
    if (Error error = other.open(path, true); error.hasError())
        return error;
    other.limitSteps(MOST_STEPS + MOST_STEPS_A_BYTE * QFileInfo(path).size());
    if (Error error = checkTables(m_database.get(), &other); error.hasError())
        return error;
    return read(&other, [&](const EncodedEntry &entry) {
        if (Error error = check ? check() : Error(); error.hasError())
            return error;
        return isSound(entry) ? add(entry) : other.failure(QStringLiteral("it holds an entry that is damaged"));
    });
}

Error SqliteLibrary::finish()
{
    if (Error error = insertEnd(m_database.get()); error.hasError())
        return error;
    if (Error error = m_database->run("COMMIT"); error.hasError())
        return error;
    if (Error error = m_database->close(); error.hasError())
        return error;
    return m_file.commit();
}

std::unique_ptr<SqliteLibrary> makeSqliteLibrary(LibraryFileKind kind)
{
    if (kind == LibraryFileKind::Dlib)
        return makeDlibLibrary();
    if (kind == LibraryFileKind::Blib)
        return makeBlibLibrary();
    if (kind == LibraryFileKind::Pqp)
        return makePqpLibrary();
    return nullptr;
}

} // namespace zav
