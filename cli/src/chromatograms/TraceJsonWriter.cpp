// SPDX-License-Identifier: Apache-2.0
#include "TraceJsonWriter.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace zav {

namespace {

using Json = nlohmann::ordered_json;

Json known(const QString &text)
{
    return text.isEmpty() ? Json() : Json(text.toStdString());
}

Json rowObject(const TraceTable &table, const QList<double> &values)
{
    Json row;
    for (int i = 0; i < values.size(); ++i) {
        const TraceColumn &column = table.columns[i];
        if (column.kind == TraceColumn::Count)
            row[column.name] = static_cast<qint64>(values[i]);
        else
            row[column.name] = valueText(column, values[i]).toDouble();
    }
    return row;
}

} // namespace

Result<QByteArray> TraceJsonWriter::trace(const TraceRecord &record)
{
    Json object;
    if (m_namesFile)
        object["file"] = record.file.toStdString();
    object["id"] = record.id.toStdString();
    object["time_unit"] = known(record.timeUnit);
    object["intensity_unit"] = known(record.intensityUnit);
    object["points"] = record.points;
    Json rows = Json::array();
    for (const QList<double> &values : record.rows)
        rows.push_back(rowObject(m_table, values));
    object[m_table.rowsName] = std::move(rows);
    const char *before =
        std::exchange(m_isEmpty, false) ? "{\"generator\": \"zav " ZAV_VERSION "\", \"traces\": [\n" : ",\n";
    return before + QByteArray::fromStdString(object.dump());
}

QByteArray TraceJsonWriter::closing() const
{
    return m_isEmpty ? QByteArray() : QByteArray("\n]}\n");
}

} // namespace zav
