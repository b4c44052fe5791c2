// SPDX-License-Identifier: Apache-2.0
#include "FileDigest.h"

#include "ByteStream.h"
#include "PrintableText.h"

#include <QtCore/QFile>

#include <openssl/evp.h>

#include <algorithm>
#include <new>

namespace zav {

namespace {

constexpr qsizetype READ_AT_ONCE = 1 << 20;

} // namespace

struct Sha256::Private
{
    EVP_MD_CTX *context = EVP_MD_CTX_new();

    Private() = default;
    ~Private() { EVP_MD_CTX_free(context); }
    Q_DISABLE_COPY_MOVE(Private)
};

Sha256::Sha256() : d(std::make_unique<Private>())
{
    // It fails for want of memory only.
    if (d->context == nullptr || EVP_DigestInit_ex(d->context, EVP_sha256(), nullptr) != 1)
        throw std::bad_alloc();
}

Sha256::~Sha256() = default;

void Sha256::add(const char *bytes, qsizetype size)
{
    EVP_DigestUpdate(d->context, bytes, static_cast<size_t>(size));
}

QByteArray Sha256::result()
{
    QByteArray digest(EVP_MAX_MD_SIZE, '\0');
    unsigned size = 0;
    EVP_DigestFinal_ex(d->context, reinterpret_cast<unsigned char *>(digest.data()), &size);
    return digest.first(size).toHex();
}

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
        return cannotRead(displayText(path, 300), file.errorString());
    return hash.result();
}

} // namespace zav
