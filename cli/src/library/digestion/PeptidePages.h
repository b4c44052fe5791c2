// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PeptideBlock.h"
#include "SortingSpace.h"

#include <zav/Result.h>

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <memory>

namespace zav {

class TemporaryStore;

/// Ordered peptides in pages of 256, in memory or in a temporary file. A peptide needs its sequence, 7 bytes and 4 for
/// each protein; on disk memory holds the page being written and 8 bytes for every other.
class PeptidePages
{
public:
    static constexpr qint64 PEPTIDES_IN_PAGE = 256;

    explicit PeptidePages(const SortingSpace &space);
    ~PeptidePages();
    PeptidePages(PeptidePages &&) noexcept;
    PeptidePages &operator=(PeptidePages &&) noexcept;

    /// Appends a peptide; the caller keeps the order. `Failure` when the file cannot be written.
    Error append(const LibraryPeptide &peptide);

    /// Writes what is left. Has to come, and succeed, between the last `append` and the first `readPage`.
    Error finish();

    qint64 count() const { return m_count; }
    qint64 pageCount() const { return (m_count + PEPTIDES_IN_PAGE - 1) / PEPTIDES_IN_PAGE; }

    /// Appends the peptides of a page to a block.
    Error readPage(qint64 page, PeptideBlock *block);

    /// Gives the memory of a page back, which is not to be read again. Does nothing on disk.
    void release(qint64 page);

private:
    Error writePage();
    Result<QByteArray> page(qint64 page);

    SortingSpace m_space;
    qint64 m_count = 0;
    QByteArray m_open; // the page being filled
    QList<QByteArray> m_pages;
    std::unique_ptr<TemporaryStore> m_file;
    QList<qint64> m_offsets; // of the pages in the file
};

} // namespace zav
