// SPDX-License-Identifier: Apache-2.0
#include "SqliteLibrary.h"

#include "SqliteDatabase.h"

namespace zav {

namespace {

/// Stands for every library of a program that was built without SQLite or zlib.
class NoSqliteLibrary : public SqliteLibrary
{
public:
    EncodedEntry encode(const LibraryEntry &) const override { return {}; }

protected:
    Error createTables(SqliteDatabase *, const LibraryInfo &) override { return {}; }
    Error insert(const EncodedEntry &) override { return {}; }
    Error insertEnd(SqliteDatabase *) override { return {}; }
    Error read(SqliteDatabase *, const EntryTaker &) const override { return {}; }
};

Error missing()
{
    return Error(Failure, QStringLiteral("this program was built without SQLite or zlib, which DLIB and BLIB "
                                         "libraries need"));
}

} // namespace

// No database was ever opened.
SqliteDatabase::~SqliteDatabase() = default;

SqliteLibrary::SqliteLibrary() = default;
SqliteLibrary::~SqliteLibrary() = default;

Error SqliteLibrary::open(const QString &, const LibraryInfo &)
{
    return missing();
}

Error SqliteLibrary::add(const EncodedEntry &)
{
    return missing();
}

Error SqliteLibrary::append(const QString &)
{
    return missing();
}

Error SqliteLibrary::finish()
{
    return missing();
}

std::unique_ptr<SqliteLibrary> makeSqliteLibrary(LibraryFileKind kind)
{
    return isSqlite(kind) ? std::make_unique<NoSqliteLibrary>() : nullptr;
}

} // namespace zav
