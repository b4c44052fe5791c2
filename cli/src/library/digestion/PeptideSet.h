// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PeptidePages.h"
#include "PeptideSource.h"

namespace zav {

/// The peptides of a library, in memory or in a temporary file, and their proteins.
class PeptideSet : public PeptideSource
{
public:
    /// `pages` are finished and in order.
    PeptideSet(PeptidePages pages, ProteinTable proteins) : m_pages(std::move(pages)), m_proteins(std::move(proteins))
    {}

    qint64 count() const override { return m_pages.count(); }
    Error read(qint64 first, qint64 end, PeptideBlock *out) override;
    const ProteinTable &proteins() const override { return m_proteins; }

private:
    PeptidePages m_pages;
    ProteinTable m_proteins;
};

} // namespace zav
