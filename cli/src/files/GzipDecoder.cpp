// SPDX-License-Identifier: Apache-2.0
#include "GzipDecoder.h"

#include <zlib.h>

namespace zav {

namespace {

// windowBits for inflateInit2: the largest window, gzip's header and trailer.
constexpr int GZIP_WINDOW_BITS = 15 + 16;

constexpr int DECODED_PIECE = 1 << 16;

} // namespace

struct GzipDecoder::State
{
    z_stream stream{};
    bool isInitialised = false;
    bool isWithinMember = false;
};

GzipDecoder::GzipDecoder() : m_state(std::make_unique<State>())
{
    m_state->isInitialised = inflateInit2(&m_state->stream, GZIP_WINDOW_BITS) == Z_OK;
}

GzipDecoder::~GzipDecoder()
{
    if (m_state->isInitialised)
        inflateEnd(&m_state->stream);
}

Error GzipDecoder::decode(const QByteArray &encoded, QByteArray *decoded)
{
    decoded->clear();
    if (!m_state->isInitialised)
        return {Failure, QStringLiteral("zlib cannot be started")};
    z_stream &stream = m_state->stream;
    QByteArray input = encoded; // zlib takes a pointer to bytes that are not const
    stream.next_in = reinterpret_cast<Bytef *>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    QByteArray piece(DECODED_PIECE, Qt::Uninitialized);
    do {
        while (!m_state->isWithinMember && stream.avail_in > 0 && *stream.next_in == 0) {
            ++stream.next_in;
            --stream.avail_in;
        }
        if (stream.avail_in == 0 && !m_state->isWithinMember)
            break;
        m_state->isWithinMember = true;
        stream.next_out = reinterpret_cast<Bytef *>(piece.data());
        stream.avail_out = static_cast<uInt>(piece.size());
        const int status = inflate(&stream, Z_NO_FLUSH);
        decoded->append(piece.constData(), piece.size() - stream.avail_out);
        if (status == Z_STREAM_END) {
            m_state->isWithinMember = false;
            inflateReset(&stream);
        } else if (status != Z_OK && status != Z_BUF_ERROR) {
            return {Failure, QStringLiteral("is damaged gzip: %1")
                                 .arg(QString::fromLatin1(stream.msg ? stream.msg : zError(status)))};
        }
    } while (stream.avail_in > 0 || stream.avail_out == 0);
    return {};
}

bool GzipDecoder::isComplete() const
{
    return !m_state->isWithinMember;
}

} // namespace zav
