// SPDX-License-Identifier: Apache-2.0
#include "OutputFile.h"

#include "PrintableText.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

#include <cstdio>

namespace zav {

namespace {

constexpr qsizetype FLUSH_SIZE = 1 << 16;

} // namespace

OutputFile::OutputFile(const QString &path) : m_path(path) {}
OutputFile::~OutputFile() = default;

Error OutputFile::open()
{
    const QFileInfo existing(m_path);
    bool isOpen = false;
    if (isStandardOutput()) {
        auto file = std::make_unique<QFile>();
        isOpen = file->open(stdout, QIODevice::WriteOnly | QIODevice::Unbuffered);
        m_file = std::move(file);
    } else if (existing.exists() && !existing.isFile()) {
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

} // namespace zav
