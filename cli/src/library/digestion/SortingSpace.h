// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QDir>
#include <QtCore/QString>

namespace zav {

/// Where peptides are sorted and kept.
struct SortingSpace
{
    /// Whether in temporary files, with little memory however many peptides there are, instead of in memory.
    bool onDisk = false;

    /// Folder of those files. They are gone when the last of the peptides' objects is.
    QString temporaryFolder = QDir::tempPath();

    /// What one sorting step holds in memory before it writes a file.
    qint64 memoryLimit = qint64(64) << 20;
};

} // namespace zav
