// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Trace.h"
#include "TraceReportFile.h"
#include "TraceTable.h"

#include <zav/Error.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zav {

/// The report of a run: a page of all its traces, or groups, with what was found in them. Traces that could not be read
/// or searched are there too, with the reason.
class TraceReport
{
public:
    /// `path` empty: there is no report. `inputs` as the user named them; `table` is what is said of each trace, and
    /// has to outlive the report.
    TraceReport(const QString &path, const QStringList &inputs, const TraceTable &table);

    /// Adds the traces that were searched together. The error is one of writing.
    Error add(const TraceGroup &group);

    /// Completes the file.
    Error finish() { return m_file.finish(); }

private:
    ReportEntry entryOf(const TraceGroup &group) const;
    ReportTrace traceOf(const Trace &trace) const;

    bool m_isWanted;
    QStringList m_inputs;
    const TraceTable &m_table;
    TraceReportFile m_file;
};

} // namespace zav
