// SPDX-License-Identifier: Apache-2.0
#include "SqliteLibraryWriter.h"

#include "FileDigest.h"

namespace zav {

SqliteLibraryWriter::SqliteLibraryWriter(LibraryFileKind kind, const QString &path, const LibraryInfo &info)
    : m_library(makeSqliteLibrary(kind)), m_path(path), m_info(info)
{}

Error SqliteLibraryWriter::open()
{
    return m_library->open(m_path, m_info);
}

WrittenEntry SqliteLibraryWriter::encode(const LibraryEntry &entry) const
{
    auto row = std::make_shared<EncodedEntry>(m_library->encode(entry));
    return row->peakCount == 0 ? WrittenEntry() : WrittenEntry{{}, std::move(row)};
}

Error SqliteLibraryWriter::add(const WrittenEntry &entry)
{
    ++m_facts.precursors;
    return m_library->add(*entry.row);
}

Error SqliteLibraryWriter::append(const QString &path, const LibraryFileFacts &facts)
{
    m_facts.precursors += facts.precursors;
    return m_library->append(path);
}

/// A database is not written from front to back, so its digest is made of the file.
Result<LibraryFileFacts> SqliteLibraryWriter::finish()
{
    if (Error error = m_library->finish(); error.hasError())
        return error;
    const Result<QByteArray> digest = fileSha256(m_path);
    if (digest.hasError())
        return digest.error();
    m_facts.sha256 = digest.value();
    return m_facts;
}

} // namespace zav
