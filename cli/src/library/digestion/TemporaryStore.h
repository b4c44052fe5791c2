// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>
#include <zav/Result.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QTemporaryFile>

namespace zav {

/// A temporary file without a name that others could find it by, where the system allows it, which goes with its
/// object. Bytes are appended in large pieces and read anywhere.
class TemporaryStore
{
public:
    explicit TemporaryStore(const QString &folder);

    /// Has to come first and succeed.
    Error open();

    Error append(QByteArrayView bytes);
    Result<QByteArray> read(qint64 offset, qint64 length);

    qint64 size() const { return m_size; }

private:
    Error failure(const char *what) const;

    QString m_folder;
    QTemporaryFile m_file;
    qint64 m_size = 0;
};

} // namespace zav
