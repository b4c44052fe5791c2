// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QCoreApplication>

#include <memory>

namespace zav {

/// The application object of a run. Only a run that draws pictures pays for fonts and a window-system plug-in: it gets
/// a QGuiApplication on the offscreen platform, whatever QT_QPA_PLATFORM says; every other run, and every run of a
/// build that cannot draw, a QCoreApplication. `argc` and `argv` have to outlive it.
std::unique_ptr<QCoreApplication> createApplication(int &argc, char **argv, bool drawsPictures);

} // namespace zav
