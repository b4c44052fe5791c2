// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramSource.h"
#include "Trace.h"
#include "TraceGrouping.h"

#include <zav/Error.h>
#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>
#include <optional>

namespace zav {

/// The traces of several files, one after the other, one file open at a time. One group is in memory at a time, also
/// where the traces of a group are scattered over their file.
class TraceStream
{
public:
    /// `targets` empty: the chromatograms as they are stored.
    TraceStream(const QStringList &paths, const QList<ExtractionTarget> &targets);

    /// Puts the traces of each file into groups, as `TraceGrouping` says; otherwise each is alone. To be called before
    /// `open`. Each file is then read twice: once for the places of its traces, once group by group.
    void group(const QRegularExpression &idPattern) { m_idPattern = idPattern; }

    /// Opens the first file. Has to come first and succeed.
    Error open();

    /// How many traces `next` will yield in all, -1 where only reading tells.
    qint64 count() const;

    /// The next group, whose traces may be broken; an empty optional at the end. The error is one of a file, and ends
    /// the stream.
    Result<std::optional<TraceGroup>> next();

private:
    /// Where the traces of the open file stand.
    struct Index
    {
        TraceGrouping grouping;
        QList<TracePlace> places;
        qsizetype nextGroup = 0;
        qsizetype nextTrace = 0; ///< that the source yields, unless told to seek
    };

    Error makeIndex();
    Result<std::optional<TraceGroup>> nextAlone();
    Result<std::optional<TraceGroup>> nextOfIndex();
    Result<Trace> readMember(qsizetype member);
    Trace traceOf(TraceOutcome outcome, qint64 number) const;
    Error goOn();

    QStringList m_paths;
    QList<ExtractionTarget> m_targets;
    std::optional<QRegularExpression> m_idPattern; ///< unset: no groups
    std::unique_ptr<ChromatogramSource> m_source;
    Index m_index;            ///< of the open file, with groups
    qsizetype m_file = 0;     ///< index of the open file
    qint64 m_number = 0;      ///< of the last trace; with groups, of the last of the files before
    qint64 m_groupNumber = 0; ///< of the last group
};

} // namespace zav
