// SPDX-License-Identifier: Apache-2.0
#include "GzipInflater.h"

#define ZLIB_CONST
#include <zlib.h>

#include <algorithm>

namespace zav {

namespace {

constexpr int WINDOW_BITS_OF_GZIP = 15 + 16; // the largest window, a gzip header expected (zlib's manual)
constexpr char GZIP_START = '\x1f';
constexpr qint64 MAX_BYTES_A_CALL = 1 << 30; // zlib counts in 32 bits

} // namespace

struct GzipInflater::Private
{
    z_stream stream = {};
    bool isReady = false;
    bool isWhole = false;  // the last member has ended
    bool isBehind = false; // so have all members
};

GzipInflater::GzipInflater() : d(std::make_unique<Private>())
{
    d->isReady = inflateInit2(&d->stream, WINDOW_BITS_OF_GZIP) == Z_OK;
}

GzipInflater::~GzipInflater()
{
    if (d->isReady)
        inflateEnd(&d->stream);
}

qint64 GzipInflater::inflate(QByteArrayView *input, char *output, qint64 size)
{
    if (!d->isReady)
        return -1;
    if (d->isWhole && !input->isEmpty()) {
        d->isBehind = d->isBehind || input->front() != GZIP_START || inflateReset(&d->stream) != Z_OK;
        d->isWhole = d->isBehind;
    }
    if (d->isBehind)
        *input = {};
    if (input->isEmpty() && d->isWhole)
        return 0;
    const qsizetype given = std::min(input->size(), qsizetype{MAX_BYTES_A_CALL});
    d->stream.next_in = reinterpret_cast<const Bytef *>(input->data());
    d->stream.avail_in = static_cast<uInt>(given);
    d->stream.next_out = reinterpret_cast<Bytef *>(output);
    d->stream.avail_out = static_cast<uInt>(std::min(size, MAX_BYTES_A_CALL));
    const uInt room = d->stream.avail_out;
    const int status = ::inflate(&d->stream, Z_NO_FLUSH);
    *input = input->sliced(given - static_cast<qsizetype>(d->stream.avail_in));
    d->isWhole = status == Z_STREAM_END;
    const bool isFine = status == Z_OK || status == Z_STREAM_END || status == Z_BUF_ERROR; // the last: wants more input
    return isFine ? static_cast<qint64>(room - d->stream.avail_out) : -1;
}

bool GzipInflater::isWhole() const
{
    return d->isWhole;
}

QString GzipInflater::whyNot()
{
    return {};
}

} // namespace zav
