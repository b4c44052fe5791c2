// SPDX-License-Identifier: Apache-2.0
#include "DecoyGenerator.h"

#include "PeptideMerge.h"

#include <utility>

namespace zav {

namespace {

// The payload of a proposed decoy: the attempt that made it, its target.
QByteArray encode(int attempt, const LibraryPeptide &target)
{
    QByteArray bytes(1, static_cast<char>(attempt));
    encodePeptide(target, &bytes);
    return bytes;
}

// The targets in step with the proposals.
class TargetLookup
{
public:
    explicit TargetLookup(PeptidePages *targets) : m_cursor(targets, PeptideCursor::Keep), m_holds(m_cursor.next()) {}

    // For ascending sequences.
    bool contains(QByteArrayView sequence)
    {
        while (m_holds && compareBytes(m_cursor.peptide().sequence, sequence) < 0)
            m_holds = m_cursor.next();
        return m_holds && m_cursor.peptide().sequence == sequence;
    }

    Error error() const { return m_cursor.error(); }

private:
    PeptideCursor m_cursor;
    bool m_holds;
};

} // namespace

Result<std::vector<PeptidePages>> DecoyGenerator::generate(PeptidePages *targets)
{
    std::vector<PeptidePages> rounds;
    RecordSorter proposals(m_space);
    if (Error error = proposeForAll(targets, &proposals); error.hasError())
        return error;
    while (!proposals.isEmpty()) {
        const Result<std::unique_ptr<RecordStream>> sorted = proposals.finish();
        if (sorted.hasError())
            return sorted.error();
        RecordSorter again(m_space);
        rounds.emplace_back(m_space);
        if (Error error = settle(targets, sorted.value().get(), &rounds.back(), &again); error.hasError())
            return error;
        proposals = std::move(again);
    }
    return rounds;
}

Error DecoyGenerator::proposeForAll(PeptidePages *targets, RecordSorter *proposals)
{
    PeptideCursor cursor(targets, PeptideCursor::Keep);
    while (cursor.next()) {
        if (Error error = m_hooks.checkForInterrupt(); error.hasError())
            return error;
        if (Error error = propose(cursor.peptide(), 0, proposals); error.hasError())
            return error;
    }
    return cursor.error();
}

Error DecoyGenerator::propose(const LibraryPeptide &target, int attempt, RecordSorter *proposals)
{
    if (attempt == m_maker.attemptCount()) {
        ++m_counts->decoysEqualToTarget;
        return {};
    }
    const std::optional<QByteArray> decoy = m_maker.makeAcceptable(target.sequence, &attempt);
    if (!decoy) {
        ++m_counts->decoysTooSimilar;
        return {};
    }
    return proposals->add({*decoy, encode(attempt, target)});
}

LibraryPeptide DecoyGenerator::decoyOf(const LibraryPeptide &target, int attempt, QByteArrayView sequence) const
{
    LibraryPeptide decoy = target;
    decoy.sequence = sequence;
    decoy.isDecoy = true;
    for (QByteArray &named : decoy.named)
        named = m_maker.makeNamed(named, attempt);
    return decoy;
}

Error DecoyGenerator::settle(PeptidePages *targets, RecordStream *proposals, PeptidePages *decoys, RecordSorter *again)
{
    TargetLookup lookup(targets);
    PeptideUniter united(decoys);
    while (proposals->next()) {
        if (Error error = m_hooks.checkForInterrupt(); error.hasError())
            return error;
        const QByteArrayView sequence = proposals->record().key;
        const QByteArrayView payload = proposals->record().payload;
        const int attempt = payload.front();
        const char *from = payload.data() + 1;
        const LibraryPeptide target = decodePeptide(&from);
        Error error = lookup.contains(sequence) ? propose(target, attempt + 1, again)
                                                : united.add(decoyOf(target, attempt, sequence));
        if (error.hasError())
            return error;
    }
    if (proposals->error().hasError())
        return proposals->error();
    if (lookup.error().hasError())
        return lookup.error();
    Error error = united.finish();
    m_counts->decoysShared += united.unitedCount();
    return error;
}

} // namespace zav
