// SPDX-License-Identifier: Apache-2.0
#include "SortingSpace.h"

#include "PrintableText.h"

namespace zav {

TemporaryStore::TemporaryStore(const SortingSpace &space)
    : m_folder(space.temporaryFolder), m_file(QDir(m_folder).filePath(QStringLiteral("zav-XXXXXX.tmp")))
{}

Error TemporaryStore::append(QByteArrayView bytes)
{
    if (Error error = m_file.isOpen() ? Error() : open(); error.hasError())
        return error;
    if (!m_file.seek(m_size) || m_file.write(bytes.data(), bytes.size()) != bytes.size())
        return failure("write");
    m_size += bytes.size();
    return {};
}

Result<QByteArray> TemporaryStore::read(qint64 offset, qint64 length)
{
    if (!m_file.seek(offset))
        return failure("read");
    QByteArray bytes = m_file.read(length);
    if (bytes.size() != length)
        return failure("read");
    return bytes;
}

Error TemporaryStore::open()
{
    // Unbuffered, so that a failed write is reported at once; the pieces are large.
    QFile &file = m_file;
    return file.open(QIODevice::ReadWrite | QIODevice::Unbuffered) ? Error() : failure("make");
}

Error TemporaryStore::failure(const char *what) const
{
    return {Failure, QStringLiteral("cannot %1 a temporary file in %2: %3")
                         .arg(QString::fromLatin1(what), displayText(m_folder, 300), m_file.errorString())};
}

} // namespace zav
