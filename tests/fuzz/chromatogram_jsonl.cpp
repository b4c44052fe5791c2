// SPDX-License-Identifier: Apache-2.0
//
// Door: chromatograms as JSON lines.
// Promises: finite points or a message; plain and gzipped content read the same; traces are found again; a file that is
// cut gives the traces before the cut; what is read and written reads the same.
#include "ChromatogramSupport.h"

#include <nlohmann/json.hpp>

namespace zav::fuzz {
namespace {

constexpr char NAME[] = "input.jsonl";

QByteArray written(const Chromatogram &trace)
{
    nlohmann::json line = {{"id", trace.id.toStdString()},
                           {"group", trace.origin.group.toStdString()},
                           {"rt", nlohmann::json::array()},
                           {"intensity", nlohmann::json::array()}};
    for (const QPointF &point : trace.points) {
        line["rt"].push_back(point.x());
        line["intensity"].push_back(point.y());
    }
    if (!trace.timeUnit.isEmpty())
        line["rt_unit"] = trace.timeUnit.toStdString();
    return QByteArray::fromStdString(line.dump()) + '\n';
}

} // namespace

void tryInput(const QByteArray &input)
{
    const QList<TraceOutcome> outcomes = requireReading(NAME, input);
    QByteArray lines;
    for (const TraceOutcome &outcome : outcomes)
        lines += written(outcome.chromatogram);
    if (!lines.isEmpty())
        requireSame(NAME, lines, outcomes);
}

} // namespace zav::fuzz
