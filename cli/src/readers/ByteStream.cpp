// SPDX-License-Identifier: Apache-2.0
#include "ByteStream.h"

#include <QtCore/QFileInfo>

#include <algorithm>
#include <cstdio>

namespace zav {

namespace {

constexpr qint64 PIECE_BYTES = 1 << 18;

constexpr char GZIP_MAGIC[] = "\x1f\x8b";

bool isStandardInput(const QString &path)
{
    return path == QLatin1String("-");
}

} // namespace

ByteStream::ByteStream(const QString &path)
    : m_name(isStandardInput(path) ? QStringLiteral("standard input") : path), m_file(path)
{}

Result<std::unique_ptr<ByteStream>> ByteStream::open(const QString &path)
{
    std::unique_ptr<ByteStream> stream(new ByteStream(path));
    if (!isStandardInput(path) && QFileInfo(path).isDir())
        return stream->failure(QStringLiteral("is a folder"));
    const bool isOpen = isStandardInput(path) ? stream->m_file.open(stdin, QIODevice::ReadOnly)
                                              : stream->m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    if (!isOpen)
        return stream->failure(QStringLiteral("cannot be read: ") + stream->m_file.errorString());
    if (Error error = stream->start(); error.hasError())
        return error;
    return stream;
}

Error ByteStream::start()
{
    if (Error error = readRaw(&m_next); error.hasError())
        return error;
    if (m_next.isEmpty())
        return failure(QStringLiteral("is empty"));
    if (!m_next.startsWith(GZIP_MAGIC))
        return {};
    if (const QString why = GzipInflater::whyNot(); !why.isEmpty())
        return failure(why);
    m_raw = m_next;
    m_rawLeft = m_raw;
    m_inflater.emplace();
    if (Error error = refill(); error.hasError())
        return error;
    return m_next.isEmpty() ? failure(QStringLiteral("is empty")) : Error();
}

QByteArrayView ByteStream::peek()
{
    return m_next;
}

Error ByteStream::read(QByteArray *piece)
{
    if (m_error.hasError())
        return m_error;
    piece->swap(m_next);
    m_error = piece->isEmpty() ? Error() : refill();
    return {}; // a failure behind this piece is told when its turn comes
}

Error ByteStream::refill()
{
    return m_inflater ? readInflated(&m_next) : readRaw(&m_next);
}

Error ByteStream::readRaw(QByteArray *piece)
{
    piece->resize(PIECE_BYTES);
    const qint64 count = m_file.read(piece->data(), PIECE_BYTES);
    piece->resize(std::max(count, qint64{0}));
    return count < 0 ? failure(QStringLiteral("cannot be read: ") + m_file.errorString()) : Error();
}

Error ByteStream::readInflated(QByteArray *piece)
{
    for (;;) {
        piece->resize(PIECE_BYTES);
        const qint64 count = m_inflater->inflate(&m_rawLeft, piece->data(), PIECE_BYTES);
        piece->resize(std::max(count, qint64{0}));
        if (count < 0)
            return failure(QStringLiteral("its gzipped data is damaged"));
        if (count > 0)
            return {};
        if (!m_rawLeft.isEmpty())
            continue; // another member begins
        if (Error error = readRaw(&m_raw); error.hasError())
            return error;
        if (m_raw.isEmpty())
            return m_inflater->isWhole() ? Error() : failure(QStringLiteral("ends within its gzipped data"));
        m_rawLeft = m_raw;
    }
}

Error ByteStream::failure(const QString &what) const
{
    return {Failure, m_name + QStringLiteral(": ") + what};
}

} // namespace zav
