// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramSource.h"

#include <zav/Error.h>
#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>
#include <optional>

namespace zav {

/// One trace of the files that were named, or why it could not be read.
struct TraceInput
{
    qint64 number = 0; ///< from 1, over all files
    QString file;      ///< as the user named it
    Chromatogram chromatogram;
    Error problem; ///< the trace is broken: only its id is valid, and the message says file and trace
};

/// The traces of several files, one after the other, one file open at a time.
class TraceStream
{
public:
    /// `targets` empty: the chromatograms as they are stored.
    TraceStream(const QStringList &paths, const QList<ExtractionTarget> &targets);

    /// Opens the first file. Has to come first and succeed.
    Error open();

    /// How many traces `next` will yield, -1 where only reading tells.
    qint64 count() const;

    /// The next trace; an empty optional at the end. The error is one of a file, and ends the stream.
    Result<std::optional<TraceInput>> next();

private:
    Error goOn();

    QStringList m_paths;
    QList<ExtractionTarget> m_targets;
    std::unique_ptr<ChromatogramSource> m_source;
    qsizetype m_file = 0; ///< index of the open file
    qint64 m_number = 0;  ///< of the last trace
};

} // namespace zav
