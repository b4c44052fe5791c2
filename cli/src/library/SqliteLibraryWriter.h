// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryWriter.h"
#include "SqliteLibrary.h"

namespace zav {

/// Writes the database formats.
class SqliteLibraryWriter : public LibraryWriter
{
public:
    /// `kind` is one that `makeSqliteLibrary` knows.
    SqliteLibraryWriter(LibraryFileKind kind, const QString &path, const LibraryInfo &info);

    Error open() override;
    WrittenEntry encode(const LibraryEntry &entry) const override;
    Error add(const WrittenEntry &entry) override;
    Error append(const QString &path, const LibraryFileFacts &facts) override;
    Result<LibraryFileFacts> finish() override;

private:
    std::unique_ptr<SqliteLibrary> m_library;
    QString m_path;
    LibraryInfo m_info;
    LibraryFileFacts m_facts;
};

} // namespace zav
