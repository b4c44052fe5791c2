// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Result.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <memory>

namespace zav {

/// The SHA-256 of bytes that come piece by piece. OpenSSL uses the processor's own instructions for it, which makes it
/// ten times as fast as portable code: a library is as large as disks are fast.
class Sha256
{
public:
    Sha256();
    ~Sha256();
    Q_DISABLE_COPY_MOVE(Sha256)

    void add(const char *bytes, qsizetype size);
    void add(const QByteArray &bytes) { add(bytes.constData(), bytes.size()); }

    /// In hexadecimal digits, as `sha256sum` prints it. Nothing may be added afterwards.
    QByteArray result();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

/// The SHA-256 of a file's bytes as they are stored, in hexadecimal digits. The error names the file.
Result<QByteArray> fileSha256(const QString &path);

} // namespace zav
