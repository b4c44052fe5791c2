// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TraceTable.h"

#include <zav/Result.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <memory>

namespace zav {

/// How findings are written.
enum class TraceFormat { Table, Tsv, Json };

/// One trace with what was found in it.
struct TraceRecord
{
    QString file; ///< as the user named it
    QString id;
    QString timeUnit;
    QString intensityUnit;
    qsizetype points = 0;
    QList<QList<double>> rows; ///< of the writer's table
};

/// One text format. A document is every trace by `trace`, in order, and `closing`; lines end with LF, numbers have a
/// decimal point whatever the locale.
class TraceWriter
{
public:
    virtual ~TraceWriter();

    /// The text of the next trace. `InvalidInput` when its times cannot be written beside those before it; the trace
    /// is then left out.
    virtual Result<QByteArray> trace(const TraceRecord &record) = 0;

    virtual QByteArray closing() const { return {}; }
};

/// `fileWidth`: characters of the longest file name when there is more than one file, each row naming its own; else 0.
std::unique_ptr<TraceWriter> makeTraceWriter(TraceFormat format, const TraceTable &table, int fileWidth);

} // namespace zav
