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

/// Empty where the ids of two traces differ only in bytes that are not UTF-8.
QByteArray written(const QList<TraceOutcome> &outcomes)
{
    QByteArray table = "rt\tid\tgroup\tintensity\n";
    QSet<QString> ids;
    for (const TraceOutcome &outcome : outcomes) {
        const Chromatogram &trace = outcome.chromatogram;
        if (ids.contains(trace.id) || trace.id.contains(QChar::ReplacementCharacter) || trace.id != trace.id.trimmed())
            return {};
        ids.insert(trace.id);
        for (const QPointF &point : trace.points)
            table += numberText(point.x()) + '\t' + trace.id.toUtf8() + '\t' + trace.origin.group.toUtf8() + '\t' +
                     numberText(point.y()) + '\n';
    }
    return ids.isEmpty() ? QByteArray() : table;
}

} // namespace

void tryInput(const QByteArray &input)
{
    const QList<TraceOutcome> outcomes = requireReading(NAME, input);
    const QByteArray table = written(outcomes);
    if (!table.isEmpty())
        requireSame(NAME, table, outcomes);
}

} // namespace zav::fuzz
