// SPDX-License-Identifier: Apache-2.0
#include "RuntimeInstallCommand.h"

#include "PrintableText.h"
#include "RuntimeCache.h"

#include <QtCore/QFile>

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace zav {

Error RuntimeInstallCommand::work()
{
    const QString installer = runtimeInstaller();
    const QByteArray path = QFile::encodeName(installer);
    qputenv("ZAV_RUNTIME_CALLER", "zav"); // the name in the script's messages
    ::execl(path.constData(), path.constData(), static_cast<const char *>(nullptr));
    return Error(Failure, QStringLiteral("cannot start %1: %2")
                              .arg(displayText(installer, 300), QString::fromLocal8Bit(std::strerror(errno))));
}

} // namespace zav
