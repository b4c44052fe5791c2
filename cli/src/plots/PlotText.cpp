// SPDX-License-Identifier: Apache-2.0
#include "PlotText.h"

#include <QtCore/QChar>
#include <QtGui/QFontMetricsF>

namespace zav {

namespace {

constexpr qsizetype LONGEST = 1000; // longer texts are never seen whole

qsizetype charactersThatFit(const QString &text, const QFontMetricsF &metrics, double width)
{
    const qsizetype count = metrics.elidedText(text, Qt::ElideRight, width).size() - 1; // less the ellipsis
    const qsizetype blank = text.lastIndexOf(u' ', count);
    return blank > 0 ? blank : std::max<qsizetype>(count, 1);
}

} // namespace

QString printable(const QString &text)
{
    const QString line = text.simplified();
    QString result;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const bool isPair = line[i].isHighSurrogate() && i + 1 < line.size() && line[i + 1].isLowSurrogate();
        if (isPair)
            result += line[i++];
        const bool isShown = isPair || (line[i].isPrint() && !line[i].isSurrogate());
        result += isShown ? line[i] : QChar(QChar::ReplacementCharacter);
    }
    return result;
}

QStringList wrapped(const QString &text, const QFontMetricsF &metrics, double width, int maxLines)
{
    QString rest = text.size() > LONGEST ? text.left(LONGEST / 2) + QChar(u'…') + text.right(LONGEST / 2) : text;
    QStringList lines;
    while (lines.size() + 1 < maxLines && metrics.horizontalAdvance(rest) > width) {
        const qsizetype count = charactersThatFit(rest, metrics, width);
        lines.append(rest.left(count).trimmed());
        rest = rest.mid(count).trimmed();
    }
    lines.append(metrics.elidedText(rest, Qt::ElideMiddle, width));
    return lines;
}

} // namespace zav
