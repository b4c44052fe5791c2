// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FuzzSupport.h"
#include "PeptideDigest.h"
#include "RecordSorter.h"

#include <algorithm>

namespace zav::fuzz {

/// The options that the first bytes of an input stand for, which are taken off it.
inline PeptideRequest takeRequest(QByteArray *input)
{
    static const QStringList enzymes = {
        QStringLiteral("Trypsin"), QStringLiteral("Trypsin/P"),  QStringLiteral("Lys-N"),
        QStringLiteral("V8-DE"),   QStringLiteral("Asp-N"),      QStringLiteral("PepsinA"),
        QStringLiteral("none"),    QStringLiteral("unspecific"), QStringLiteral("Glu-C")};
    const auto take = [input](int count) {
        const int value = input->isEmpty() ? 0 : static_cast<unsigned char>(input->front()) % count;
        input->remove(0, 1);
        return value;
    };
    PeptideRequest request;
    request.digestion.enzyme = enzymes[take(static_cast<int>(enzymes.size()))];
    request.digestion.missedCleavages = take(4);
    request.digestion.minimumLength = 1 + take(8);
    request.digestion.maximumLength = request.digestion.minimumLength + take(30);
    const int flags = take(16);
    request.digestion.semiSpecific = (flags & 1) != 0;
    request.digestion.removesMethionine = (flags & 2) != 0;
    request.decoys.kind = static_cast<DecoyKind>((flags >> 2) % 3);
    return request;
}

/// Peptides with their proteins in order, and the counts at the end.
inline Reading readingOf(const Result<DigestedPeptides> &digested, QList<QByteArray> *targets = nullptr)
{
    if (digested.hasError()) {
        require(!digested.error().message().isEmpty(), "a failure says why");
        return {{}, digested.error().message()};
    }
    PeptideSet &peptides = *digested.value().peptides;
    PeptideBlock block;
    require(!peptides.read(0, peptides.count(), &block).hasError() && block.size() == peptides.count(),
            "every peptide can be read");
    Reading reading;
    for (const LibraryPeptide &peptide : block) {
        QByteArray part = bits(peptide.sequence.toByteArray(), peptide.proteins, peptide.isDecoy, peptide.ends.start,
                               peptide.ends.end, peptide.isPlain, peptide.named);
        for (const int protein : peptide.proteins)
            part += peptides.proteins().protein(protein, peptide.isDecoy).accession.toUtf8();
        reading.parts.append(part);
        if (targets && !peptide.isDecoy)
            targets->append(peptide.sequence.toByteArray());
    }
    for (qsizetype i = 1; i < block.size(); ++i)
        require(compareBytes(block[i - 1].sequence, block[i].sequence) < 0, "peptides ascend and none comes twice");
    const DigestionCounts &counts = digested.value().counts;
    require(counts.targets ==
                    counts.decoys + counts.decoysEqualToTarget + counts.decoysTooSimilar + counts.decoysShared ||
                counts.decoys == 0,
            "the counts of decoys add up to the targets");
    reading.parts.append(bits(counts.proteins, counts.repeatedAccessions, counts.emptyProteins, counts.skipped,
                              counts.unreadable, counts.targets, counts.decoys));
    return reading;
}

/// On disk with so little memory that a few peptides make a run.
inline PeptideRequest onDisk(PeptideRequest request)
{
    request.space.onDisk = true;
    request.space.memoryLimit = 256;
    return request;
}

inline void requireLengths(const QList<QByteArray> &targets, const DigestionOptions &options)
{
    for (const QByteArray &target : targets) {
        require(target.size() >= options.minimumLength && target.size() <= options.maximumLength,
                "peptides have the lengths that were asked for");
        require(std::all_of(target.begin(), target.end(),
                            [](char c) { return QByteArrayView("ACDEFGHIKLMNPQRSTVWY").contains(c); }),
                "peptides consist of the 20 residues");
    }
}

} // namespace zav::fuzz
