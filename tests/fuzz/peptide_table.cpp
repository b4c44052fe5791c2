// SPDX-License-Identifier: Apache-2.0
//
// Door: a list of peptides for a library, by the options of the first bytes.
// Promises: peptides have the residues and lengths asked for, ascend and are distinct; memory and disk, plain and
// gzipped content give the same.
#include "DigestionSupport.h"

namespace zav::fuzz {

void tryInput(const QByteArray &input)
{
    QByteArray table = input;
    const PeptideRequest request = takeRequest(&table);
    const Reading reading = readBothWays(
        "input.tsv", table, [&](const QString &path) { return readingOf(readPeptideTable(path, request)); });
    const QString path = fileWith("input.tsv", table);
    require(readingOf(readPeptideTable(path, onDisk(request))) == reading, "memory and disk give the same");
    QList<QByteArray> targets;
    readingOf(readPeptideTable(path, request), &targets);
    requireLengths(targets, request.digestion);
}

} // namespace zav::fuzz
