// SPDX-License-Identifier: Apache-2.0
#include "GzipDecoder.h"

namespace zav {

struct GzipDecoder::State
{};

bool decodesGzip()
{
    return false;
}

GzipDecoder::GzipDecoder() = default;
GzipDecoder::~GzipDecoder() = default;

Error GzipDecoder::decode(const QByteArray &, QByteArray *decoded)
{
    decoded->clear();
    return {Failure, QStringLiteral("is compressed (gzip), which this build does not read: it was made without zlib")};
}

bool GzipDecoder::isComplete() const
{
    return true;
}

} // namespace zav
