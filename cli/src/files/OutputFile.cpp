// SPDX-License-Identifier: Apache-2.0
#include "OutputFile.h"

#include "PrintableText.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRandomGenerator>
#include <QtCore/QSaveFile>

#include <cstdio>
#include <filesystem>

namespace zav {

namespace {

constexpr qsizetype FLUSH_SIZE = 1 << 16;

Error cannotWrite(ErrorCode code, const QString &path, const QString &reason)
{
    return Error(code, QStringLiteral("cannot write %1: %2").arg(displayText(path, 300), reason));
}

} // namespace

bool isRegularFile(const QString &path)
{
    const QFileInfo file(path);
    return path != QLatin1String("-") && (!file.exists() || file.isFile());
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
    const bool isDone = save ? save->commit() : m_file->flush();
    return isDone ? Error() : failure("cannot finish writing");
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

Error OutputFile::failure(const char *what) const
{
    return Error(Failure, QStringLiteral("%1 %2: %3").arg(QString::fromUtf8(what), name(), m_file->errorString()));
}

bool OutputFile::isStandardOutput() const
{
    return m_path.isEmpty() || m_path == QLatin1String("-");
}

UnfinishedFile::~UnfinishedFile()
{
    if (!m_temporaryPath.isEmpty())
        QFile::remove(m_temporaryPath);
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
    return {};
}

} // namespace zav
