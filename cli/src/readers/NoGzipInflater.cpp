// SPDX-License-Identifier: Apache-2.0
//
// Stands in for GzipInflater.cpp in a build without zlib.
#include "GzipInflater.h"

namespace zav {

struct GzipInflater::Private
{};

GzipInflater::GzipInflater() = default;

GzipInflater::~GzipInflater() = default;

qint64 GzipInflater::inflate(QByteArrayView *, char *, qint64)
{
    return -1;
}

bool GzipInflater::isWhole() const
{
    return false;
}

QString GzipInflater::whyNot()
{
    return QStringLiteral("this zav was built without zlib and reads nothing gzipped; gunzip the file, or rebuild");
}

} // namespace zav
