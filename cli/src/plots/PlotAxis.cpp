// SPDX-License-Identifier: Apache-2.0
#include "PlotAxis.h"

#include "PlotStyle.h"
#include "TickText.h"

#include <QtGui/QFontMetricsF>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

// In page units.
constexpr double TICK_LENGTH = 5;
constexpr double TICK_TEXT_SIZE = 11;
constexpr double TICK_TEXT_DISTANCE = 13; // of the text's base line from the end of the tick
constexpr double TITLE_TEXT_SIZE = 12;
constexpr double BOTTOM_TICK_SPACING = 80;
constexpr double LEFT_TICK_SPACING = 34;

QList<double> ticksOf(const PlotScale &scale, double spacing)
{
    const int count = static_cast<int>(std::abs(scale.end - scale.start) / spacing) + 1;
    return niceTicks(scale.from, scale.to, std::max(2, count));
}

void drawRotated(QPainter *painter, const QPointF &centre, const QString &text)
{
    const QFontMetricsF metrics(painter->font());
    painter->save();
    painter->translate(centre);
    painter->rotate(-90);
    painter->drawText(QPointF(-metrics.horizontalAdvance(text) / 2, metrics.capHeight() / 2), text);
    painter->restore();
}

} // namespace

void BottomAxis::paint(QPainter *painter) const
{
    painter->setPen(QPen(plotStyle::axisColor(), 1));
    painter->drawLine(QPointF(scale.start, y), QPointF(scale.end, y));
    painter->setFont(plotStyle::font(TICK_TEXT_SIZE));
    const QFontMetricsF metrics(painter->font());
    const QList<double> ticks = ticksOf(scale, BOTTOM_TICK_SPACING);
    const QStringList texts = tickTexts(ticks);
    for (qsizetype i = 0; i < ticks.size(); ++i) {
        const double x = scale.at(ticks[i]);
        painter->setPen(QPen(plotStyle::axisColor(), 1));
        painter->drawLine(QPointF(x, y), QPointF(x, y + TICK_LENGTH));
        painter->setPen(plotStyle::textColor());
        painter->drawText(QPointF(x - metrics.horizontalAdvance(texts[i]) / 2, y + TICK_LENGTH + TICK_TEXT_DISTANCE),
                          texts[i]);
    }
    QFont font = plotStyle::font(TITLE_TEXT_SIZE);
    font.setItalic(isSymbol);
    painter->setFont(font);
    const double width = QFontMetricsF(painter->font()).horizontalAdvance(title);
    painter->drawText(QPointF((scale.start + scale.end - width) / 2, y + titleDistance), title);
}

void LeftAxis::paint(QPainter *painter) const
{
    painter->setPen(QPen(plotStyle::axisColor(), 1));
    painter->drawLine(QPointF(x, scale.start), QPointF(x, scale.end));
    painter->setFont(plotStyle::font(TICK_TEXT_SIZE));
    const QList<double> ticks = ticksOf(scale, LEFT_TICK_SPACING);
    const QStringList texts = tickTexts(ticks);
    for (qsizetype i = 0; i < ticks.size(); ++i)
        paintTick(painter, ticks[i], texts[i]);
    painter->setFont(plotStyle::font(TITLE_TEXT_SIZE));
    drawRotated(painter, QPointF(x - titleDistance, (scale.start + scale.end) / 2), title);
}

void LeftAxis::paintTick(QPainter *painter, double value, const QString &text) const
{
    const QFontMetricsF metrics(painter->font());
    const double y = scale.at(value);
    painter->setPen(QPen(plotStyle::axisColor(), 1));
    painter->drawLine(QPointF(x - TICK_LENGTH, y), QPointF(x, y));
    painter->setPen(plotStyle::textColor());
    painter->drawText(QPointF(x - TICK_LENGTH - 3 - metrics.horizontalAdvance(text), y + metrics.capHeight() / 2),
                      text);
}

} // namespace zav
