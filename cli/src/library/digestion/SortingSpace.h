// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>
#include <zav/Result.h>

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QString>
#include <QtCore/QTemporaryFile>

namespace zav {

/// Where peptides are sorted and kept.
struct SortingSpace
{
    /// Whether in temporary files, with little memory however many peptides there are, instead of in memory.
    bool onDisk = false;

    /// Folder of those files. They are removed with the last object that holds the peptides.
    QString temporaryFolder = QDir::tempPath();

    /// Bytes that one sorting step holds in memory before it writes them to a file.
    qint64 memoryLimit = qint64(64) << 20;
};

/// A temporary file of a sorting space, without a name where the system allows it. It is made for the first bytes and
/// removed with its object. Bytes are appended in large pieces and read anywhere.
class TemporaryStore
{
public:
    explicit TemporaryStore(const SortingSpace &space);

    Error append(QByteArrayView bytes);
    Result<QByteArray> read(qint64 offset, qint64 length);

    qint64 size() const { return m_size; }

private:
    Error open();
    Error failure(const char *what) const;

    QString m_folder;
    QTemporaryFile m_file;
    qint64 m_size = 0;
};

} // namespace zav
