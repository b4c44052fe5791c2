// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "EncodedEntry.h"
#include "LibraryFormat.h"
#include "OutputFile.h"

#include <zav/Error.h>

#include <functional>
#include <memory>

namespace zav {

class SqliteDatabase;

/// A spectral library that is an SQLite database: `open`, each entry by `encode` and `add` in order, `finish`.
///
/// The file is written under a name of its own beside the final one, which it gets with `finish` only: until then an
/// older file of that name stays, and an object that goes without `finish`, or after a failure, leaves nothing behind.
/// The same entries in the same order give the same bytes (with one version of SQLite and of zlib): one transaction,
/// no dates, indices made at the end. Memory does not grow with the entries, but for the accessions of proteins.
///
/// After an error the object is of no use. Errors name the file. All but `encode` belong to one thread at a time.
class SqliteLibrary
{
public:
    SqliteLibrary();
    virtual ~SqliteLibrary();
    SqliteLibrary(const SqliteLibrary &) = delete;
    SqliteLibrary &operator=(const SqliteLibrary &) = delete;

    /// Creates the file. Has to come first and succeed. A device, a pipe or "-" cannot hold a database:
    /// `InvalidInput`.
    Error open(const QString &path, const LibraryInfo &info);

    /// The entry as `add` takes it; any thread, several at once. `peakCount` is 0 for an entry without peaks, which
    /// `add` leaves out.
    virtual EncodedEntry encode(const LibraryEntry &entry) const = 0;

    /// Appends an entry. The charges of a peptide follow each other.
    Error add(const EncodedEntry &entry);

    /// Appends the entries of a finished library of the same kind. The error names that library when it is at fault:
    /// it has to have the tables that this one has, and the work is bounded by its size. `check` is asked before each
    /// entry; its error ends the work.
    Error append(const QString &path, const std::function<Error()> &check = {});

    /// Completes the file and gives it its name.
    Error finish();

protected:
    using EntryTaker = std::function<Error(const EncodedEntry &)>;

    virtual Error createTables(SqliteDatabase *database, const LibraryInfo &info) = 0;
    virtual Error insert(const EncodedEntry &entry) = 0;
    virtual Error insertEnd(SqliteDatabase *database) = 0;

    /// Gives the entries of another library, in order.
    virtual Error read(SqliteDatabase *other, const EntryTaker &take) const = 0;

    /// Gives `take` what a `Reader` reads: an object with `prepare`, and `next`, which tells whether there was another
    /// entry.
    template <typename Reader>
    static Error takeAll(SqliteDatabase *database, const EntryTaker &take)
    {
        Reader reader;
        if (Error error = reader.prepare(database); error.hasError())
            return error;
        for (;;) {
            EncodedEntry entry;
            const Result<bool> hasEntry = reader.next(&entry);
            if (hasEntry.hasError())
                return hasEntry.error();
            if (!hasEntry.value())
                return {};
            if (Error error = take(entry); error.hasError())
                return error;
        }
    }

private:
    UnfinishedFile m_file;
    std::unique_ptr<SqliteDatabase> m_database; // closed before the file goes
};

/// The library of a SQLite kind; null for a text kind.
std::unique_ptr<SqliteLibrary> makeSqliteLibrary(LibraryFileKind kind);

/// The library of EncyclopeDIA (https://bitbucket.org/searleb/encyclopedia/wiki, "File Formats").
///
/// `RTInSeconds` must be there: an iRT counts as minutes, as EncyclopeDIA shows times in minutes and aligns them;
/// without a retention time it is -1, which stands for an unknown one. `Score` is 0, `Copies` 1, `SourceFile`
/// "predicted". Modifications of a terminus count for the residue there; of two peptidoforms that are the same then,
/// the first is kept. Arrays are big-endian and compressed by zlib, their lengths those before. All peaks are stored,
/// the format names no ions. Decoys are told by `isDecoy` of their proteins alone; EncyclopeDIA makes decoys itself.
std::unique_ptr<SqliteLibrary> makeDlibLibrary();

/// The library of BiblioSpec and Skyline, schema 1.10 (ProteoWizard, pwiz_tools/BiblioSpec).
///
/// `retentionTime` is the iRT or the calibrated time in minutes, 0 where there is none; `startTime` and `endTime` are
/// null. `createTime` is that of the Unix epoch, so that two runs write the same file. Arrays are little-endian,
/// compressed by zlib where that is shorter. All peaks are stored, the format names no ions. A decoy is told by the
/// accessions of its proteins alone.
std::unique_ptr<SqliteLibrary> makeBlibLibrary();

/// The transition list of OpenSWATH as a database (TransitionPQPFile of OpenMS, https://openms.de), version 3.
///
/// It holds what the transition list in text holds, under the same names, with all digits. `LIBRARY_RT` is 0 without a
/// retention time. Proteins and genes belong to the peptidoform.
std::unique_ptr<SqliteLibrary> makePqpLibrary();

} // namespace zav
