// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FileDigest.h"
#include "LibraryWriter.h"
#include "OutputFile.h"

class QFile;

namespace zav {

/// Writes the text formats.
class TextLibraryWriter : public LibraryWriter
{
public:
    /// `kind` is one that `makeTextLibraryFormat` knows.
    TextLibraryWriter(LibraryFileKind kind, const QString &path, const LibraryInfo &info);

    Error open() override;
    WrittenEntry encode(const LibraryEntry &entry) const override;
    Error add(const WrittenEntry &entry) override;
    Error append(const QString &path, const LibraryFileFacts &facts) override;
    Result<LibraryFileFacts> finish() override;

private:
    Error appendEntries(QFile *file, qint64 size);
    Error write(const QByteArray &bytes);

    std::unique_ptr<LibraryFormat> m_format;
    LibraryInfo m_info;
    bool m_isNumbered; ///< whether the format counts its entries
    OutputFile m_file;
    Sha256 m_hash;
    LibraryFileFacts m_facts;
};

} // namespace zav
