// SPDX-License-Identifier: Apache-2.0
#include "LibraryWriter.h"

#include "ByteStream.h"
#include "FileDigest.h"
#include "OutputFile.h"
#include "PrintableText.h"
#include "SqliteLibrary.h"

#include <QtCore/QFile>

#include <algorithm>

namespace zav {

namespace {

constexpr qint64 COPIED_AT_ONCE = 1 << 20;

/// Without an error of its own the file has fewer bytes than when its digest was made.
Error readFailure(const QFile &file)
{
    const bool isTold = file.error() != QFileDevice::NoError && file.error() != QFileDevice::UnspecifiedError;
    const QString reason = isTold ? file.errorString() : QStringLiteral("it has changed while it was read");
    return cannotRead(displayText(file.fileName(), 300), reason);
}

// Writes the text formats.
class TextLibraryWriter : public LibraryWriter
{
public:
    // `kind` is a text kind.
    TextLibraryWriter(LibraryFileKind kind, const QString &path, const LibraryInfo &info);

    Error open() override;
    WrittenEntry encode(const LibraryEntry &entry, TextArena *arena) const override;
    Error add(const WrittenEntry &entry) override;
    Error append(const QString &path, const LibraryFileFacts &facts, const std::function<Error()> &check) override;
    Result<LibraryFileFacts> finish() override;

private:
    Error appendEntries(QFile *file, qint64 size, const std::function<Error()> &check);
    Error write(const QByteArray &bytes);

    const LibraryFormat &m_format;
    LibraryInfo m_info;
    OutputFile m_file;
    Sha256 m_hash;
    LibraryFileFacts m_facts;
};

TextLibraryWriter::TextLibraryWriter(LibraryFileKind kind, const QString &path, const LibraryInfo &info)
    : m_format(*textLibraryFormat(kind)), m_info(info), m_file(path)
{}

Error TextLibraryWriter::open()
{
    if (Error error = m_file.open(); error.hasError())
        return error;
    const QByteArray opening = m_format.opening(m_info);
    m_facts.openingSize = opening.size();
    return write(opening);
}

WrittenEntry TextLibraryWriter::encode(const LibraryEntry &entry, TextArena *arena) const
{
    TextBuffer *text = arena->draft();
    m_format.addEntry(entry, 0, text);
    return text->isEmpty() ? WrittenEntry() : WrittenEntry{arena->keep(text->view()), {}};
}

Error TextLibraryWriter::add(const WrittenEntry &entry)
{
    const qint64 index = m_facts.precursors++;
    if (!m_format.numbersEntries())
        return write(entry.text);
    return write(m_format.firstLine(index) + entry.text.sliced(entry.text.indexOf('\n') + 1));
}

Error TextLibraryWriter::append(const QString &path, const LibraryFileFacts &facts, const std::function<Error()> &check)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(facts.openingSize))
        return readFailure(file);
    const qint64 size = file.size() - facts.openingSize;
    if (size < facts.closingSize)
        return cannotRead(displayText(path, 300), QStringLiteral("it is shorter than its manifest says"));
    Error error = appendEntries(&file, size - facts.closingSize, check);
    m_facts.precursors += facts.precursors;
    return error;
}

// `size` bytes from where the file stands; line by line where entries are numbered anew.
Error TextLibraryWriter::appendEntries(QFile *file, qint64 size, const std::function<Error()> &check)
{
    const bool isNumbered = m_format.numbersEntries();
    qint64 index = m_facts.precursors;
    bool isAtLine = true; // a line that is too long to be one of ours comes in pieces
    QByteArray piece(COPIED_AT_ONCE, Qt::Uninitialized);
    while (size > 0) {
        const qint64 count =
            isNumbered ? file->readLine(piece.data(), piece.size()) : file->read(piece.data(), piece.size());
        if (count <= 0)
            return readFailure(*file);
        // Behind `size` the closing of the library follows.
        const QByteArray bytes = QByteArray::fromRawData(piece.constData(), std::min(count, size));
        size -= bytes.size();
        const bool isFirst = isNumbered && isAtLine && m_format.isFirstLine(bytes);
        isAtLine = bytes.endsWith('\n');
        if (Error error = write(isFirst ? m_format.firstLine(index++) : bytes); error.hasError())
            return error;
        if (Error error = check(); error.hasError())
            return error;
    }
    return {};
}

Result<LibraryFileFacts> TextLibraryWriter::finish()
{
    const QByteArray closing = m_format.closing();
    m_facts.closingSize = closing.size();
    if (Error error = write(closing); error.hasError())
        return error;
    if (Error error = m_file.commit(); error.hasError())
        return error;
    m_facts.sha256 = m_hash.result();
    return m_facts;
}

Error TextLibraryWriter::write(const QByteArray &bytes)
{
    m_hash.add(bytes);
    return m_file.write(bytes);
}

// Writes the database formats.
class SqliteLibraryWriter : public LibraryWriter
{
public:
    // `kind` is a SQLite kind.
    SqliteLibraryWriter(LibraryFileKind kind, const QString &path, const LibraryInfo &info);

    Error open() override;
    WrittenEntry encode(const LibraryEntry &entry, TextArena *arena) const override;
    Error add(const WrittenEntry &entry) override;
    Error append(const QString &path, const LibraryFileFacts &facts, const std::function<Error()> &check) override;
    Result<LibraryFileFacts> finish() override;

private:
    std::unique_ptr<SqliteLibrary> m_library;
    QString m_path;
    LibraryInfo m_info;
    LibraryFileFacts m_facts;
};

SqliteLibraryWriter::SqliteLibraryWriter(LibraryFileKind kind, const QString &path, const LibraryInfo &info)
    : m_library(makeSqliteLibrary(kind)), m_path(path), m_info(info)
{}

Error SqliteLibraryWriter::open()
{
    return m_library->open(m_path, m_info);
}

WrittenEntry SqliteLibraryWriter::encode(const LibraryEntry &entry, TextArena *) const
{
    auto row = std::make_shared<EncodedEntry>(m_library->encode(entry));
    return row->peakCount == 0 ? WrittenEntry() : WrittenEntry{{}, std::move(row)};
}

Error SqliteLibraryWriter::add(const WrittenEntry &entry)
{
    ++m_facts.precursors;
    return m_library->add(*entry.row);
}

Error SqliteLibraryWriter::append(const QString &path, const LibraryFileFacts &facts,
                                  const std::function<Error()> &check)
{
    m_facts.precursors += facts.precursors;
    return m_library->append(path, check);
}

// A database is not written from front to back, so its digest is made of the file.
Result<LibraryFileFacts> SqliteLibraryWriter::finish()
{
    if (Error error = m_library->finish(); error.hasError())
        return error;
    const Result<QByteArray> digest = fileSha256(m_path);
    if (digest.hasError())
        return digest.error();
    m_facts.sha256 = digest.value();
    return m_facts;
}

} // namespace

LibraryWriter::~LibraryWriter() = default;

std::unique_ptr<LibraryWriter> makeLibraryWriter(LibraryFileKind kind, const QString &path, const LibraryInfo &info)
{
    if (isSqlite(kind))
        return std::make_unique<SqliteLibraryWriter>(kind, path, info);
    return std::make_unique<TextLibraryWriter>(kind, path, info);
}

} // namespace zav
