// SPDX-License-Identifier: Apache-2.0
#include "TraceWriter.h"

#include "TraceJsonWriter.h"
#include "TraceTableWriter.h"
#include "TraceTsvWriter.h"

namespace zav {

TraceWriter::~TraceWriter() = default;

std::unique_ptr<TraceWriter> makeTraceWriter(TraceFormat format, const TraceTable &table, int fileWidth)
{
    switch (format) {
    case TraceFormat::Json:
        return std::make_unique<TraceJsonWriter>(table, fileWidth > 0);
    case TraceFormat::Tsv:
        return std::make_unique<TraceTsvWriter>(table, fileWidth > 0);
    case TraceFormat::Table:
        break;
    }
    return std::make_unique<TraceTableWriter>(table, fileWidth);
}

} // namespace zav
