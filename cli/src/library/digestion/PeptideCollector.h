// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PeptideDigest.h"
#include "RecordSorter.h"

#include <optional>

namespace zav {

/// Where the first letter stands that is none of the 20 standard amino acids, -1 where all are.
qsizetype firstNonstandardResidue(QByteArrayView sequence);

/// One of the places at which a peptide was found.
struct PeptidePlace
{
    std::optional<int> protein{}; ///< index in the table of proteins; none where a list does not say
    ProteinEnds ends{};
    QByteArray named{}; ///< ProForma, where a list names the peptide with modifications
};

/// Gathers the peptides of a library, in any order, and makes the ordered set of them.
class PeptideCollector
{
public:
    PeptideCollector(const PeptideRequest &request, DecoyMaker::FixedEnd fixedEnd, const DigestionHooks &hooks);

    ProteinTable &proteins() { return m_proteins; }
    DigestionCounts &counts() { return m_counts; }

    /// Adds a peptide at one of its places. A peptide with a residue outside the 20 is skipped and told to the hook.
    Error add(QByteArrayView peptide, const PeptidePlace &place);

    /// Tells the hook of a peptide that is no part of the library.
    Error skip(QByteArrayView peptide, std::optional<int> protein, const QString &reason);

    /// The same for a text that names no peptide.
    Error skipUnreadable(QByteArrayView text, std::optional<int> protein, const QString &reason);

    /// Nothing may be added afterwards.
    Result<DigestedPeptides> finish();

private:
    Error tell(QByteArrayView peptide, std::optional<int> protein, const QString &reason);
    Result<PeptidePages> distinctTargets();
    Result<PeptidePages> withDecoys(PeptidePages targets);

    PeptideRequest m_request;
    DecoyMaker m_maker;
    DigestionHooks m_hooks;
    RecordSorter m_sorter;
    ProteinTable m_proteins;
    DigestionCounts m_counts;
};

} // namespace zav
