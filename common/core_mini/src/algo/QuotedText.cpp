// SPDX-License-Identifier: Apache-2.0
#include "QuotedText.h"

namespace zav {

namespace {

constexpr qsizetype LENGTH = 40; // characters

} // namespace

QString quotedText(QStringView text)
{
    QString quoted(u'\'');
    for (const QChar character : text.left(LENGTH)) {
        if (character.isPrint() || character.isSurrogate())
            quoted += character;
        else
            quoted += QStringLiteral("\\x%1").arg(character.unicode(), 2, 16, QLatin1Char('0'));
    }
    if (text.size() > LENGTH)
        quoted += QLatin1String("...");
    return quoted + u'\'';
}

} // namespace zav
