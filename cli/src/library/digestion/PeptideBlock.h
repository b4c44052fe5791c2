// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QList>

namespace zav {

/// A distinct peptide with every protein in which it was found.
struct LibraryPeptide
{
    QByteArrayView sequence; ///< upper-case one-letter code; valid as long as the block that it was read into
    QList<int> proteins;     ///< indices in the `ProteinTable`, ascending, each once; of a decoy: its targets'
    bool isDecoy = false;
};

/// Consecutive peptides, together with the memory that their sequences lie in. Copies share that memory.
class PeptideBlock
{
public:
    void clear();

    /// Holds on to bytes that sequences of peptides lie in; for `append`.
    void keep(const QByteArray &memory) { m_memory.append(memory); }

    /// Appends a peptide whose sequence lies in memory that the block keeps.
    void append(const LibraryPeptide &peptide) { m_peptides.append(peptide); }

    /// Keeps the `length` peptides from `first` on and drops the others.
    void trim(qsizetype first, qsizetype length) { m_peptides = m_peptides.mid(first, length); }

    qsizetype size() const { return m_peptides.size(); }
    bool isEmpty() const { return m_peptides.isEmpty(); }
    const LibraryPeptide &operator[](qsizetype i) const { return m_peptides[i]; }
    auto begin() const { return m_peptides.cbegin(); }
    auto end() const { return m_peptides.cend(); }

private:
    QList<QByteArray> m_memory;
    QList<LibraryPeptide> m_peptides;
};

inline void PeptideBlock::clear()
{
    m_peptides.clear();
    m_memory.clear();
}

} // namespace zav
