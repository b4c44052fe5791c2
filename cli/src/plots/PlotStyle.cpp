// SPDX-License-Identifier: Apache-2.0
#include "PlotStyle.h"

#include <QtGui/QFontMetricsF>
#include <QtGui/QPainter>

#include <algorithm>
#include <array>

namespace zav {

namespace {

// In page units.
constexpr double LEGEND_TEXT_SIZE = 11;
constexpr double LEGEND_GAP = 5;
constexpr double LEGEND_STROKE = 12;

constexpr qsizetype LONGEST_TEXT = 1000; // longer texts are never seen whole

qsizetype charactersThatFit(const QString &text, const QFontMetricsF &metrics, double width)
{
    const qsizetype count = metrics.elidedText(text, Qt::ElideRight, width).size() - 1; // less the ellipsis
    const qsizetype blank = text.lastIndexOf(u' ', count);
    return blank > 0 ? blank : std::max<qsizetype>(count, 1);
}

} // namespace

namespace plotStyle {

QColor ionColor(QChar ionType)
{
    switch (ionType.unicode()) {
    case u'b':
        return QColor(0x00, 0x72, 0xB2);
    case u'y':
        return QColor(0xD5, 0x5E, 0x00);
    case u'a':
        return QColor(0x00, 0x9E, 0x73);
    default:
        return QColor(0x55, 0x55, 0x55);
    }
}

QColor lighterIonColor(QChar ionType)
{
    const QColor full = ionColor(ionType);
    const auto lighter = [](int channel) { return qRound(channel + 0.45 * (255 - channel)); };
    return QColor(lighter(full.red()), lighter(full.green()), lighter(full.blue()));
}

QColor peakColor(qsizetype number)
{
    return number % 2 == 0 ? QColor(0x00, 0x72, 0xB2) : QColor(0x56, 0xB4, 0xE9);
}

QPen memberPen(qsizetype number)
{
    static const std::array<QColor, 6> COLORS = {QColor(0x00, 0x72, 0xB2), QColor(0xD5, 0x5E, 0x00),
                                                 QColor(0x00, 0x9E, 0x73), QColor(0xCC, 0x79, 0xA7),
                                                 QColor(0xE6, 0x9F, 0x00), QColor(0x56, 0xB4, 0xE9)};
    static const std::array<QList<qreal>, 3> DASHES = {QList<qreal>{}, QList<qreal>{5, 2}, QList<qreal>{1, 2}};
    const auto index = static_cast<std::size_t>(number);
    QPen pen(COLORS[index % COLORS.size()], 1.2, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin);
    const QList<qreal> &dashes = DASHES[index / COLORS.size() % DASHES.size()];
    if (!dashes.isEmpty())
        pen.setDashPattern(dashes);
    return pen;
}

QColor modificationColor()
{
    return QColor(0xA0, 0x3C, 0x78);
}

QColor splitColor()
{
    return QColor(0xD5, 0x5E, 0x00);
}

QColor unmatchedColor()
{
    return QColor(0xBE, 0xBE, 0xBE);
}

QColor axisColor()
{
    return QColor(0x33, 0x33, 0x33);
}

QColor faintTextColor()
{
    return QColor(0x77, 0x77, 0x77);
}

QColor textColor()
{
    return QColor(0x22, 0x22, 0x22);
}

QFont font(double pixels)
{
    // The generic name stands in vector files too, so that each viewer takes a font that it has.
    QFont font(QStringLiteral("sans-serif"));
    font.setPixelSize(qRound(pixels));
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

} // namespace plotStyle

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
    QString rest =
        text.size() > LONGEST_TEXT ? text.left(LONGEST_TEXT / 2) + QChar(u'…') + text.right(LONGEST_TEXT / 2) : text;
    QStringList lines;
    while (lines.size() + 1 < maxLines && metrics.horizontalAdvance(rest) > width) {
        const qsizetype count = charactersThatFit(rest, metrics, width);
        lines.append(rest.left(count).trimmed());
        rest = rest.mid(count).trimmed();
    }
    lines.append(metrics.elidedText(rest, Qt::ElideMiddle, width));
    return lines;
}

void paintLegend(QPainter *painter, const QList<LegendEntry> &entries, double right, double y)
{
    painter->setFont(plotStyle::font(LEGEND_TEXT_SIZE));
    const QFontMetricsF metrics(painter->font());
    const double middle = y - metrics.capHeight() / 2;
    double x = right;
    for (qsizetype i = entries.size() - 1; i >= 0; --i) {
        x -= metrics.horizontalAdvance(entries[i].text);
        painter->setPen(plotStyle::textColor());
        painter->drawText(QPointF(x, y), entries[i].text);
        x -= LEGEND_GAP;
        for (const QPen &pen : entries[i].pens) {
            painter->setPen(pen);
            painter->drawLine(QPointF(x - LEGEND_STROKE, middle), QPointF(x, middle));
            x -= LEGEND_STROKE;
        }
        x -= 3 * LEGEND_GAP;
    }
}

void LegendList::paint(QPainter *painter, const QList<LegendEntry> &entries) const
{
    constexpr double STROKE = 2 * LEGEND_STROKE; // long enough to show dashes
    painter->setFont(plotStyle::font(LEGEND_TEXT_SIZE));
    const QFontMetricsF metrics(painter->font());
    const double width = (right - left) / columns;
    for (qsizetype i = 0; i < entries.size(); ++i) {
        const double x = left + static_cast<double>(i % columns) * width;
        const auto row = i / columns;
        const double base = y + static_cast<double>(row) * lineHeight;
        for (const QPen &pen : entries[i].pens) {
            painter->setPen(pen);
            painter->drawLine(QPointF(x, base - metrics.capHeight() / 2),
                              QPointF(x + STROKE, base - metrics.capHeight() / 2));
        }
        const double textX = x + STROKE + LEGEND_GAP;
        painter->setPen(plotStyle::textColor());
        painter->drawText(QPointF(textX, base),
                          metrics.elidedText(entries[i].text, Qt::ElideMiddle, x + width - 3 * LEGEND_GAP - textX));
    }
}

} // namespace zav
