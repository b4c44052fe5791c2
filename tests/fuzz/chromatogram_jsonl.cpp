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

Reading read(const QString &path)
{
    return readTraces(openChromatograms({path, {}, {}, false}));
}

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
    const Reading whole = readBothWays(NAME, input, read);
    if (!isGzip(input))
        require(beginsLike(whole, read(fileWith(NAME, input.first(placeWithin(input)))), 1),
                "a cut file gives what stands before the cut");
    QList<TraceOutcome> outcomes;
    auto opened = openChromatograms({fileWith(NAME, input), {}, {}, true});
    const Reading grouped = readTraces(opened, &outcomes);
    if (opened.hasError() || !grouped.error.isEmpty())
        return;
    requireSeeking(opened.value().get(), outcomes);
    QByteArray lines;
    outcomes.removeIf([](const TraceOutcome &outcome) { return outcome.problem.hasError(); });
    for (const TraceOutcome &outcome : std::as_const(outcomes))
        lines += written(outcome.chromatogram);
    if (lines.isEmpty())
        return;
    QList<TraceOutcome> again;
    const Reading reread = readTraces(openChromatograms({fileWith(NAME, lines), {}, {}, true}), &again);
    require(reread.error.isEmpty() && again.size() == outcomes.size(), "written traces are all read");
    for (qsizetype i = 0; i < again.size(); ++i)
        require(bitsOf(again[i]) == bitsOf(outcomes[i]), "a written trace reads the same");
}

} // namespace zav::fuzz
