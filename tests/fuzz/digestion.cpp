// SPDX-License-Identifier: Apache-2.0
//
// Door: proteins that are digested, by the options of the first bytes.
// Promises: peptides have the residues and lengths asked for, ascend and are distinct; memory and disk give the same;
// the digest of a digest holds nothing new.
#include "DigestionSupport.h"

#include <QtCore/QSet>

namespace zav::fuzz {
namespace {

/// Glu-C looks at the residue before its own, which a peptide may lack; ends that may lie anywhere and a lost
/// methionine make new ends.
bool isClosed(const DigestionOptions &options)
{
    return !options.semiSpecific && !options.removesMethionine && options.enzyme != QLatin1String("Glu-C");
}

void requireNothingNew(const QList<QByteArray> &targets, PeptideRequest request)
{
    request.decoys.kind = DecoyKind::None;
    QByteArray fasta;
    for (const QByteArray &target : targets)
        fasta += ">P" + QByteArray::number(fasta.size()) + '\n' + target + '\n';
    if (fasta.isEmpty())
        return;
    QList<QByteArray> again;
    const Reading reading = readingOf(digestFasta(fileWith("again.fasta", fasta), request), &again);
    require(reading.error.isEmpty(), "peptides can be digested");
    require(QSet<QByteArray>(again.begin(), again.end()) == QSet<QByteArray>(targets.begin(), targets.end()),
            "the digest of a digest is the digest");
}

} // namespace

void tryInput(const QByteArray &input)
{
    QByteArray fasta = input;
    const PeptideRequest request = takeRequest(&fasta);
    const QString path = fileWith("input.fasta", fasta);
    QList<QByteArray> targets;
    const Reading inMemory = readingOf(digestFasta(path, request), &targets);
    require(readingOf(digestFasta(path, onDisk(request))) == inMemory, "memory and disk give the same");
    requireLengths(targets, request.digestion);
    if (isClosed(request.digestion))
        requireNothingNew(targets, request);
}

} // namespace zav::fuzz
