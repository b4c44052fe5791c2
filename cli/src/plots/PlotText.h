// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

class QFontMetricsF;

namespace zav {

/// The text on one line and without what no picture can show: white space becomes one blank, control characters and
/// halves of surrogate pairs the replacement character.
QString printable(const QString &text);

/// At most `maxLines` lines no wider than `width`, broken at blanks where there are any. What remains is shortened in
/// the middle of the last line, because both ends of an identifier tell it from others.
QStringList wrapped(const QString &text, const QFontMetricsF &metrics, double width, int maxLines);

} // namespace zav
