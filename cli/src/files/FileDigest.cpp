// SPDX-License-Identifier: Apache-2.0
#include "FileDigest.h"

#include "PrintableText.h"
#include "Sha256.h"

#include <QtCore/QFile>

#include <algorithm>

namespace zav {

namespace {

constexpr qsizetype READ_AT_ONCE = 1 << 20;

} // namespace

Result<QByteArray> fileSha256(const QString &path)
{
    QFile file(path);
    bool isFine = file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    Sha256 hash;
    QByteArray bytes(READ_AT_ONCE, Qt::Uninitialized);
    qint64 size = 1;
    while (isFine && size > 0) {
        size = file.read(bytes.data(), bytes.size());
        isFine = size >= 0;
        hash.add(bytes.constData(), std::max<qint64>(size, 0));
    }
    if (!isFine)
        return Error(Failure, QStringLiteral("cannot read %1: %2").arg(displayText(path, 300), file.errorString()));
    return hash.result();
}

} // namespace zav
