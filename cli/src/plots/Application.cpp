// SPDX-License-Identifier: Apache-2.0
#include "Application.h"

#include <QtGui/QGuiApplication>

namespace zav {

namespace {

QtMessageHandler previousHandler = nullptr;

// Qt's start-up warns where the session has no XDG_RUNTIME_DIR (a container, a batch job), and calls it critical where
// it cannot make that folder; pictures do not need it.
void dropRuntimeFolderWarning(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (!message.startsWith(QLatin1String("QStandardPaths:")))
        previousHandler(type, context, message);
}

} // namespace

std::unique_ptr<QCoreApplication> createApplication(int &argc, char **argv, bool drawsPictures)
{
    if (!drawsPictures)
        return std::make_unique<QCoreApplication>(argc, argv);
    // Qt ends the process when the platform it is told to use is not there, and pictures need none.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    previousHandler = qInstallMessageHandler(dropRuntimeFolderWarning);
    auto application = std::make_unique<QGuiApplication>(argc, argv);
    qInstallMessageHandler(previousHandler);
    return application;
}

} // namespace zav
