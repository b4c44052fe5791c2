// SPDX-License-Identifier: Apache-2.0
#include "InflatedSize.h"

#include <QtCore/QByteArray>

#include <zlib.h>

#include <algorithm>
#include <array>
#include <new>
#include <string_view>

namespace zav {

namespace {

constexpr qsizetype FREE_BYTES = qsizetype{16} << 20U;
constexpr qsizetype MOST_INFLATED = 64;   // times the compressed size
constexpr qsizetype LARGEST_RATIO = 1032; // that deflate can reach

/// Whether the bytes begin with a zlib stream of more than `limit` bytes. Others inflate to nothing.
bool inflatesBeyond(QByteArray bytes, qsizetype limit)
{
    z_stream stream = {};
    if (inflateInit(&stream) != Z_OK)
        throw std::bad_alloc();
    stream.next_in = reinterpret_cast<Bytef *>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    std::array<Bytef, 1U << 16U> piece = {};
    qsizetype inflated = 0;
    int state = Z_OK;
    while (state == Z_OK && inflated <= limit) {
        stream.next_out = piece.data();
        stream.avail_out = static_cast<uInt>(piece.size());
        state = inflate(&stream, Z_NO_FLUSH);
        inflated += static_cast<qsizetype>(piece.size() - stream.avail_out);
    }
    inflateEnd(&stream);
    if (state == Z_MEM_ERROR)
        throw std::bad_alloc();
    return inflated > limit;
}

/// Whatever the parameters of the array say, so that no way of writing them leads past this.
bool inflatesTooFar(std::string_view base64)
{
    const auto size = static_cast<qsizetype>(base64.size());
    if (size / 4 * 3 * LARGEST_RATIO <= FREE_BYTES)
        return false;
    const QByteArray bytes = QByteArray::fromBase64(QByteArray::fromRawData(base64.data(), size));
    return inflatesBeyond(bytes, std::max(FREE_BYTES, MOST_INFLATED * bytes.size()));
}

} // namespace

QString inflationProblem(const MzMlElement &element)
{
    const std::string_view text(element.text);
    const bool isBomb = std::any_of(element.arrays.begin(), element.arrays.end(), [&](const MzMlArrayPlace &place) {
        return place.end > place.begin && inflatesTooFar(text.substr(place.begin, place.end - place.begin));
    });
    return isBomb ? QStringLiteral("an array of it inflates to more than 64 times its size") : QString();
}

} // namespace zav
