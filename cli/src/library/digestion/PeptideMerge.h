// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Digestion.h"
#include "PeptidePages.h"

#include <vector>

namespace zav {

/// Turns peptides in order, in which a sequence may come several times in a row, into distinct ones with the proteins
/// of all, their ends and their named peptidoforms.
class PeptideUniter
{
public:
    /// Appends to `pages`.
    explicit PeptideUniter(PeptidePages *pages) : m_pages(pages) {}

    Error add(const LibraryPeptide &peptide);

    /// Has to come last; finishes the pages.
    Error finish();

    /// How many peptides were united with one before.
    qint64 unitedCount() const { return m_unitedCount; }

private:
    Error flush();

    PeptidePages *m_pages;
    bool m_holdsPeptide = false;
    QByteArray m_sequence;
    LibraryPeptide m_peptide; // its sequence stands above
    qint64 m_unitedCount = 0;
};

/// Merges parts into one, in order and each sequence once. The parts are finished and in order; their memory is freed
/// on the way. `*unitedCount` says how many peptides of the parts were the same as another.
Result<PeptidePages> mergePeptides(std::vector<PeptidePages> parts, const SortingSpace &space,
                                   const DigestionHooks &hooks, qint64 *unitedCount);

} // namespace zav
