// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "OutputFile.h"
#include "TraceWriter.h"

#include <QtCore/QString>

#include <memory>

namespace zav {

/// Writes findings in one format to one file. Nothing is opened, and no file appears, before the first text.
class TraceOutput
{
public:
    /// `path` empty or "-": standard output.
    TraceOutput(const QString &path, std::unique_ptr<TraceWriter> writer);

    /// The text of the next trace; the error is of that trace.
    Result<QByteArray> text(const TraceRecord &record) { return m_writer->trace(record); }

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
