// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TraceWriter.h"

namespace zav {

/// One JSON object:
///
///     {"generator": "zav 0.1.0", "traces": [
///     {"id": "SRM 421.7", "time_unit": "min", "intensity_unit": "counts", "points": 480,
///      "peaks": [{"start": 12.1, "end": 12.6, ...}]}
///     ]}
///
/// one trace a line; `file` first when there are several, units null where the file does not say. Every trace is there,
/// also without peaks, with its times in its own unit.
class TraceJsonWriter : public TraceWriter
{
public:
    TraceJsonWriter(const TraceTable &table, bool namesFile) : m_table(table), m_namesFile(namesFile) {}

    Result<QByteArray> trace(const TraceRecord &record) override;
    QByteArray closing() const override;

private:
    const TraceTable &m_table;
    bool m_namesFile = false;
    bool m_isEmpty = true;
};

} // namespace zav
