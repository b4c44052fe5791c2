// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryOptions.h"
#include "LibraryShard.h"
#include "LibraryWriter.h"
#include "ModelFolder.h"

#include <zav/Result.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zav {

/// Everything that a library's bytes depend on beside its input, as one line of JSON: this program's version, the
/// networks by the SHA-256 of their files, and each option. Shard, threads and memory are not among it. The error names
/// a network that cannot be read.
Result<QByteArray> librarySettings(const LibraryOptions &options, const ModelFolder &folder);

/// What a library file, or one shard of a library, was made from. It stands as JSON beside that file, so that a
/// finished library is not made again and shards of different libraries are not mixed.
struct LibraryManifest
{
    QByteArray settings;    ///< everything that the library's bytes depend on beside the input, as `librarySettings`
    QByteArray inputSha256; ///< of the file of proteins or peptides
    LibraryShard shard;
    qint64 peptideCount = 0; ///< of the whole library
    LibraryFileFacts file;

    bool operator==(const LibraryManifest &) const = default;

    /// Where the manifest of a library stands: `library.tsv.json`.
    static QString pathFor(const QString &libraryPath);

    /// Reads that of a library. The error names a manifest that cannot be read or is none.
    static Result<LibraryManifest> readFor(const QString &libraryPath);

    /// Writes it beside a library, unless that is standard output ("-"), a pipe or a device.
    Error writeFor(const QString &libraryPath) const;

    /// What the settings say the library is.
    LibraryFileKind kind() const;
    LibraryInfo info() const;
};

/// How input and settings of `other` differ from those of `one`: "another input", or the name of a setting, "decoys".
/// Empty when they do not.
QString differenceOfOrigin(const LibraryManifest &one, const LibraryManifest &other);

} // namespace zav
