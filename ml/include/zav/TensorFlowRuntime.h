// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Export.h>
#include <zav/Result.h>

#include <QtCore/QString>

namespace zav {

/// How the TensorFlow C library was found.
enum class RuntimeOrigin {
    ConfiguredPath, ///< at the path that cmake was given as `ZAV_TENSORFLOW_LIBRARY`
    BesideLibrary,  ///< in the folder `zav` beside libzav_ml
    BuildFolder,    ///< in the folder that cmake was given as `ZAV_TENSORFLOW_DIR`
    System,         ///< by the system's own search, `LD_LIBRARY_PATH` included
    HostFolder      ///< in the folder that the host named
};

/// The TensorFlow C library that this process uses.
struct RuntimeDescription
{
    QString version; ///< as the library says it, for example 2.21.0
    QString file;    ///< its path
    RuntimeOrigin origin = RuntimeOrigin::System;
};

/// The TensorFlow C library, which all predictors of a process share. It is looked for in the order of `RuntimeOrigin`,
/// once, when a predictor is initialised for the first time or `describe` is called.
class ZAV_ML_EXPORT TensorFlowRuntime
{
public:
    /// Names a folder that may hold the library. It is looked at last, where the system's search finds none that it can
    /// open. Has no effect once the library was looked for, and is not for several threads at a time.
    static void setHostFolder(const QString &folder);

    /// Opens the library, unless it is open, and says which it is. `Failure` where none was found or a function that
    /// predictors need is missing; the message names the file, the function and the ways to get the library. Any thread
    /// may call it.
    static Result<RuntimeDescription> describe();
};

} // namespace zav
