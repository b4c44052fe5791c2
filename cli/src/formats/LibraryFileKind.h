// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace zav {

/// The kinds of spectral library that can be written. Dlib and Blib are SQLite files, the others text.
enum class LibraryFileKind { Msp, Tsv, Mgf, MzSpecLib, Dlib, Blib };

/// The kind by the ending of a file's name, letter case aside: `.msp`, `.tsv`, `.mgf`, `.mzSpecLib.txt`, `.dlib`,
/// `.blib`. Nothing for any other.
std::optional<LibraryFileKind> libraryFileKindOfPath(const QString &path);

/// The kind by its name, letter case aside: one of `libraryFileKindNames`. Nothing for any other.
std::optional<LibraryFileKind> libraryFileKindOfName(const QString &name);

/// "msp", "tsv", "mgf", "mzspeclib", "dlib", "blib": what `--format` takes.
QStringList libraryFileKindNames();

/// Whether the kind is written by a `SqliteLibrary` rather than by a `LibraryFormat`.
bool isSqlite(LibraryFileKind kind);

} // namespace zav
