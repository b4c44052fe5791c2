// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TraceRowWriter.h"

namespace zav {

/// A table for a person at a terminal: numbers in columns of fixed width, with 5 significant digits where they are
/// intensities or areas, then the file when there are several, and the id, which may be long. For another program use
/// TSV.
class TraceTableWriter : public TraceRowWriter
{
public:
    TraceTableWriter(const TraceTable &table, int fileWidth) : TraceRowWriter(table), m_fileWidth(fileWidth) {}

private:
    QByteArray header(const QString &timeUnit) const override;
    QByteArray line(const TraceRecord &record, const QList<double> &values) const override;
    QByteArray fullLine(const QList<QByteArray> &numbers, const QString &file, const QString &id) const;

    int m_fileWidth = 0; ///< characters; 0: no such column
};

} // namespace zav
