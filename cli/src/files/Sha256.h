// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArray>

#include <memory>

namespace zav {

/// The SHA-256 of bytes that come piece by piece. With OpenSSL it uses the processor's own instructions for it, which
/// is ten times as fast as without; a library is as large as disks are fast.
class Sha256
{
public:
    Sha256();
    ~Sha256();

    void add(const char *bytes, qsizetype size);
    void add(const QByteArray &bytes) { add(bytes.constData(), bytes.size()); }

    /// In hexadecimal digits, as `sha256sum` prints it. Nothing may be added afterwards.
    QByteArray result();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace zav
