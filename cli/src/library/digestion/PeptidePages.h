// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ModificationRule.h"
#include "SortingSpace.h"

#include <zav/Result.h>

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QList>

#include <memory>

namespace zav {

/// A distinct peptide with every protein in which it was found.
struct LibraryPeptide
{
    QByteArrayView sequence; ///< upper-case one-letter code; valid as long as the block that it was read into
    QList<int> proteins;     ///< indices in the `ProteinTable`, ascending, each once; of a decoy: its targets'
    bool isDecoy = false;
    ProteinEnds ends{}; ///< of a decoy: its targets'

    /// Whether it is meant with the modifications of the library's rules, as every peptide of a protein is. A list may
    /// name a peptide with modifications only.
    bool isPlain = true;

    /// The peptidoforms that a list names, in ProForma, in the order of their bytes, each once.
    QList<QByteArray> named{};
};

/// Appends a peptide as bytes: lengths, sequence, indices of the proteins, what a list names. 7 bytes beside the
/// sequence and 4 a protein, in the byte order of this machine: they are not meant to leave it.
void encodePeptide(const LibraryPeptide &peptide, QByteArray *bytes);

/// The peptide that begins at `*from`, which moves behind it. The sequence is a view into the bytes.
LibraryPeptide decodePeptide(const char **from);

/// Consecutive peptides, together with the memory that their sequences lie in. Copies share that memory.
class PeptideBlock
{
public:
    void clear();

    /// Appends the peptides that `encodePeptide` made these bytes of, and holds on to the bytes.
    void append(const QByteArray &encoded);

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

/// Ordered peptides in pages of 256, in memory or in a temporary file. A peptide needs its sequence, 7 bytes, 4 for
/// each protein, and the texts that a list names; on disk memory holds the page being written and 8 bytes for every
/// other.
class PeptidePages
{
public:
    static constexpr qint64 PEPTIDES_IN_PAGE = 256;

    explicit PeptidePages(const SortingSpace &space);

    /// Appends a peptide; the caller keeps the order. `Failure` when the file cannot be written.
    Error append(const LibraryPeptide &peptide);

    /// Writes what is left. Has to come, and succeed, between the last `append` and the first `readPage`.
    Error finish();

    qint64 count() const { return m_count; }
    qint64 pageCount() const { return (m_count + PEPTIDES_IN_PAGE - 1) / PEPTIDES_IN_PAGE; }

    /// Appends the peptides of a page to a block.
    Error readPage(qint64 page, PeptideBlock *block);

    /// Frees the memory of a page, which must not be read again. Does nothing on disk.
    void release(qint64 page);

private:
    Error writePage();

    qint64 m_count = 0;
    QByteArray m_open; // the page being filled
    QList<QByteArray> m_pages;
    std::unique_ptr<TemporaryStore> m_file; // null: in memory
    QList<qint64> m_offsets;                // of the pages in the file
};

/// Walks over finished pages from front to back.
class PeptideCursor
{
public:
    enum Use { Keep, Consume }; ///< whether the memory of passed pages is freed

    PeptideCursor(PeptidePages *pages, Use use) : m_pages(pages), m_use(use) {}

    /// Moves to the next peptide; false at the end and after a failure, which `error` tells apart.
    bool next();

    /// Its sequence is valid until the next call of `next`.
    const LibraryPeptide &peptide() const { return m_block[m_index]; }
    Error error() const { return m_error; }

private:
    bool readPage();

    PeptidePages *m_pages;
    Use m_use;
    qint64 m_page = 0; // the next one
    PeptideBlock m_block;
    qsizetype m_index = -1;
    Error m_error;
};

} // namespace zav
