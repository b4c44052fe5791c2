// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SqliteDatabase.h"
#include "SqliteLibrary.h"

#include <QtCore/QHash>

namespace zav {

/// The library of BiblioSpec and Skyline, schema 1.10 (ProteoWizard, pwiz_tools/BiblioSpec).
///
/// `retentionTime` is 0, `startTime` and `endTime` are null: no retention time is predicted. `createTime` is that of
/// the Unix epoch, so that two runs write the same file. Arrays are little-endian, compressed by zlib where that is
/// shorter. All peaks are stored, the format names no ions. A decoy is told by the accessions of its proteins alone.
class BlibLibrary : public SqliteLibrary
{
public:
    EncodedEntry encode(const LibraryEntry &entry) const override;

protected:
    Error createTables(SqliteDatabase *database, const LibraryInfo &info) override;
    Error insert(const EncodedEntry &entry) override;
    Error insertEnd(SqliteDatabase *database) override;
    Error read(SqliteDatabase *other, const EntryTaker &take) const override;

private:
    Error insertModifications(const EncodedEntry &entry);
    Error insertProteins(const EncodedEntry &entry);

    SqliteStatement m_spectrum;
    SqliteStatement m_peaks;
    SqliteStatement m_modification;
    SqliteStatement m_protein;
    SqliteStatement m_proteinLink;
    QByteArray m_identifier;
    QHash<QByteArray, qint64> m_proteinIds;
    qint64 m_count = 0;
};

} // namespace zav
