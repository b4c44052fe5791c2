// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>
#include <zav/Result.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <cstddef>
#include <functional>

struct sqlite3;
struct sqlite3_stmt;

namespace zav {

/// An open SQLite database. Its errors name the file: `what` ("cannot write"), the file's name, the reason.
class SqliteDatabase
{
public:
    SqliteDatabase(const QString &name, const char *what) : m_name(name), m_what(what) {}
    ~SqliteDatabase();
    SqliteDatabase(const SqliteDatabase &) = delete;
    SqliteDatabase &operator=(const SqliteDatabase &) = delete;

    /// An existing file, which may be empty.
    Error open(const QString &path, bool isReadOnly);

    /// Statements may take so many steps of SQLite's machine in all, or a few thousand more. The one that needs more
    /// fails: a damaged file can lead its reader in circles.
    void limitSteps(qint64 most);

    /// One or more statements without results.
    Error run(const char *sql);

    /// Every statement has to be gone.
    Error close();

    /// That the file cannot be read or written: why, in the words of the system or else of SQLite for its last failure,
    /// or in our own.
    Error failure() const;
    Error failure(const QString &reason) const;

private:
    friend class SqliteStatement;

    QString m_name;
    const char *m_what;
    sqlite3 *m_handle = nullptr;
    qint64 m_stepsLeft = 0;
};

/// A value that is stored as bytes rather than as text.
struct SqliteBlob
{
    const QByteArray &bytes;
};

/// A prepared statement. It has to go before its database.
class SqliteStatement
{
public:
    SqliteStatement() = default;
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement &) = delete;
    SqliteStatement &operator=(const SqliteStatement &) = delete;

    Error prepare(SqliteDatabase *database, const char *sql);

    /// Lets the database go.
    void release();

    /// Runs a statement without results with these values for its parameters.
    template <typename... Values>
    Error run(const Values &...values)
    {
        bindAll(values...);
        return finishRun();
    }

    /// Binds the parameters of a query, whose rows `next` gives.
    template <typename... Values>
    void ask(const Values &...values)
    {
        reset();
        bindAll(values...);
    }

    /// Whether there is another row; columns count from 0.
    Result<bool> next();
    qint64 integer(int column) const;
    double real(int column) const;
    QByteArray bytes(int column) const;

    /// A number of things that take `size` each; -1 where it is none that fits.
    int count(int column, int size = 1) const;

    /// The first character of a text, null where it is empty.
    char character(int column) const;

private:
    template <typename... Values>
    void bindAll(const Values &...values)
    {
        int parameter = 0;
        (bind(++parameter, values), ...);
    }

    // Bytes are not copied: they live until the statement has run.
    void bind(int parameter, std::nullptr_t);
    void bind(int parameter, int value);
    void bind(int parameter, qint64 value);
    void bind(int parameter, double value);
    void bind(int parameter, const QByteArray &text);
    void bind(int parameter, const SqliteBlob &blob);

    Error finishRun();
    void reset();

    SqliteDatabase *m_database = nullptr;
    sqlite3_stmt *m_statement = nullptr;
};

/// The rows of a table that belong to the rows of another one and are read along with it: both come in the order in
/// which they were written, so no index is needed.
class SqliteDetails
{
public:
    /// A query whose first column is the id of the row that a row belongs to.
    Error prepare(SqliteDatabase *database, const char *sql);

    /// Shows the rows of an id to `visit`. The ids are asked for in their order.
    Error visit(qint64 id, const std::function<void(const SqliteStatement &row)> &visit);

private:
    Error advance();

    SqliteStatement m_rows;
    bool m_hasRow = false;
};

} // namespace zav
