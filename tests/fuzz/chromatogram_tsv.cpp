// SPDX-License-Identifier: Apache-2.0
//
// Door: chromatograms as a tab-separated table.
// Promises: finite points or a message; plain and gzipped content read the same; traces are found again; a file that is
// cut gives the traces before the cut; what is read and written reads the same.
#include "ChromatogramSupport.h"

#include <QtCore/QSet>

namespace zav::fuzz {
namespace {

constexpr char NAME[] = "input.tsv";

Reading read(const QString &path)
{
    return readTraces(openChromatograms({path, {}, {}, false}));
}

QByteArray number(double value)
{
    return QByteArray::number(value, 'g', 17);
}

/// Empty where the ids of two traces differ only in bytes that are not UTF-8.
QByteArray written(const QList<TraceOutcome> &outcomes)
{
    QByteArray table = "rt\tid\tgroup\tintensity\n";
    QSet<QString> ids;
    for (const TraceOutcome &outcome : outcomes) {
        const Chromatogram &trace = outcome.chromatogram;
        if (outcome.problem.hasError())
            continue;
        if (ids.contains(trace.id) || trace.id.contains(QChar::ReplacementCharacter) || trace.id != trace.id.trimmed())
            return {};
        ids.insert(trace.id);
        for (const QPointF &point : trace.points)
            table += number(point.x()) + '\t' + trace.id.toUtf8() + '\t' + trace.origin.group.toUtf8() + '\t' +
                     number(point.y()) + '\n';
    }
    return ids.isEmpty() ? QByteArray() : table;
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
    const QByteArray table = written(outcomes);
    if (table.isEmpty())
        return;
    QList<TraceOutcome> again;
    const Reading reread = readTraces(openChromatograms({fileWith(NAME, table), {}, {}, true}), &again);
    outcomes.removeIf([](const TraceOutcome &outcome) { return outcome.problem.hasError(); });
    require(reread.error.isEmpty() && again.size() == outcomes.size(), "written traces are all read");
    for (qsizetype i = 0; i < again.size(); ++i)
        require(bitsOf(again[i]) == bitsOf(outcomes[i]), "a written trace reads the same");
}

} // namespace zav::fuzz
