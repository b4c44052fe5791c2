// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "OutputFile.h"
#include "Trace.h"
#include "TraceTable.h"

#include <zav/Error.h>
#include <zav/Result.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <memory>

namespace zav {

/// How findings are written.
///
/// **Tsv** and **Table** are a header line and one line a row. The header names the unit of time, that of the first
/// trace; times of later traces are converted to it.
///
/// **Tsv**, tab-separated: `file` when there are several, `id`, then the columns of the table.
///
/// **Table**, for a person at a terminal: numbers in columns of fixed width, intensities and areas with 5 significant
/// digits, then the file when there are several, and the id, which may be long.
///
/// **Json**, one object with one trace a line:
///
///     {"generator": "zav 0.1.0", "traces": [
///     {"id": "SRM 421.7", "time_unit": "min", "intensity_unit": "counts", "points": 480,
///      "peaks": [{"start": 12.1, "end": 12.6, ...}]}
///     ]}
///
/// `file` comes first when there are several; units are null where the file does not say. Every trace is there, also
/// without peaks, with its times in its own unit.
///
/// With a table for groups, Tsv has the columns `group` and `members` behind the id and Json has the same keys. Table
/// has a line that names the group and counts its members above the group's rows. A value that a trace does not have is
/// an empty cell, null, or `-`.
enum class TraceFormat { Table, Tsv, Json };

/// One text format. A document is every trace by `text`, in order, and `closing`; lines end with LF, numbers have a
/// decimal point whatever the locale.
class TraceWriter
{
public:
    virtual ~TraceWriter() = default;

    /// The text of the next trace. `InvalidInput` when its times cannot be written beside those before it; the trace
    /// is then left out.
    virtual Result<QByteArray> text(const Trace &trace) = 0;

    virtual QByteArray closing() const { return {}; }
};

/// `fileWidth`: characters of the longest file name when there is more than one file, each row naming its own; else 0.
/// `table` has to outlive the writer.
std::unique_ptr<TraceWriter> makeTraceWriter(TraceFormat format, const TraceTable &table, int fileWidth);

/// Writes findings in one format to one file. Nothing is opened, and no file appears, before the first text.
class TraceOutput
{
public:
    /// `path` empty or "-": standard output.
    TraceOutput(const QString &path, std::unique_ptr<TraceWriter> writer);

    /// The text of the next trace; the error is of that trace.
    Result<QByteArray> text(const Trace &trace) { return m_writer->text(trace); }

    /// Writes the text of a trace, in order; the error is one of writing.
    Error write(const QByteArray &text);

    /// Completes the file; nothing may be written afterwards.
    Error finish();

private:
    std::unique_ptr<TraceWriter> m_writer;
    OutputFile m_file;
    bool m_isOpen = false;
};

} // namespace zav
