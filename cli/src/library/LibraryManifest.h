// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryShard.h"

#include <zav/Result.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zav {

/// What a finished library file consists of.
struct LibraryFileFacts
{
    qint64 precursors = 0;
    qint64 openingSize = 0; ///< bytes before the first entry of a text format
    qint64 closingSize = 0; ///< bytes behind its last entry
    QByteArray sha256;      ///< of the whole file, in hexadecimal digits

    bool operator==(const LibraryFileFacts &) const = default;
};

/// Says what a library file, or one shard of a library, was made from: so that it need not be made twice, and shards
/// of different libraries cannot be mixed. A file of JSON beside the library's.
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

    /// Whether a library of that path has a manifest: standard output ("-"), pipes and devices have none.
    static bool isFor(const QString &libraryPath);

    /// The error names the file that cannot be read or is no manifest.
    static Result<LibraryManifest> read(const QString &path);

    Error write(const QString &path) const;
};

/// How input and settings of `other` differ from those of `one`: "another input", or the name of a setting, "decoys".
/// Empty when they do not.
QString differenceOfOrigin(const LibraryManifest &one, const LibraryManifest &other);

} // namespace zav
