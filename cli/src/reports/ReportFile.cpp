// SPDX-License-Identifier: Apache-2.0
#include "ReportFile.h"

#include "PackedTrace.h"
#include "PrintableText.h"
#include "ReportPage.h"

#include <nlohmann/json.hpp>

#include <limits>

namespace zav {

namespace {

using Json = nlohmann::ordered_json;

constexpr qsizetype BLOCK_SIZE = 1 << 18; // bytes of rows or points

Json json(const QString &text)
{
    return text.toStdString();
}

Json json(const QStringList &texts)
{
    Json array = Json::array();
    for (const QString &text : texts)
        array.push_back(json(text));
    return array;
}

Json json(const QList<ReportPeak> &peaks)
{
    Json array = Json::array();
    for (const ReportPeak &peak : peaks)
        array.push_back({peak.start, peak.end, peak.apex});
    return array;
}

Json json(const QList<ReportSplit> &splits)
{
    Json array = Json::array();
    for (const ReportSplit &split : splits)
        array.push_back({split.time, split.probability});
    return array;
}

/// Adds what there is.
template <typename Value>
void set(Json *object, const char *key, const Value &value)
{
    if (!value.isEmpty())
        (*object)[key] = json(value);
}

Json json(const ReportTrace &trace)
{
    Json object;
    object["id"] = json(trace.id);
    // The id as the other outputs write it, for the table that the page saves.
    if (const QString cell = displayText(trace.id, std::numeric_limits<int>::max()); cell != trace.id)
        object["cell"] = json(cell);
    object["points"] = trace.points.size();
    if (trace.points.size() > MOST_REPORTED_POINTS)
        object["thinned"] = true;
    if (!trace.rows.isEmpty())
        object["rows"] = Json::array();
    for (const QList<QByteArray> &values : trace.rows) {
        Json row = Json::array();
        for (const QByteArray &value : values)
            row.push_back(value.toStdString());
        object["rows"].push_back(std::move(row));
    }
    set(&object, "remarks", trace.remarks);
    set(&object, "problem", trace.problem);
    return object;
}

Json json(const QList<ReportTrace> &traces)
{
    Json array = Json::array();
    for (const ReportTrace &trace : traces)
        array.push_back(json(trace));
    return array;
}

Json json(const ReportHeading &heading)
{
    Json columns = Json::array();
    for (const ReportColumn &column : heading.columns)
        columns.push_back({{"name", column.name.toStdString()}, {"isTime", column.isTime}});
    return {{"generator", "zav " ZAV_VERSION},
            {"rows", heading.rowsName.toStdString()},
            {"files", json(heading.files)},
            {"columns", columns},
            {"isGrouped", heading.isGrouped}};
}

QByteArray textOf(const Json &value)
{
    return QByteArray::fromStdString(value.dump());
}

} // namespace

ReportFile::ReportFile(const QString &path, const ReportHeading &heading) : m_heading(heading), m_file(path) {}

Error ReportFile::open()
{
    if (m_isOpen)
        return {};
    if (Error error = m_file.open(); error.hasError())
        return error;
    m_isOpen = true;
    return m_file.write(ReportPage::opening() + jsonElement("heading", textOf(json(m_heading))));
}

Error ReportFile::add(const ReportEntry &entry)
{
    if (Error error = open(); error.hasError())
        return error;
    Json object;
    object["file"] = entry.file;
    set(&object, "group", entry.group);
    set(&object, "timeUnit", entry.timeUnit);
    set(&object, "intensityUnit", entry.intensityUnit);
    object["traces"] = json(entry.traces);
    set(&object, "peaks", entry.peaks);
    set(&object, "splits", entry.splits);
    set(&object, "remarks", entry.remarks);
    object["at"] = m_points.size();
    if (!entry.consensus.isEmpty()) {
        object["hasConsensus"] = true;
        m_points += packedTrace(reportedPoints(entry.consensus));
    }
    for (const ReportTrace &trace : entry.traces)
        m_points += packedTrace(reportedPoints(trace.points));
    m_rows += (m_rows.isEmpty() ? "" : ",\n") + textOf(object);
    return m_rows.size() < BLOCK_SIZE && m_points.size() < BLOCK_SIZE ? Error() : endBlock();
}

Error ReportFile::endBlock()
{
    if (m_rows.isEmpty())
        return {};
    m_digest.add(m_rows);
    m_digest.add(m_points);
    const QByteArray points = bytesElement("points", m_points);
    if (points.isEmpty())
        return Error(Failure, QStringLiteral("Out of memory"));
    const QByteArray block = jsonElement("rows", "[\n" + m_rows + "\n]") + points;
    m_rows.clear();
    m_points.clear();
    return m_file.write(block);
}

Error ReportFile::finish()
{
    if (!m_isOpen)
        return {};
    if (Error error = endBlock(); error.hasError())
        return error;
    const Json ending = {{"digest", m_digest.result().toStdString()}};
    if (Error error = m_file.write(jsonElement("ending", textOf(ending)) + ReportPage::closing()); error.hasError())
        return error;
    return m_file.commit();
}

} // namespace zav
