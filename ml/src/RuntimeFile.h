// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QString>

namespace zav {

/// Why a shared library, or the part of the TensorFlow runtime beside it, must not be opened: the file is shorter than
/// its own header says, as after a download that was cut off. The system's loader ends the process over such a file.
/// Empty for all others, also for those that it refuses by itself.
QString problemOfRuntimeFile(const QString &path);

} // namespace zav
