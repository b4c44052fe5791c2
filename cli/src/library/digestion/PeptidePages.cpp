// SPDX-License-Identifier: Apache-2.0
#include "PeptidePages.h"

#include <cstring>
#include <utility>

namespace zav {

namespace {

template <typename T>
void put(QByteArray *bytes, T value)
{
    bytes->append(reinterpret_cast<const char *>(&value), sizeof value);
}

template <typename T>
T take(const char **from)
{
    T value{};
    std::memcpy(&value, *from, sizeof value);
    *from += sizeof value;
    return value;
}

// Bits of a peptide's second number.
enum Flag : quint8 { IsDecoy = 1, AtStart = 2, AtEnd = 4, IsPlain = 8, HasNamed = 16 };

quint8 flagsOf(const LibraryPeptide &peptide)
{
    return static_cast<quint8>((peptide.isDecoy ? IsDecoy : 0) | (peptide.ends.start ? AtStart : 0) |
                               (peptide.ends.end ? AtEnd : 0) | (peptide.isPlain ? IsPlain : 0) |
                               (peptide.named.isEmpty() ? 0 : HasNamed));
}

void putTexts(QByteArray *bytes, const QList<QByteArray> &texts)
{
    put(bytes, static_cast<quint32>(texts.size()));
    for (const QByteArray &text : texts) {
        put(bytes, static_cast<quint32>(text.size()));
        bytes->append(text);
    }
}

QList<QByteArray> takeTexts(const char **from)
{
    QList<QByteArray> texts(take<quint32>(from));
    for (QByteArray &text : texts) {
        const auto length = static_cast<qsizetype>(take<quint32>(from));
        text = QByteArray(*from, length);
        *from += length;
    }
    return texts;
}

} // namespace

void encodePeptide(const LibraryPeptide &peptide, QByteArray *bytes)
{
    put(bytes, static_cast<quint16>(peptide.sequence.size()));
    put(bytes, flagsOf(peptide));
    put(bytes, static_cast<quint32>(peptide.proteins.size()));
    bytes->append(peptide.sequence);
    for (const int protein : peptide.proteins)
        put(bytes, protein);
    if (!peptide.named.isEmpty())
        putTexts(bytes, peptide.named);
}

LibraryPeptide decodePeptide(const char **from)
{
    LibraryPeptide peptide;
    const qsizetype length = take<quint16>(from);
    const auto flags = take<quint8>(from);
    peptide.isDecoy = (flags & IsDecoy) != 0;
    peptide.ends = {(flags & AtStart) != 0, (flags & AtEnd) != 0};
    peptide.isPlain = (flags & IsPlain) != 0;
    const auto proteinCount = static_cast<qsizetype>(take<quint32>(from));
    peptide.sequence = QByteArrayView(*from, length);
    *from += length;
    peptide.proteins.reserve(proteinCount);
    for (qsizetype i = 0; i < proteinCount; ++i)
        peptide.proteins.append(take<int>(from));
    if ((flags & HasNamed) != 0)
        peptide.named = takeTexts(from);
    return peptide;
}

void PeptideBlock::clear()
{
    m_peptides.clear();
    m_memory.clear();
}

void PeptideBlock::append(const QByteArray &encoded)
{
    m_memory.append(encoded);
    const char *from = encoded.constData();
    const char *end = from + encoded.size();
    while (from < end)
        m_peptides.append(decodePeptide(&from));
}

PeptidePages::PeptidePages(const SortingSpace &space)
    : m_file(space.onDisk ? std::make_unique<TemporaryStore>(space) : nullptr)
{}

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
    if (!m_file) {
        bytes.squeeze();
        m_pages.append(bytes);
        return {};
    }
    m_offsets.append(m_file->size());
    return m_file->append(bytes);
}

Error PeptidePages::readPage(qint64 page, PeptideBlock *block)
{
    if (!m_file) {
        block->append(m_pages[page]);
        return {};
    }
    const Result<QByteArray> bytes = m_file->read(m_offsets[page], m_offsets[page + 1] - m_offsets[page]);
    if (bytes.hasError())
        return bytes.error();
    block->append(bytes.value());
    return {};
}

void PeptidePages::release(qint64 page)
{
    if (!m_file)
        m_pages[page].clear();
}

bool PeptideCursor::next()
{
    if (m_index + 1 < m_block.size()) {
        ++m_index;
        return true;
    }
    return readPage();
}

bool PeptideCursor::readPage()
{
    m_block.clear();
    m_index = 0;
    if (m_error.hasError() || m_page == m_pages->pageCount())
        return false;
    m_error = m_pages->readPage(m_page, &m_block);
    if (m_use == Consume)
        m_pages->release(m_page);
    ++m_page;
    return !m_error.hasError();
}

} // namespace zav
