// SPDX-License-Identifier: Apache-2.0
#include "PeptideCollector.h"

#include "DecoyGenerator.h"
#include "PeptideMerge.h"
#include "PrintableText.h"

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

Error PeptideCollector::add(QByteArrayView peptide, std::optional<int> protein)
{
    if (Error error = m_hooks.checkForInterrupt(); error.hasError())
        return error;
    if (const qsizetype place = firstNonstandardResidue(peptide); place >= 0)
        return skip(peptide, protein,
                    QStringLiteral("residue %1 at position %2")
                        .arg(displayText(QString::fromLatin1(peptide.sliced(place, 1))))
                        .arg(place + 1));
    if (!protein)
        return m_sorter.add({peptide, {}});
    // Big-endian, so that the order of the bytes is that of the numbers.
    char payload[sizeof(qint32)];
    qToBigEndian<qint32>(*protein, payload);
    return m_sorter.add({peptide, {payload, sizeof payload}});
}

Error PeptideCollector::skip(QByteArrayView peptide, std::optional<int> protein, const QString &reason)
{
    ++m_counts.skipped;
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
        const Record place = places.record();
        LibraryPeptide peptide{place.key, {}, false};
        if (!place.payload.isEmpty())
            peptide.proteins.append(qFromBigEndian<qint32>(place.payload.data()));
        if (Error error = united.add(peptide); error.hasError())
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
