// SPDX-License-Identifier: Apache-2.0
#include "PeptideUniter.h"

#include <algorithm>
#include <utility>

namespace zav {

Error PeptideUniter::add(const LibraryPeptide &peptide)
{
    if (m_holdsPeptide && peptide.sequence == m_sequence) {
        m_peptide.proteins.append(peptide.proteins);
        ++m_unitedCount;
        return {};
    }
    if (Error error = flush(); error.hasError())
        return error;
    m_holdsPeptide = true;
    m_sequence.resize(0);
    m_sequence.append(peptide.sequence);
    m_peptide = peptide;
    return {};
}

Error PeptideUniter::finish()
{
    if (Error error = flush(); error.hasError())
        return error;
    return m_pages->finish();
}

Error PeptideUniter::flush()
{
    if (!std::exchange(m_holdsPeptide, false))
        return {};
    QList<int> &proteins = m_peptide.proteins;
    std::sort(proteins.begin(), proteins.end());
    proteins.erase(std::unique(proteins.begin(), proteins.end()), proteins.end());
    m_peptide.sequence = m_sequence;
    return m_pages->append(m_peptide);
}

} // namespace zav
