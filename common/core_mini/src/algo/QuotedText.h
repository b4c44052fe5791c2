// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringView>

namespace zav {

/// A text that somebody wrote, as a message may hold it: between single quotes, control characters escaped as `\x1b`,
/// with dots in place of what comes after 40 characters.
QString quotedText(QStringView text);

} // namespace zav
