// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryEntry.h"
#include "LibraryFormat.h"
#include "TextArena.h"

#include <zav/Result.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <functional>
#include <memory>

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

struct EncodedEntry;

/// An entry as its file will hold it; text or a row of a database, by the kind of the file.
struct WrittenEntry
{
    QByteArray text;
    std::shared_ptr<const EncodedEntry> row;

    bool isEmpty() const { return text.isEmpty() && !row; }
};

/// A library file that is being written. It appears under its name when it is complete; an object that is
/// destroyed before leaves nothing behind.
class LibraryWriter
{
public:
    LibraryWriter() = default;
    virtual ~LibraryWriter();
    LibraryWriter(const LibraryWriter &) = delete;
    LibraryWriter &operator=(const LibraryWriter &) = delete;

    /// Has to come first and succeed.
    virtual Error open() = 0;

    /// What `add` takes; empty when the format can hold none of the entry's peaks. Its text lies in the arena. Any
    /// thread, several at once with an arena each.
    virtual WrittenEntry encode(const LibraryEntry &entry, TextArena *arena) const = 0;

    /// Appends an entry, in the order of the library.
    virtual Error add(const WrittenEntry &entry) = 0;

    /// Appends the entries of a finished file of the same kind. The error names that file. `check` is asked many times
    /// on the way; its error ends the work.
    virtual Error append(const QString &path, const LibraryFileFacts &facts, const std::function<Error()> &check) = 0;

    /// Completes the file and gives it its name. Nothing may follow.
    virtual Result<LibraryFileFacts> finish() = 0;
};

/// `path` "-": standard output, for text formats only.
std::unique_ptr<LibraryWriter> makeLibraryWriter(LibraryFileKind kind, const QString &path, const LibraryInfo &info);

} // namespace zav
