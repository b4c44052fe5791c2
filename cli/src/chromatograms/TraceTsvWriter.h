// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TraceRowWriter.h"

namespace zav {

/// Tab-separated: `file` when there are several, `id`, then the columns of the table.
class TraceTsvWriter : public TraceRowWriter
{
public:
    TraceTsvWriter(const TraceTable &table, bool namesFile) : TraceRowWriter(table), m_namesFile(namesFile) {}

private:
    QByteArray header(const QString &timeUnit) const override;
    QByteArray line(const TraceRecord &record, const QList<double> &values) const override;

    bool m_namesFile = false;
};

} // namespace zav
