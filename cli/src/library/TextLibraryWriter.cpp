// SPDX-License-Identifier: Apache-2.0
#include "TextLibraryWriter.h"

#include "EntryNumbering.h"
#include "PrintableText.h"

#include <QtCore/QFile>

#include <algorithm>

namespace zav {

namespace {

constexpr qint64 COPIED_AT_ONCE = 1 << 20;

Error readFailure(const QFile &file)
{
    return Error(Failure,
                 QStringLiteral("cannot read %1: %2").arg(displayText(file.fileName(), 300), file.errorString()));
}

} // namespace

TextLibraryWriter::TextLibraryWriter(LibraryFileKind kind, const QString &path, const LibraryInfo &info)
    : m_format(makeTextLibraryFormat(kind)), m_info(info), m_isNumbered(entryNumbering::isUsedBy(kind)), m_file(path)
{}

Error TextLibraryWriter::open()
{
    if (Error error = m_file.open(); error.hasError())
        return error;
    const QByteArray opening = m_format->opening(m_info);
    m_facts.openingSize = opening.size();
    return write(opening);
}

WrittenEntry TextLibraryWriter::encode(const LibraryEntry &entry) const
{
    return {m_format->entry(entry, 0), {}};
}

Error TextLibraryWriter::add(const WrittenEntry &entry)
{
    const qint64 index = m_facts.precursors++;
    return write(m_isNumbered ? entryNumbering::numberedEntry(entry.text, index) : entry.text);
}

Error TextLibraryWriter::append(const QString &path, const LibraryFileFacts &facts)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(facts.openingSize))
        return readFailure(file);
    const qint64 before = m_facts.precursors;
    Error error = appendEntries(&file, file.size() - facts.openingSize - facts.closingSize);
    m_facts.precursors = before + facts.precursors;
    return error;
}

/// `size` bytes from where the file stands.
Error TextLibraryWriter::appendEntries(QFile *file, qint64 size)
{
    while (size > 0) {
        const QByteArray bytes = m_isNumbered ? file->readLine() : file->read(std::min(size, COPIED_AT_ONCE));
        if (bytes.isEmpty())
            return readFailure(*file);
        size -= bytes.size();
        if (m_isNumbered && entryNumbering::isFirstLine(bytes))
            ++m_facts.precursors;
        Error error = write(m_isNumbered ? entryNumbering::numberedLine(bytes, m_facts.precursors - 1) : bytes);
        if (error.hasError())
            return error;
    }
    return {};
}

Result<LibraryFileFacts> TextLibraryWriter::finish()
{
    const QByteArray closing = m_format->closing();
    m_facts.closingSize = closing.size();
    if (Error error = write(closing); error.hasError())
        return error;
    if (Error error = m_file.commit(); error.hasError())
        return error;
    m_facts.sha256 = m_hash.result();
    return m_facts;
}

Error TextLibraryWriter::write(const QByteArray &bytes)
{
    m_hash.add(bytes);
    return m_file.write(bytes);
}

} // namespace zav
