// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TraceWriter.h"

#include <optional>

namespace zav {

/// A format of a header line and one line a row. The header names the unit of time, that of the first trace; times of
/// later traces are converted to it.
class TraceRowWriter : public TraceWriter
{
public:
    explicit TraceRowWriter(const TraceTable &table) : m_table(table) {}

    Result<QByteArray> trace(const TraceRecord &record) final;

protected:
    const TraceTable &table() const { return m_table; }

private:
    virtual QByteArray header(const QString &timeUnit) const = 0;
    virtual QByteArray line(const TraceRecord &record, const QList<double> &values) const = 0;

    const TraceTable &m_table;
    std::optional<QString> m_timeUnit; ///< set by the first trace
};

} // namespace zav
