// SPDX-License-Identifier: Apache-2.0
#include "LibraryWriter.h"

#include "SqliteLibraryWriter.h"
#include "TextLibraryWriter.h"

namespace zav {

LibraryWriter::~LibraryWriter() = default;

std::unique_ptr<LibraryWriter> makeLibraryWriter(LibraryFileKind kind, const QString &path, const LibraryInfo &info)
{
    if (isSqlite(kind))
        return std::make_unique<SqliteLibraryWriter>(kind, path, info);
    return std::make_unique<TextLibraryWriter>(kind, path, info);
}

} // namespace zav
