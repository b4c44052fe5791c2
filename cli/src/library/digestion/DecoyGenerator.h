// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "DecoyMaker.h"
#include "Digestion.h"
#include "PeptidePages.h"
#include "RecordSorter.h"

#include <vector>

namespace zav {

/// Makes the decoys of ordered targets, none of which equals a target.
///
/// In rounds: the decoys proposed are sorted and compared with the targets side by side, and targets whose decoy
/// equals one are tried again in the next round. So it needs no look-up among all targets, which on disk would be slow.
class DecoyGenerator
{
public:
    DecoyGenerator(const DecoyMaker &maker, const SortingSpace &space, const DigestionHooks &hooks,
                   DigestionCounts *counts)
        : m_maker(maker), m_space(space), m_hooks(hooks), m_counts(counts)
    {}

    /// The decoys of each round, in order; the same decoy may come in several.
    Result<std::vector<PeptidePages>> generate(PeptidePages *targets);

private:
    LibraryPeptide decoyOf(const LibraryPeptide &target, int attempt, QByteArrayView sequence) const;
    Error proposeForAll(PeptidePages *targets, RecordSorter *proposals);
    Error propose(const LibraryPeptide &target, int attempt, RecordSorter *proposals);
    Error settle(PeptidePages *targets, RecordStream *proposals, PeptidePages *decoys, RecordSorter *again);

    DecoyMaker m_maker;
    SortingSpace m_space;
    DigestionHooks m_hooks;
    DigestionCounts *m_counts;
};

} // namespace zav
