// SPDX-License-Identifier: Apache-2.0
#include "TraceReportFile.h"

#include "PackedPoints.h"
#include "PrintableText.h"

#include <nlohmann/json.hpp>

#include <limits>

namespace zav {

namespace {

using Json = nlohmann::ordered_json;

Json json(const QString &text)
{
    return jsonText(text);
}

Json json(const QStringList &texts)
{
    return jsonTexts(texts);
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

} // namespace

TraceReportFile::TraceReportFile(const QString &path, const ReportHeading &heading)
    : m_file(path, ReportKind::Traces, json(heading))
{}

Error TraceReportFile::add(const ReportEntry &entry)
{
    Json object;
    object["file"] = entry.file;
    set(&object, "group", entry.group);
    set(&object, "timeUnit", entry.timeUnit);
    set(&object, "intensityUnit", entry.intensityUnit);
    object["traces"] = json(entry.traces);
    set(&object, "peaks", entry.peaks);
    set(&object, "splits", entry.splits);
    set(&object, "remarks", entry.remarks);
    QByteArray points;
    if (!entry.consensus.isEmpty()) {
        object["hasConsensus"] = true;
        points += packedPoints(reportedPoints(entry.consensus));
    }
    for (const ReportTrace &trace : entry.traces)
        points += packedPoints(reportedPoints(trace.points));
    return m_file.add(std::move(object), points);
}

} // namespace zav
