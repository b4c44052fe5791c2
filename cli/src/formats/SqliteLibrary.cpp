// SPDX-License-Identifier: Apache-2.0
#include "SqliteLibrary.h"

#include "BlibLibrary.h"
#include "DlibLibrary.h"
#include "PrintableText.h"
#include "SqliteDatabase.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRandomGenerator>

#include <filesystem>

namespace zav {

namespace {

constexpr char CANNOT_WRITE[] = "cannot write";

// One transaction into a file that nobody else sees: a journal would only protect what is thrown away anyway.
constexpr char SETTINGS[] = "PRAGMA page_size = 4096; PRAGMA encoding = 'UTF-8'; PRAGMA auto_vacuum = NONE;"
                            "PRAGMA journal_mode = OFF; PRAGMA synchronous = FULL; PRAGMA locking_mode = EXCLUSIVE;"
                            "PRAGMA cache_size = -16384; BEGIN";

Error cannotWrite(ErrorCode code, const QString &path, const QString &reason)
{
    return Error(code,
                 QStringLiteral("%1 %2: %3").arg(QString::fromUtf8(CANNOT_WRITE), displayText(path, 300), reason));
}

} // namespace

SqliteLibrary::SqliteLibrary() = default;

SqliteLibrary::~SqliteLibrary()
{
    m_database.reset();
    if (!m_temporaryPath.isEmpty())
        QFile::remove(m_temporaryPath);
}

Error SqliteLibrary::open(const QString &path, const LibraryInfo &info)
{
    if (Error error = createFile(path); error.hasError())
        return error;
    m_database = std::make_unique<SqliteDatabase>(path, CANNOT_WRITE);
    if (Error error = m_database->open(m_temporaryPath, false); error.hasError())
        return error;
    if (Error error = m_database->run(SETTINGS); error.hasError())
        return error;
    return createTables(m_database.get(), info);
}

Error SqliteLibrary::add(const EncodedEntry &entry)
{
    return entry.peakCount > 0 ? insert(entry) : Error();
}

Error SqliteLibrary::append(const QString &path)
{
    SqliteDatabase other(path, "cannot read");
    if (Error error = other.open(path, true); error.hasError())
        return error;
    if (Error error = read(&other, [this](const EncodedEntry &entry) { return add(entry); }); error.hasError())
        return error;
    return {};
}

Error SqliteLibrary::finish()
{
    if (Error error = insertEnd(m_database.get()); error.hasError())
        return error;
    if (Error error = m_database->run("COMMIT"); error.hasError())
        return error;
    if (Error error = m_database->close(); error.hasError())
        return error;
    return giveName();
}

// Exclusively, and with the permissions of any new file.
Error SqliteLibrary::createFile(const QString &path)
{
    const QFileInfo existing(path);
    if (path == QLatin1String("-") || (existing.exists() && !existing.isFile()))
        return cannotWrite(InvalidInput, path, QStringLiteral("this format needs a regular file"));
    m_path = existing.isSymLink() ? existing.symLinkTarget() : path;
    for (;;) {
        const quint32 number = QRandomGenerator::global()->bounded(0x1000000u);
        const QString candidate = m_path + QStringLiteral(".%1").arg(number, 6, 16, QLatin1Char('0'));
        if (QFileInfo::exists(candidate))
            continue;
        QFile file(candidate);
        if (!file.open(QIODevice::NewOnly))
            return cannotWrite(Failure, path, file.errorString());
        m_temporaryPath = candidate;
        return {};
    }
}

Error SqliteLibrary::giveName()
{
    std::error_code status;
    std::filesystem::rename(m_temporaryPath.toStdU16String(), m_path.toStdU16String(), status);
    if (status)
        return cannotWrite(Failure, m_path, QString::fromStdString(status.message()));
    m_temporaryPath.clear();
    return {};
}

std::unique_ptr<SqliteLibrary> makeSqliteLibrary(LibraryFileKind kind)
{
    if (kind == LibraryFileKind::Dlib)
        return std::make_unique<DlibLibrary>();
    if (kind == LibraryFileKind::Blib)
        return std::make_unique<BlibLibrary>();
    return nullptr;
}

} // namespace zav
