// SPDX-License-Identifier: Apache-2.0
#include "RuntimeFile.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#if defined(Q_OS_LINUX)
#include <cstring>
#include <link.h>
#include <vector>
#endif

namespace zav {

namespace {

#if defined(Q_OS_LINUX)

bool readAt(QFile *file, qint64 offset, void *target, qint64 size)
{
    return file->seek(offset) && file->read(static_cast<char *>(target), size) == size;
}

/// False for what is not there, and for what is no library of this system: the loader tells.
bool isCutShort(const QString &path)
{
    QFile file(path);
    ElfW(Ehdr) header{};
    if (!file.open(QIODevice::ReadOnly) || !readAt(&file, 0, &header, sizeof header) ||
        std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_phentsize != sizeof(ElfW(Phdr)))
        return false;
    std::vector<ElfW(Phdr)> segments(header.e_phnum);
    const auto size = static_cast<qint64>(segments.size()) * static_cast<qint64>(sizeof(ElfW(Phdr)));
    if (!readAt(&file, static_cast<qint64>(header.e_phoff), segments.data(), size))
        return true;
    const auto fileSize = static_cast<quint64>(file.size());
    for (const ElfW(Phdr) & segment : segments) {
        const bool isWithin = segment.p_offset <= fileSize && segment.p_filesz <= fileSize - segment.p_offset;
        if (segment.p_type == PT_LOAD && !isWithin)
            return true;
    }
    return false;
}

#else

bool isCutShort(const QString &)
{
    return false;
}

#endif

} // namespace

QString problemOfRuntimeFile(const QString &path)
{
    if (!QFileInfo(path).isAbsolute()) // the system looks for it, not in the working folder
        return {};
    const QFileInfo file(path);
    const QString framework = QStringLiteral("/libtensorflow_framework.so.2");
    const QString target = QFileInfo(file.canonicalFilePath()).path();
    for (const QString &each : {path, file.path() + framework, target + framework}) {
        if (isCutShort(each))
            return QStringLiteral("%1 is cut short").arg(QFileInfo(each).fileName());
    }
    return {};
}

} // namespace zav
