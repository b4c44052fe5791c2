// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QString>

namespace zav {

/// A text of the user's as it may stand in a message: control characters escaped, cut after `maxLength` characters.
QString displayText(const QString &text, int maxLength = 60);

/// What messages call an input file of the command line: its path, or `standard input` for "-".
QString inputName(const QString &path);

} // namespace zav
