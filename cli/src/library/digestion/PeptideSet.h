// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PeptidePages.h"
#include "ProteinTable.h"

namespace zav {

/// The distinct peptides of a library and their proteins, in memory or in a temporary file. Targets and decoys are in
/// one order: by their sequence, as `memcmp` compares. No sequence occurs twice, as a decoy that equals a target is
/// none. Immutable.
class PeptideSet
{
public:
    /// `pages` are finished and in order.
    PeptideSet(PeptidePages pages, ProteinTable proteins) : m_pages(std::move(pages)), m_proteins(std::move(proteins))
    {}

    qint64 count() const { return m_pages.count(); }

    /// Puts the peptides [first, end) in place of what `out` held. Random access, at its fastest from front to back.
    /// One thread at a time.
    ///
    /// `InvalidInput` for a range that is not within 0 to `count()`, `Failure` when a temporary file cannot be read;
    /// `out` is empty then.
    Error read(qint64 first, qint64 end, PeptideBlock *out);

    /// The proteins that the peptides' indices count. Any thread may read it.
    const ProteinTable &proteins() const { return m_proteins; }

private:
    PeptidePages m_pages;
    ProteinTable m_proteins;
};

} // namespace zav
