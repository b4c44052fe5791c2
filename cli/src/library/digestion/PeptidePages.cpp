// SPDX-License-Identifier: Apache-2.0
#include "PeptidePages.h"

#include "PeptideCodec.h"
#include "TemporaryStore.h"

#include <utility>

namespace zav {

PeptidePages::PeptidePages(const SortingSpace &space) : m_space(space) {}
PeptidePages::~PeptidePages() = default;
PeptidePages::PeptidePages(PeptidePages &&) noexcept = default;
PeptidePages &PeptidePages::operator=(PeptidePages &&) noexcept = default;

Error PeptidePages::append(const LibraryPeptide &peptide)
{
    encodePeptide(peptide, &m_open);
    ++m_count;
    return m_count % PEPTIDES_IN_PAGE == 0 ? writePage() : Error();
}

Error PeptidePages::finish()
{
    if (!m_open.isEmpty()) {
        if (Error error = writePage(); error.hasError())
            return error;
    }
    if (m_file)
        m_offsets.append(m_file->size());
    return {};
}

Error PeptidePages::writePage()
{
    QByteArray bytes = std::exchange(m_open, {});
    if (!m_space.onDisk) {
        bytes.squeeze();
        m_pages.append(bytes);
        return {};
    }
    if (!m_file) {
        m_file = std::make_unique<TemporaryStore>(m_space.temporaryFolder);
        if (Error error = m_file->open(); error.hasError())
            return error;
    }
    m_offsets.append(m_file->size());
    return m_file->append(bytes);
}

Error PeptidePages::readPage(qint64 page, PeptideBlock *block)
{
    const Result<QByteArray> bytes = this->page(page);
    if (bytes.hasError())
        return bytes.error();
    block->keep(bytes.value());
    const char *from = bytes.value().constData();
    const char *end = from + bytes.value().size();
    while (from < end)
        block->append(decodePeptide(&from));
    return {};
}

Result<QByteArray> PeptidePages::page(qint64 page)
{
    if (!m_space.onDisk)
        return m_pages[page];
    return m_file->read(m_offsets[page], m_offsets[page + 1] - m_offsets[page]);
}

void PeptidePages::release(qint64 page)
{
    if (!m_space.onDisk)
        m_pages[page].clear();
}

} // namespace zav
