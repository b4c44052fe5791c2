// SPDX-License-Identifier: Apache-2.0
#include "TraceTable.h"

namespace zav {

namespace {

QList<QList<double>> peakRows(const TraceFindings &findings)
{
    QList<QList<double>> rows;
    for (const TracePeak &peak : findings.peaks)
        rows.append({peak.start, peak.end, peak.apex, peak.height, peak.area, peak.areaAboveLine, double(peak.points)});
    return rows;
}

QList<QList<double>> splitRows(const TraceFindings &findings)
{
    QList<QList<double>> rows;
    for (const TraceSplit &split : findings.splits)
        rows.append({split.time, split.probability});
    return rows;
}

QList<QList<double>> groupedPeakRows(const TraceFindings &findings)
{
    QList<QList<double>> rows = peakRows(findings);
    for (qsizetype i = 0; i < rows.size(); ++i)
        rows[i].append(findings.peaks[i].shape);
    return rows;
}

QList<QList<double>> groupedSplitRows(const TraceFindings &findings)
{
    QList<QList<double>> rows = splitRows(findings);
    for (QList<double> &row : rows)
        row.append(findings.shape);
    return rows;
}

TraceTable grouped(const TraceTable &table, QList<QList<double>> (*rows)(const TraceFindings &findings))
{
    return {table.rowsName, table.columns + QList<TraceColumn>{{"shape", TraceColumn::Shape}}, rows, true};
}

double secondsIn(const QString &timeUnit)
{
    if (timeUnit == QLatin1String("min"))
        return 60;
    return timeUnit == QLatin1String("s") ? 1 : 0;
}

} // namespace

const TraceTable &peakTable()
{
    static const TraceTable table = {"peaks",
                                     {{"start", TraceColumn::Time},
                                      {"end", TraceColumn::Time},
                                      {"apex", TraceColumn::Time},
                                      {"height", TraceColumn::Intensity},
                                      {"area", TraceColumn::Area},
                                      {"area_above_line", TraceColumn::Area},
                                      {"points", TraceColumn::Count}},
                                     peakRows};
    return table;
}

const TraceTable &groupedPeakTable()
{
    static const TraceTable table = grouped(peakTable(), groupedPeakRows);
    return table;
}

const TraceTable &splitTable()
{
    static const TraceTable table = {
        "splits", {{"split", TraceColumn::Time}, {"probability", TraceColumn::Probability}}, splitRows};
    return table;
}

const TraceTable &groupedSplitTable()
{
    static const TraceTable table = grouped(splitTable(), groupedSplitRows);
    return table;
}

QByteArray columnTitle(const TraceColumn &column, const QString &timeUnit)
{
    const bool hasUnit = column.kind == TraceColumn::Time && !timeUnit.isEmpty();
    return hasUnit ? column.name + QByteArray("_") + timeUnit.toUtf8() : QByteArray(column.name);
}

QByteArray valueText(const TraceColumn &column, double value)
{
    switch (column.kind) {
    case TraceColumn::Time:
        return QByteArray::number(value, 'f', 5);
    case TraceColumn::Probability:
    case TraceColumn::Shape:
        return QByteArray::number(value, 'f', 4);
    case TraceColumn::Count:
        return QByteArray::number(value, 'f', 0);
    case TraceColumn::Intensity:
    case TraceColumn::Area:
        break;
    }
    return QByteArray::number(value, 'g', 10);
}

std::optional<double> timeFactor(const QString &from, const QString &to)
{
    if (from == to)
        return 1;
    if (secondsIn(from) == 0 || secondsIn(to) == 0)
        return {};
    return secondsIn(from) / secondsIn(to);
}

QList<QList<double>> scaled(QList<QList<double>> rows, const TraceTable &table, double factor)
{
    for (QList<double> &row : rows) {
        for (int i = 0; i < row.size(); ++i) {
            const TraceColumn::Kind kind = table.columns[i].kind;
            if (kind == TraceColumn::Time || kind == TraceColumn::Area)
                row[i] *= factor;
        }
    }
    return rows;
}

} // namespace zav
