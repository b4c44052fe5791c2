// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SqliteDatabase.h"
#include "SqliteLibrary.h"

namespace zav {

/// The library of EncyclopeDIA (https://bitbucket.org/searleb/encyclopedia/wiki, "File Formats").
///
/// `RTInSeconds` must be there and holds -1, which stands for an unknown time; `Score` is 0, `Copies` 1, `SourceFile`
/// "predicted". Arrays are big-endian and compressed by zlib, their lengths those before. All peaks are stored, the
/// format names no ions. Decoys are told by `isDecoy` of their proteins alone; EncyclopeDIA makes decoys itself.
class DlibLibrary : public SqliteLibrary
{
public:
    EncodedEntry encode(const LibraryEntry &entry) const override;

protected:
    Error createTables(SqliteDatabase *database, const LibraryInfo &info) override;
    Error insert(const EncodedEntry &entry) override;
    Error insertEnd(SqliteDatabase *database) override;
    Error read(SqliteDatabase *other, const EntryTaker &take) const override;

private:
    Error insertProteins(const EncodedEntry &entry);

    SqliteStatement m_entry;
    SqliteStatement m_protein;
    QByteArray m_lastPeptide;
};

} // namespace zav
