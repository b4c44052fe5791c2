// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QString>

namespace zav {

/// The folder that `zav runtime install` puts TensorFlow into, whether or not it is there; empty where the environment
/// has neither `XDG_CACHE_HOME` nor `HOME`. The same as `install-runtime --folder` prints.
QString runtimeCacheFolder();

/// The script that installs it. Needs the application object.
QString runtimeInstaller();

/// Has the predictors look for TensorFlow in the user's cache where it is nowhere else. To be called before the first
/// network is loaded.
void useRuntimeCache();

} // namespace zav
