// SPDX-License-Identifier: Apache-2.0
#include "TraceReport.h"

#include "ConsensusTrace.h"
#include "PrintableText.h"

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

ReportHeading headingOf(const QStringList &inputs, const TraceTable &table)
{
    ReportHeading heading;
    heading.rowsName = table.rowsName;
    for (const QString &input : inputs)
        heading.files.append(inputName(input));
    for (const TraceColumn &column : table.columns)
        heading.columns.append({column.name, column.kind == TraceColumn::Time});
    heading.isGrouped = table.isGrouped;
    return heading;
}

QStringList remarksOf(const TraceFindings &findings)
{
    QStringList remarks = findings.warnings;
    for (const QString &remark : {findings.remark, findings.nothingFound}) {
        if (!remark.isEmpty())
            remarks.append(remark);
    }
    return remarks;
}

} // namespace

TraceReport::TraceReport(const QString &path, const QStringList &inputs, const TraceTable &table)
    : m_isWanted(!path.isEmpty()), m_inputs(inputs), m_table(table), m_file(path, headingOf(inputs, table))
{}

Error TraceReport::add(const TraceGroup &group)
{
    return m_isWanted ? m_file.add(entryOf(group)) : Error();
}

ReportEntry TraceReport::entryOf(const TraceGroup &group) const
{
    const Trace &first = group.traces.first();
    ReportEntry entry;
    entry.file = std::max<qsizetype>(m_inputs.indexOf(first.file), 0);
    entry.group = group.name;
    entry.timeUnit = first.chromatogram.timeUnit;
    entry.intensityUnit = first.chromatogram.intensityUnit;
    for (const Trace &trace : group.traces)
        entry.traces.append(traceOf(trace));
    const auto searched =
        std::count_if(group.traces.begin(), group.traces.end(), [](const Trace &trace) { return !trace.isBroken; });
    if (searched > 1)
        entry.consensus = scaledConsensus(group.consensus, searched);
    for (const TracePeak &peak : group.findings.peaks)
        entry.peaks.append({peak.start, peak.end, peak.apex});
    for (const TraceSplit &split : group.findings.splits)
        entry.splits.append({split.time, split.probability});
    // Those of a trace alone are the trace's own.
    if (group.isGrouped())
        entry.remarks = remarksOf(group.findings);
    return entry;
}

ReportTrace TraceReport::traceOf(const Trace &trace) const
{
    ReportTrace reported;
    reported.id = trace.chromatogram.id;
    reported.points = trace.chromatogram.points;
    reported.problem = trace.problem.message();
    if (trace.problem.hasError())
        return reported;
    reported.remarks = remarksOf(trace.findings);
    for (const QList<double> &values : m_table.rows(trace.findings)) {
        QList<QByteArray> row;
        for (qsizetype i = 0; i < values.size(); ++i)
            row.append(std::isnan(values[i]) ? QByteArray() : valueText(m_table.columns[i], values[i]));
        reported.rows.append(row);
    }
    return reported;
}

} // namespace zav
