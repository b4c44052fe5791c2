// SPDX-License-Identifier: Apache-2.0
//
// Stands in for Application.cpp in a build without Qt Gui.
#include "Application.h"

namespace zav {

std::unique_ptr<QCoreApplication> createApplication(int &argc, char **argv, bool)
{
    return std::make_unique<QCoreApplication>(argc, argv);
}

} // namespace zav
