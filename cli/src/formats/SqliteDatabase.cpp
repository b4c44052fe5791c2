// SPDX-License-Identifier: Apache-2.0
#include "SqliteDatabase.h"

#include "PrintableText.h"

#include <sqlite3.h>

#include <cerrno>
#include <limits>
#include <new>
#include <utility>

namespace zav {

namespace {

constexpr int STEPS_AT_ONCE = 1000;

int endsStatement(void *stepsLeft)
{
    qint64 &left = *static_cast<qint64 *>(stepsLeft);
    left -= STEPS_AT_ONCE;
    return left < 0 ? 1 : 0;
}

/// The system's number for the last call on the file that failed; 0 where none has.
int lastErrorOfFile(sqlite3 *handle)
{
    int number = 0;
    sqlite3_file_control(handle, "main", SQLITE_FCNTL_LAST_ERRNO, &number);
    return number;
}

/// The system's number for the last failure of SQLite; 0 where the system was not its cause.
int systemError(sqlite3 *handle)
{
    switch (sqlite3_errcode(handle)) {
    case SQLITE_CANTOPEN:
        return sqlite3_system_errno(handle);
    case SQLITE_IOERR:
        return lastErrorOfFile(handle);
    case SQLITE_CORRUPT: {
        // SQLite calls a file damaged where a read fails with one of these (SQLITE_IOERR_CORRUPTFS).
        const int number = lastErrorOfFile(handle);
        return number == EIO || number == ENXIO || number == ERANGE ? number : 0;
    }
    default:
        return 0;
    }
}

} // namespace

SqliteDatabase::~SqliteDatabase()
{
    sqlite3_close_v2(m_handle);
}

Error SqliteDatabase::open(const QString &path, bool isReadOnly)
{
    const int flags = isReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    const int status = sqlite3_open_v2(path.toUtf8().constData(), &m_handle, flags, nullptr);
    if (status != SQLITE_OK)
        return failure();
    // Where it cannot open a file for writing, SQLite opens it for reading, and only the first change fails.
    if (!isReadOnly && sqlite3_db_readonly(m_handle, "main") != 0)
        return failure(QString::fromUtf8(sqlite3_errstr(SQLITE_CANTOPEN)));
    return {};
}

void SqliteDatabase::limitSteps(qint64 most)
{
    m_stepsLeft = most;
    sqlite3_progress_handler(m_handle, STEPS_AT_ONCE, endsStatement, &m_stepsLeft);
}

Error SqliteDatabase::run(const char *sql)
{
    return sqlite3_exec(m_handle, sql, nullptr, nullptr, nullptr) == SQLITE_OK ? Error() : failure();
}

Error SqliteDatabase::close()
{
    if (sqlite3_close(m_handle) != SQLITE_OK)
        return failure();
    m_handle = nullptr;
    return {};
}

Error SqliteDatabase::failure() const
{
    if (sqlite3_errcode(m_handle) == SQLITE_NOMEM) // also where there is no handle for want of memory
        throw std::bad_alloc();
    if (sqlite3_errcode(m_handle) == SQLITE_INTERRUPT)
        return failure(QStringLiteral("it is damaged: reading it does not end"));
    const int number = systemError(m_handle);
    return failure(number != 0 ? qt_error_string(number) : QString::fromUtf8(sqlite3_errmsg(m_handle)));
}

Error SqliteDatabase::failure(const QString &reason) const
{
    return Error(Failure, QStringLiteral("%1 %2: %3").arg(QString::fromUtf8(m_what), displayText(m_name, 300), reason));
}

SqliteStatement::~SqliteStatement()
{
    release();
}

Error SqliteStatement::prepare(SqliteDatabase *database, const char *sql)
{
    m_database = database;
    const int status = sqlite3_prepare_v2(database->m_handle, sql, -1, &m_statement, nullptr);
    return status == SQLITE_OK ? Error() : database->failure();
}

void SqliteStatement::release()
{
    sqlite3_finalize(std::exchange(m_statement, nullptr));
}

Result<bool> SqliteStatement::next()
{
    switch (sqlite3_step(m_statement)) {
    case SQLITE_ROW:
        return true;
    case SQLITE_DONE:
        return false;
    default:
        return m_database->failure();
    }
}

qint64 SqliteStatement::integer(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

double SqliteStatement::real(int column) const
{
    return sqlite3_column_double(m_statement, column);
}

QByteArray SqliteStatement::bytes(int column) const
{
    const auto *begin = static_cast<const char *>(sqlite3_column_blob(m_statement, column));
    return QByteArray(begin, sqlite3_column_bytes(m_statement, column));
}

int SqliteStatement::count(int column, int size) const
{
    const qint64 whole = integer(column) / size;
    return whole >= 0 && whole <= std::numeric_limits<int>::max() ? static_cast<int>(whole) : -1;
}

char SqliteStatement::character(int column) const
{
    const QByteArray text = bytes(column);
    return text.isEmpty() ? '\0' : text.front();
}

void SqliteStatement::bind(int parameter, std::nullptr_t)
{
    sqlite3_bind_null(m_statement, parameter);
}

void SqliteStatement::bind(int parameter, int value)
{
    sqlite3_bind_int(m_statement, parameter, value);
}

void SqliteStatement::bind(int parameter, qint64 value)
{
    sqlite3_bind_int64(m_statement, parameter, value);
}

void SqliteStatement::bind(int parameter, double value)
{
    sqlite3_bind_double(m_statement, parameter, value);
}

void SqliteStatement::bind(int parameter, const QByteArray &text)
{
    sqlite3_bind_text64(m_statement, parameter, text.constData(), static_cast<sqlite3_uint64>(text.size()),
                        SQLITE_STATIC, SQLITE_UTF8);
}

void SqliteStatement::bind(int parameter, const SqliteBlob &blob)
{
    sqlite3_bind_blob64(m_statement, parameter, blob.bytes.constData(), static_cast<sqlite3_uint64>(blob.bytes.size()),
                        SQLITE_STATIC);
}

Error SqliteStatement::finishRun()
{
    const bool isDone = sqlite3_step(m_statement) == SQLITE_DONE;
    Error error = isDone ? Error() : m_database->failure();
    reset();
    return error;
}

void SqliteStatement::reset()
{
    sqlite3_reset(m_statement);
}

Error SqliteDetails::prepare(SqliteDatabase *database, const char *sql)
{
    if (Error error = m_rows.prepare(database, sql); error.hasError())
        return error;
    return advance();
}

Error SqliteDetails::visit(qint64 id, const std::function<void(const SqliteStatement &row)> &visit)
{
    while (m_hasRow && m_rows.integer(0) == id) {
        visit(m_rows);
        if (Error error = advance(); error.hasError())
            return error;
    }
    return {};
}

Error SqliteDetails::advance()
{
    const Result<bool> hasRow = m_rows.next();
    if (hasRow.hasError())
        return hasRow.error();
    m_hasRow = hasRow.value();
    return {};
}

} // namespace zav
