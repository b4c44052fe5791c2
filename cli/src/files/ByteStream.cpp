// SPDX-License-Identifier: Apache-2.0
#include "ByteStream.h"

#include <QtCore/QFileInfo>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace zav {

namespace {

// Gzip makes a thousand bytes of one at most: 64 MB of a piece.
constexpr qint64 PIECE_BYTES = 1 << 16;

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
    m_decoder.emplace();
    if (Error error = decode(); error.hasError())
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
    if (Error error = readRaw(&m_next); error.hasError())
        return error;
    return m_decoder ? decode() : Error();
}

// Puts decoded bytes in place of encoded ones, of which it reads more until some come out.
Error ByteStream::decode()
{
    for (;;) {
        if (m_next.isEmpty())
            return m_decoder->isComplete() ? Error() : failure(QStringLiteral("ends within its gzipped data"));
        const QByteArray encoded = std::exchange(m_next, {});
        if (const Error error = m_decoder->decode(encoded, &m_next); error.hasError())
            return failure(error.message());
        if (!m_next.isEmpty())
            return {};
        if (Error error = readRaw(&m_next); error.hasError())
            return error;
    }
}

Error ByteStream::readRaw(QByteArray *piece)
{
    piece->resize(PIECE_BYTES);
    const qint64 count = m_file.read(piece->data(), PIECE_BYTES);
    piece->resize(std::max(count, qint64{0}));
    return count < 0 ? failure(QStringLiteral("cannot be read: ") + m_file.errorString()) : Error();
}

Error ByteStream::failure(const QString &what) const
{
    return {Failure, m_name + QStringLiteral(": ") + what};
}

} // namespace zav
