// SPDX-License-Identifier: Apache-2.0
#include "RuntimeCache.h"

#include <zav/TensorFlowRuntime.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>

namespace zav {

namespace {

QString pathIn(const char *variable)
{
    return QFile::decodeName(qgetenv(variable));
}

} // namespace

QString runtimeCacheFolder()
{
    QString cache = pathIn("XDG_CACHE_HOME");
    if (!QDir::isAbsolutePath(cache)) { // such a value counts for nothing
        const QString home = pathIn("HOME");
        if (home.isEmpty())
            return {};
        cache = home + QStringLiteral("/.cache");
    }
    return cache + QStringLiteral("/zav/tensorflow-" ZAV_TENSORFLOW_VERSION);
}

QString runtimeInstaller()
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() +
                           QStringLiteral("/" ZAV_LIBEXEC_FROM_PROGRAM "/install-runtime"));
}

void useRuntimeCache()
{
    TensorFlowRuntime::setHostFolder(runtimeCacheFolder());
}

} // namespace zav
