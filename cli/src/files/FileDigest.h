// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Result.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zav {

/// The SHA-256 of a file's bytes in hexadecimal digits, as `sha256sum` prints it. The error names the file.
Result<QByteArray> fileSha256(const QString &path);

} // namespace zav
