// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PeptidePages.h"

namespace zav {

/// Walks over finished pages from front to back.
class PeptideCursor
{
public:
    enum Use { Keep, Consume }; ///< whether the memory of pages that were passed is given back

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
