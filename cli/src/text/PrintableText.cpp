// SPDX-License-Identifier: Apache-2.0
#include "PrintableText.h"

namespace zav {

QString displayText(const QString &text, int maxLength)
{
    QString shown;
    for (const QChar character : text.left(maxLength))
        shown += character.isPrint() || character.isSurrogate()
                     ? QString(character)
                     : QStringLiteral("\\x%1").arg(character.unicode(), 2, 16, QLatin1Char('0'));
    return text.size() > maxLength ? shown + QStringLiteral("...") : shown;
}

QString inputName(const QString &path)
{
    return path == QLatin1String("-") ? QStringLiteral("standard input") : displayText(path, 300);
}

} // namespace zav
