// SPDX-License-Identifier: Apache-2.0
#include "Sha256.h"

#include <QtCore/QCryptographicHash>

namespace zav {

struct Sha256::Private
{
    QCryptographicHash hash{QCryptographicHash::Sha256};
};

Sha256::Sha256() : d(std::make_unique<Private>()) {}
Sha256::~Sha256() = default;

void Sha256::add(const char *bytes, qsizetype size)
{
    d->hash.addData(QByteArrayView(bytes, size));
}

QByteArray Sha256::result()
{
    return d->hash.result().toHex();
}

} // namespace zav
