// SPDX-License-Identifier: Apache-2.0
#include "Sha256.h"

#include <openssl/evp.h>

namespace zav {

struct Sha256::Private
{
    EVP_MD_CTX *context = EVP_MD_CTX_new();

    Private() = default;
    ~Private() { EVP_MD_CTX_free(context); }
    Q_DISABLE_COPY_MOVE(Private)
};

Sha256::Sha256() : d(std::make_unique<Private>())
{
    EVP_DigestInit_ex(d->context, EVP_sha256(), nullptr);
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

} // namespace zav
