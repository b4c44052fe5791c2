// SPDX-License-Identifier: Apache-2.0
#include "PeptideCollector.h"

#include "DecoyGenerator.h"
#include "PeptideMerge.h"
#include "PrintableText.h"

#include <QtCore/QVarLengthArray>
#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace zav {

namespace {

constexpr auto makeStandardTable()
{
    std::array<bool, 256> table{};
    for (const char letter : std::string_view("ACDEFGHIKLMNPQRSTVWY"))
        table[static_cast<unsigned char>(letter)] = true;
    return table;
}

constexpr std::array<bool, 256> IS_STANDARD = makeStandardTable();

// The payload of a place: what of it is there, the protein, what a list names.
enum Flag : char { HasProtein = 1, AtStart = 2, AtEnd = 4 };

QVarLengthArray<char, 64> encode(const PeptidePlace &place)
{
    const int flags =
        (place.protein ? HasProtein : 0) | (place.ends.start ? AtStart : 0) | (place.ends.end ? AtEnd : 0);
    QVarLengthArray<char, 64> bytes(1, static_cast<char>(flags));
    if (place.protein) {
        char index[sizeof(qint32)];
        qToBigEndian<qint32>(*place.protein, index);
        bytes.append(index, sizeof index);
    }
    bytes.append(place.named.constData(), place.named.size());
    return bytes;
}

LibraryPeptide decode(const Record &place)
{
    LibraryPeptide peptide{place.key, {}, false};
    const char flags = place.payload.front();
    qsizetype read = 1;
    if ((flags & HasProtein) != 0) {
        peptide.proteins.append(qFromBigEndian<qint32>(place.payload.data() + read));
        read += sizeof(qint32);
    }
    peptide.ends = {(flags & AtStart) != 0, (flags & AtEnd) != 0};
    peptide.isPlain = read == place.payload.size();
    if (!peptide.isPlain)
        peptide.named.append(place.payload.sliced(read).toByteArray());
    return peptide;
}

} // namespace

qsizetype firstNonstandardResidue(QByteArrayView sequence)
{
    const auto *found = std::find_if(sequence.begin(), sequence.end(),
                                     [](char letter) { return !IS_STANDARD[static_cast<unsigned char>(letter)]; });
    return found == sequence.end() ? -1 : found - sequence.begin();
}

PeptideCollector::PeptideCollector(const PeptideRequest &request, DecoyMaker::FixedEnd fixedEnd,
                                   const DigestionHooks &hooks)
    : m_request(request), m_maker(request.decoys, fixedEnd), m_hooks(hooks), m_sorter(request.space)
{}

Error PeptideCollector::add(QByteArrayView peptide, const PeptidePlace &place)
{
    if (Error error = m_hooks.checkForInterrupt(); error.hasError())
        return error;
    if (const qsizetype index = firstNonstandardResidue(peptide); index >= 0)
        return skip(peptide, place.protein,
                    QStringLiteral("residue %1 at position %2")
                        .arg(displayText(QString::fromLatin1(peptide.sliced(index, 1))))
                        .arg(index + 1));
    const auto payload = encode(place);
    return m_sorter.add({peptide, {payload.data(), payload.size()}});
}

Error PeptideCollector::skip(QByteArrayView peptide, std::optional<int> protein, const QString &reason)
{
    ++m_counts.skipped;
    return tell(peptide, protein, reason);
}

Error PeptideCollector::skipUnreadable(QByteArrayView text, std::optional<int> protein, const QString &reason)
{
    ++m_counts.unreadable;
    return tell(text, protein, reason);
}

Error PeptideCollector::tell(QByteArrayView peptide, std::optional<int> protein, const QString &reason)
{
    if (!m_hooks.skipped)
        return {};
    return m_hooks.skipped(
        {protein ? m_proteins.protein(*protein).accession : QString(), QString::fromUtf8(peptide), reason});
}

Result<DigestedPeptides> PeptideCollector::finish()
{
    Result<PeptidePages> targets = distinctTargets();
    if (targets.hasError())
        return targets.error();
    m_counts.targets = targets.value().count();
    Result<PeptidePages> all = withDecoys(std::move(targets).value());
    if (all.hasError())
        return all.error();
    m_counts.decoys = all.value().count() - m_counts.targets;
    DigestedPeptides digested;
    digested.peptides = std::make_unique<PeptideSet>(std::move(all).value(), std::move(m_proteins));
    digested.counts = m_counts;
    return digested;
}

Result<PeptidePages> PeptideCollector::distinctTargets()
{
    const Result<std::unique_ptr<RecordStream>> sorted = m_sorter.finish();
    if (sorted.hasError())
        return sorted.error();
    RecordStream &places = *sorted.value();
    PeptidePages targets(m_request.space);
    PeptideUniter united(&targets);
    while (places.next()) {
        if (Error error = m_hooks.checkForInterrupt(); error.hasError())
            return error;
        if (Error error = united.add(decode(places.record())); error.hasError())
            return error;
    }
    if (places.error().hasError())
        return places.error();
    if (Error error = united.finish(); error.hasError())
        return error;
    return targets;
}

Result<PeptidePages> PeptideCollector::withDecoys(PeptidePages targets)
{
    if (m_request.decoys.kind == DecoyKind::None)
        return targets;
    DecoyGenerator generator(m_maker, m_request.space, m_hooks, &m_counts);
    Result<std::vector<PeptidePages>> rounds = generator.generate(&targets);
    if (rounds.hasError())
        return rounds.error();
    std::vector<PeptidePages> parts = std::move(rounds).value();
    parts.push_back(std::move(targets));
    qint64 sharedByRounds = 0;
    Result<PeptidePages> merged = mergePeptides(std::move(parts), m_request.space, m_hooks, &sharedByRounds);
    m_counts.decoysShared += sharedByRounds;
    return merged;
}

} // namespace zav
