// SPDX-License-Identifier: Apache-2.0
//
// Door: a shard of a DLIB, BLIB or PQP library (ZAV_LIBRARY_KIND) that `zav library merge` appends. The input says
// which cells of a sound library get which values, and then which bytes of its file are others; or that a view with
// rows without end takes the place of a table. Promises: a message, or a library that can be appended itself; a view is
// refused.
#include "FuzzSupport.h"
#include "SqliteLibrary.h"

#include <fuzzer/FuzzedDataProvider.h>
#include <sqlite3.h>

#include <string>
#include <utility>
#include <vector>

namespace zav::fuzz {
namespace {

using Column = std::pair<std::string, std::string>; // table, name

const LibraryInfo INFO = {QStringLiteral("fuzz"), QStringLiteral("1")};

std::unique_ptr<SqliteLibrary> emptyLibrary()
{
    return makeSqliteLibrary(LibraryFileKind::ZAV_LIBRARY_KIND);
}

LibraryEntry entry(const QString &proForma, int charge)
{
    LibraryEntry one;
    one.peptidoform = Peptidoform::fromProForma(proForma).value();
    one.charge = charge;
    one.precursorMz = 400.0 + charge;
    one.proteins = {{"P1", "G1", {}}, {"P2", {}, {}}};
    one.isVariant = !one.peptidoform.modifications().isEmpty();
    for (int i = 1; i < one.peptidoform.length(); ++i)
        one.peaks.append({100.0 * i, 1.0 / i, QLatin1Char('y'), i, 1, {}, 0});
    return one;
}

QByteArray soundLibrary()
{
    const auto library = emptyLibrary();
    bool isWritten = !library->open(pathOf("sound"), INFO).hasError();
    for (const auto &[peptide, charge] : {std::pair("PEPTIDEK", 2), std::pair("PEPTIDEK", 3),
                                          std::pair("AC[Carbamidomethyl]DEFK", 2), std::pair("M[Oxidation]GGK", 2)})
        isWritten = isWritten && !library->add(library->encode(entry(QString::fromUtf8(peptide), charge))).hasError();
    require(isWritten && !library->finish().hasError(), "a sound library can be written");
    return contentOf(pathOf("sound"));
}

std::vector<Column> columnsOf(const QString &path)
{
    std::vector<Column> columns;
    sqlite3 *database = nullptr;
    sqlite3_stmt *rows = nullptr;
    sqlite3_open(path.toUtf8().constData(), &database);
    sqlite3_prepare_v2(database,
                       "SELECT m.name, c.name FROM sqlite_master m JOIN pragma_table_info(m.name) c"
                       " WHERE m.type = 'table' ORDER BY 1, 2",
                       -1, &rows, nullptr);
    while (sqlite3_step(rows) == SQLITE_ROW)
        columns.emplace_back(reinterpret_cast<const char *>(sqlite3_column_text(rows, 0)),
                             reinterpret_cast<const char *>(sqlite3_column_text(rows, 1)));
    sqlite3_finalize(rows);
    sqlite3_close(database);
    require(!columns.empty(), "a library has columns");
    return columns;
}

void bindValue(FuzzedDataProvider *data, sqlite3_stmt *statement)
{
    const int kind = data->ConsumeIntegralInRange(0, 4);
    if (kind == 0)
        sqlite3_bind_int64(statement, 1, data->ConsumeIntegral<sqlite3_int64>());
    else if (kind == 1)
        sqlite3_bind_double(statement, 1, data->ConsumeFloatingPoint<double>());
    else if (kind == 2)
        sqlite3_bind_null(statement, 1);
    const std::string bytes = kind > 2 ? data->ConsumeRandomLengthString(100) : std::string();
    const int size = static_cast<int>(bytes.size());
    if (kind == 3)
        sqlite3_bind_text(statement, 1, bytes.data(), size, SQLITE_TRANSIENT);
    else if (kind == 4)
        sqlite3_bind_blob(statement, 1, bytes.data(), size, SQLITE_TRANSIENT);
}

void changeCell(FuzzedDataProvider *data, const std::vector<Column> &columns, sqlite3 *database)
{
    const auto &[table, column] = columns[data->ConsumeIntegralInRange<std::size_t>(0, columns.size() - 1)];
    const std::string row = std::to_string(data->ConsumeIntegralInRange(0, 30));
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(database, ("UPDATE " + table + " SET " + column + " = ? WHERE rowid = " + row).c_str(), -1,
                       &statement, nullptr);
    bindValue(data, statement);
    sqlite3_step(statement);
    sqlite3_finalize(statement);
}

const std::vector<Column> &columns()
{
    static const std::vector<Column> all = columnsOf(pathOf("sound"));
    return all;
}

void changeCells(FuzzedDataProvider *data, const QString &path)
{
    sqlite3 *database = nullptr;
    require(sqlite3_open(path.toUtf8().constData(), &database) == SQLITE_OK, "a sound library opens");
    sqlite3_exec(database, "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; BEGIN", nullptr, nullptr, nullptr);
    for (int count = data->ConsumeIntegralInRange(0, 8); count > 0; --count)
        changeCell(data, columns(), database);
    sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(database);
}

void changeBytes(FuzzedDataProvider *data, const QString &path)
{
    QByteArray bytes = contentOf(path);
    for (int count = data->ConsumeIntegralInRange(0, 8); count > 0 && !bytes.isEmpty(); --count)
        bytes[data->ConsumeIntegralInRange<qsizetype>(0, bytes.size() - 1)] = data->ConsumeIntegral<char>();
    fileWith("shard", bytes);
}

/// False for a table of SQLite's own, which cannot be replaced.
bool replaceTable(FuzzedDataProvider *data, const QString &path)
{
    const std::string &table = columns()[data->ConsumeIntegralInRange<std::size_t>(0, columns().size() - 1)].first;
    const std::string change = "PRAGMA journal_mode = OFF; ALTER TABLE " + table + " RENAME TO other; CREATE VIEW " +
                               table +
                               " AS WITH RECURSIVE n(number) AS (VALUES (1) UNION ALL SELECT number + 1 FROM n)"
                               " SELECT * FROM other, n";
    sqlite3 *database = nullptr;
    sqlite3_open(path.toUtf8().constData(), &database);
    const bool isReplaced = sqlite3_exec(database, change.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(database);
    return isReplaced;
}

Error append(const QString &from, const QString &to)
{
    const auto library = emptyLibrary();
    if (Error error = library->open(to, INFO); error.hasError())
        return error;
    if (Error error = library->append(from); error.hasError())
        return error;
    return library->finish();
}

} // namespace

void tryInput(const QByteArray &input)
{
    static const QByteArray sound = soundLibrary();
    FuzzedDataProvider data(reinterpret_cast<const std::uint8_t *>(input.constData()),
                            static_cast<std::size_t>(input.size()));
    const QString path = fileWith("shard", sound);
    changeCells(&data, path);
    changeBytes(&data, path);
    const bool isEndless = data.ConsumeBool() && replaceTable(&data, fileWith("shard", sound));
    const Error error = append(path, pathOf("merged"));
    require(error.hasError() == !error.message().isEmpty(), "a failure says why");
    require(!isEndless || error.hasError(), "a view is refused");
    if (!error.hasError())
        require(!append(pathOf("merged"), pathOf("again")).hasError(), "what was merged can be merged");
}

} // namespace zav::fuzz
