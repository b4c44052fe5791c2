// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QString>

namespace zav {

/// Waits until the disk holds what was written to an open file. Empty when it does, or where a file of this kind
/// cannot be waited for; otherwise the reason in the system's words.
QString syncFile(int descriptor);

/// Waits until the disk holds the names in the folder of `path`: a file that was renamed there then keeps its new name
/// when the power fails. Empty and reason as with `syncFile`.
QString syncFolderOf(const QString &path);

} // namespace zav
