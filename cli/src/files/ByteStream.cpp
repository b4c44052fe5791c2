// SPDX-License-Identifier: Apache-2.0
#include "ByteStream.h"

#include "PrintableText.h"

#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryFile>

#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

namespace zav {

namespace {

constexpr qint64 PIECE_BYTES = 1 << 16;

constexpr char GZIP_MAGIC[] = "\x1f\x8b";

// windowBits for inflateInit2: the largest window, gzip's header and trailer.
constexpr int GZIP_WINDOW_BITS = 15 + 16;

bool isStandardInput(const QString &path)
{
    return path == QLatin1String("-");
}

} // namespace

Error cannotRead(const QString &name, const QString &reason)
{
    return {Failure, QStringLiteral("cannot read %1: %2").arg(name, reason)};
}

Error hasChanged(const QString &name)
{
    return cannotRead(name, QStringLiteral("it has changed since it was opened"));
}

Result<QByteArray> fileBytes(const QString &path, std::optional<qint64> most)
{
    QFile file(path);
    const QString name = displayText(path, 300);
    if (!file.open(QIODevice::ReadOnly))
        return cannotRead(name, file.errorString());
    QByteArray bytes = most ? file.read(*most) : file.readAll();
    if (file.error() != QFileDevice::NoError)
        return cannotRead(name, file.errorString());
    return bytes;
}

/// The state of inflating.
struct ByteStream::Gzip
{
    z_stream stream{};
    bool isWithinMember = false;
    QByteArray encoded; // what `stream` reads from

    Gzip()
    {
        if (inflateInit2(&stream, GZIP_WINDOW_BITS) != Z_OK) // it fails for want of memory only
            throw std::bad_alloc();
    }
    ~Gzip() { inflateEnd(&stream); }
    Q_DISABLE_COPY_MOVE(Gzip)

    void take(QByteArray bytes)
    {
        encoded = std::move(bytes);
        stream.next_in = reinterpret_cast<Bytef *>(encoded.data());
        stream.avail_in = static_cast<uInt>(encoded.size());
    }

    // Zero bytes behind a member are padding.
    void skipPadding()
    {
        for (; !isWithinMember && stream.avail_in > 0 && *stream.next_in == 0; --stream.avail_in)
            ++stream.next_in;
        isWithinMember = isWithinMember || stream.avail_in > 0;
    }

    // Why the bytes cannot be inflated, an empty text when all went well.
    QString inflateInto(QByteArray *decoded)
    {
        decoded->resize(PIECE_BYTES);
        stream.next_out = reinterpret_cast<Bytef *>(decoded->data());
        stream.avail_out = static_cast<uInt>(decoded->size());
        for (skipPadding(); isWithinMember && stream.avail_out > 0; skipPadding()) {
            const int status = inflate(&stream, Z_NO_FLUSH);
            if (status == Z_BUF_ERROR) // wants more input
                break;
            if (status == Z_MEM_ERROR)
                throw std::bad_alloc();
            if (status == Z_STREAM_END) {
                isWithinMember = false;
                inflateReset(&stream);
            } else if (status != Z_OK) {
                return QStringLiteral("it is damaged gzip: %1")
                    .arg(QString::fromLatin1(stream.msg != nullptr ? stream.msg : zError(status)));
            }
        }
        decoded->truncate(decoded->size() - stream.avail_out);
        return {};
    }
};

ByteStream::ByteStream(const QString &path) : m_name(inputName(path)), m_file(std::make_unique<QFile>(path)) {}

ByteStream::~ByteStream() = default;

Result<std::unique_ptr<ByteStream>> ByteStream::open(const QString &path)
{
    std::unique_ptr<ByteStream> stream(new ByteStream(path));
    QFile &file = *stream->m_file;
    if (!isStandardInput(path) && QFileInfo(path).isDir())
        return cannotRead(stream->m_name, QStringLiteral("it is a folder"));
    const bool isOpen = isStandardInput(path) ? file.open(stdin, QIODevice::ReadOnly)
                                              : file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    if (!isOpen)
        return cannotRead(stream->m_name, file.errorString());
    stream->m_rawSize = file.size();
    if (Error error = stream->start(); error.hasError())
        return error;
    return stream;
}

Result<std::unique_ptr<ByteStream>> ByteStream::openSeekable(const QString &path)
{
    Result<std::unique_ptr<ByteStream>> opened = open(path);
    if (opened.hasError())
        return opened.error();
    std::unique_ptr<ByteStream> stream = std::move(opened).value();
    if (!stream->m_gzip && !stream->m_file->isSequential())
        return stream;
    auto copy = std::make_unique<QTemporaryFile>();
    if (Error error = stream->copyTo(copy.get()); error.hasError())
        return error;
    if (Error error = stream->readInstead(std::move(copy)); error.hasError())
        return error;
    return stream;
}

Error ByteStream::copyTo(QTemporaryFile *copy)
{
    bool isWritten = copy->open();
    for (QByteArray piece; isWritten;) {
        if (Error error = read(&piece); error.hasError())
            return error;
        if (piece.isEmpty())
            break;
        isWritten = copy->write(piece) == piece.size();
    }
    if (isWritten && copy->flush())
        return {};
    return cannotRead(m_name, QStringLiteral("its copy in the folder for temporary files cannot be written: ") +
                                  copy->errorString());
}

Error ByteStream::readInstead(std::unique_ptr<QTemporaryFile> copy)
{
    m_rawSize = copy->size();
    m_rawRead = 0;
    m_gzip.reset();
    m_file = std::move(copy);
    if (!m_file->seek(0))
        return cannotRead(m_name, m_file->errorString());
    return refill();
}

Error ByteStream::start()
{
    if (Error error = readRaw(&m_next); error.hasError())
        return error;
    if (m_next.size() == 1) { // a pipe may give less than the two bytes that tell the kind
        QByteArray more;
        if (Error error = readRaw(&more); error.hasError())
            return error;
        m_next += more;
    }
    if (!m_next.startsWith(GZIP_MAGIC))
        return {};
    m_gzip = std::make_unique<Gzip>();
    m_gzip->take(std::exchange(m_next, {}));
    return inflatePiece();
}

Error ByteStream::read(QByteArray *piece)
{
    if (m_error.hasError())
        return m_error;
    piece->swap(m_next);
    m_error = piece->isEmpty() ? Error() : refill();
    return {}; // a failure behind this piece is told when its turn comes
}

Error ByteStream::seek(qint64 offset)
{
    if (m_file->isSequential())
        return cannotRead(m_name, QStringLiteral("it cannot be read a second time"));
    if (!m_file->seek(m_gzip ? 0 : offset))
        return cannotRead(m_name, m_file->errorString());
    m_rawRead = m_file->pos();
    const bool isGzipped = m_gzip != nullptr;
    m_gzip = isGzipped ? std::make_unique<Gzip>() : nullptr;
    m_error = refill();
    while (isGzipped && !m_error.hasError() && !m_next.isEmpty() && m_next.size() <= offset) {
        offset -= m_next.size();
        m_error = refill();
    }
    if (isGzipped)
        m_next.remove(0, offset);
    return m_error;
}

double ByteStream::fractionRead() const
{
    return m_rawSize > 0 ? std::min(1.0, double(m_rawRead) / double(m_rawSize)) : 0;
}

Error ByteStream::refill()
{
    return m_gzip ? inflatePiece() : readRaw(&m_next);
}

// Reads encoded bytes until some decoded ones come out.
Error ByteStream::inflatePiece()
{
    for (;;) {
        if (const QString problem = m_gzip->inflateInto(&m_next); !problem.isEmpty()) {
            m_next.clear();
            return cannotRead(m_name, problem);
        }
        if (!m_next.isEmpty())
            return {};
        QByteArray encoded;
        if (Error error = readRaw(&encoded); error.hasError())
            return error;
        if (encoded.isEmpty())
            return m_gzip->isWithinMember ? cannotRead(m_name, QStringLiteral("it ends within its gzipped data"))
                                          : Error();
        m_gzip->take(std::move(encoded));
    }
}

Error ByteStream::readRaw(QByteArray *piece)
{
    piece->resize(PIECE_BYTES);
    const qint64 count = m_file->read(piece->data(), PIECE_BYTES);
    piece->resize(std::max(count, qint64{0}));
    m_rawRead += piece->size();
    return count < 0 ? cannotRead(m_name, m_file->errorString()) : Error();
}

} // namespace zav
