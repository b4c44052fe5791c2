// SPDX-License-Identifier: Apache-2.0
#include "OutputFile.h"

#include "DiskSync.h"
#include "PrintableText.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRandomGenerator>
#include <QtCore/QSaveFile>

#include <cerrno>
#include <cstdio>
#include <filesystem>

namespace zav {

namespace {

constexpr qsizetype FLUSH_SIZE = 1 << 16;

Error cannotWrite(ErrorCode code, const QString &path, const QString &reason)
{
    return Error(code, QStringLiteral("cannot write %1: %2").arg(displayText(path, 300), reason));
}

/// Qt tells no reason where a file without a name cannot be given one; the system does.
QString reasonOfCommit(const QSaveFile &file, int systemError)
{
    const bool isTold = file.error() != QFileDevice::UnspecifiedError;
    return isTold || systemError == 0 ? file.errorString() : qt_error_string(systemError);
}

} // namespace

// What cannot be looked at counts as a regular file: opening it then tells the reason.
bool isRegularFile(const QString &path)
{
    using std::filesystem::file_type;
    if (path == QLatin1String("-"))
        return false;
    std::error_code status;
    const file_type type = std::filesystem::status(path.toStdU16String(), status).type();
    return type == file_type::regular || type == file_type::not_found || type == file_type::none;
}

OutputFile::OutputFile(const QString &path) : m_path(path) {}
OutputFile::~OutputFile() = default;

Error OutputFile::open()
{
    bool isOpen = false;
    if (isStandardOutput()) {
        auto file = std::make_unique<QFile>();
        isOpen = file->open(stdout, QIODevice::WriteOnly | QIODevice::Unbuffered);
        m_file = std::move(file);
    } else if (!isRegularFile(m_path)) {
        // Renaming a finished file over a device or a pipe would replace it.
        m_file = std::make_unique<QFile>(m_path);
        isOpen = m_file->open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    } else {
        // Unbuffered: QSaveFile commits even when the last of its own buffer could not be written (Qt 6.4).
        m_file = std::make_unique<QSaveFile>(m_path);
        isOpen = m_file->open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    }
    return isOpen ? Error() : failure("cannot write");
}

Error OutputFile::write(const QByteArray &bytes)
{
    m_pending += bytes;
    return m_pending.size() < FLUSH_SIZE ? Error() : flush();
}

Error OutputFile::commit()
{
    if (Error error = flush(); error.hasError())
        return error;
    auto *save = dynamic_cast<QSaveFile *>(m_file.get());
    if (save == nullptr)
        return m_file->flush() ? Error() : failure("cannot finish writing");
    // QSaveFile waits for the disk too, but goes on when that fails.
    if (const QString reason = syncFile(save->handle()); !reason.isEmpty())
        return cannotFinish(reason);
    errno = 0;
    if (!save->commit())
        return cannotFinish(reasonOfCommit(*save, errno));
    const QString reason = syncFolderOf(m_path);
    return reason.isEmpty() ? Error() : cannotFinish(reason);
}

QString OutputFile::name() const
{
    return isStandardOutput() ? QStringLiteral("standard output") : displayText(m_path, 300);
}

Error OutputFile::flush()
{
    const QByteArray bytes = std::exchange(m_pending, {});
    // A disk that becomes full takes a part of the bytes without an error; writing the rest tells the reason.
    for (qsizetype done = 0; done < bytes.size();) {
        const qint64 written = m_file->write(bytes.constData() + done, bytes.size() - done);
        if (written <= 0)
            return failure("cannot write");
        done += written;
    }
    return {};
}

Error OutputFile::cannotFinish(const QString &reason) const
{
    return Error(Failure, QStringLiteral("cannot finish writing %1: %2").arg(name(), reason));
}

Error OutputFile::failure(const char *what) const
{
    return Error(Failure, QStringLiteral("%1 %2: %3").arg(QString::fromUtf8(what), name(), m_file->errorString()));
}

bool OutputFile::isStandardOutput() const
{
    return m_path.isEmpty() || m_path == QLatin1String("-");
}

Error writeToStandardOutput(const QString &text)
{
    OutputFile output{QString()};
    if (Error error = output.open(); error.hasError())
        return error;
    if (Error error = output.write(text.toUtf8()); error.hasError())
        return error;
    return output.commit();
}

UnfinishedFile::~UnfinishedFile()
{
    if (m_temporaryPath.isEmpty())
        return;
#ifdef _WIN32
    _wremove(reinterpret_cast<const wchar_t *>(m_temporaryPath.utf16()));
#else
    std::remove(m_encodedTemporaryPath.constData()); // takes no memory, of which there may be none
#endif
}

// Exclusively, and with the permissions of any new file.
Error UnfinishedFile::create(const QString &path)
{
    if (!isRegularFile(path))
        return cannotWrite(InvalidInput, path, QStringLiteral("this format needs a regular file"));
    const QFileInfo existing(path);
    m_path = existing.isSymLink() ? existing.symLinkTarget() : path;
    for (;;) {
        const quint32 number = QRandomGenerator::global()->bounded(0x1000000u);
        const QString candidate = m_path + QStringLiteral(".%1").arg(number, 6, 16, QLatin1Char('0'));
        if (QFileInfo::exists(candidate))
            continue;
        m_encodedTemporaryPath = QFile::encodeName(candidate);
        QFile file(candidate);
        if (!file.open(QIODevice::NewOnly))
            return cannotWrite(Failure, path, file.errorString());
        m_temporaryPath = candidate;
        return {};
    }
}

Error UnfinishedFile::commit()
{
    std::error_code status;
    std::filesystem::rename(m_temporaryPath.toStdU16String(), m_path.toStdU16String(), status);
    if (status)
        return cannotWrite(Failure, m_path, QString::fromStdString(status.message()));
    m_temporaryPath.clear();
    const QString reason = syncFolderOf(m_path);
    return reason.isEmpty() ? Error() : cannotWrite(Failure, m_path, reason);
}

} // namespace zav
