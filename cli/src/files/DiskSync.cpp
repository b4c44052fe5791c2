// SPDX-License-Identifier: Apache-2.0
#include "DiskSync.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cerrno>

#ifdef _WIN32
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace zav {

#ifdef _WIN32

QString syncFile(int descriptor)
{
    return _commit(descriptor) == 0 || errno == EBADF ? QString() : qt_error_string(errno);
}

QString syncFolderOf(const QString &)
{
    return {}; // the file system keeps its names by itself
}

#else

namespace {

/// Calls until a signal no longer disturbs it.
template <typename Call>
int undisturbed(const Call &call)
{
    int result = 0;
    do {
        result = call();
    } while (result < 0 && errno == EINTR);
    return result;
}

// Some file systems cannot wait for a folder, or for any file.
bool cannotWait()
{
    return errno == EINVAL || errno == ENOTSUP || errno == EROFS;
}

} // namespace

QString syncFile(int descriptor)
{
    const bool isDone = undisturbed([descriptor] { return fsync(descriptor); }) == 0 || cannotWait();
    return isDone ? QString() : qt_error_string(errno);
}

QString syncFolderOf(const QString &path)
{
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
    const int descriptor =
        undisturbed([&folder] { return ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    if (descriptor < 0) // files can be made in a folder that one must not look into
        return errno == EACCES ? QString() : qt_error_string(errno);
    QString reason = syncFile(descriptor);
    ::close(descriptor);
    return reason;
}

#endif

} // namespace zav
