// SPDX-License-Identifier: Apache-2.0
#include "PlotAxis.h"

#include "PlotStyle.h"

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

// Numbers beside ticks share a power of ten from here on, and below here.
constexpr double SHORTENED_FROM = 1e5;
constexpr double SHORTENED_BELOW = 1e-3;
constexpr int MAX_DECIMALS = 12;

double niceStep(double atLeast)
{
    const double power = std::pow(10.0, std::floor(std::log10(atLeast)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= atLeast * (1 - 1e-9))
            return factor * power;
    }
    return 10 * power;
}

// Of a step, which is a small whole number times a power of ten.
int decimalsOf(double step)
{
    int decimals = 0;
    while (decimals < MAX_DECIMALS && std::abs(step - std::round(step)) > 1e-6 * step) {
        step *= 10;
        ++decimals;
    }
    return decimals;
}

int sharedExponent(double largest)
{
    if (largest <= 0 || (largest >= SHORTENED_BELOW && largest < SHORTENED_FROM))
        return 0;
    return 3 * static_cast<int>(std::floor(std::log10(largest) / 3 + 1e-9));
}

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

QList<double> niceTicks(double from, double to, int maxCount)
{
    const double step = niceStep((to - from) / (maxCount - 1));
    const double slack = 1e-9 * step; // a limit that misses a tick by rounding only counts as one
    QList<double> ticks;
    const auto last = static_cast<qint64>(std::floor((to + slack) / step));
    for (auto i = static_cast<qint64>(std::ceil((from - slack) / step)); i <= last; ++i)
        ticks.append(static_cast<double>(i) * step);
    return ticks;
}

QStringList tickTexts(const QList<double> &ticks)
{
    double largest = 0;
    for (const double tick : ticks)
        largest = std::max(largest, std::abs(tick));
    const int exponent = sharedExponent(largest);
    const double unit = std::pow(10.0, exponent);
    const int decimals = decimalsOf((ticks.size() > 1 ? ticks[1] - ticks[0] : largest) / unit);
    QStringList texts;
    for (const double tick : ticks) {
        const QString number = QString::number(tick / unit, 'f', decimals);
        const bool isZero = number.toDouble() == 0;
        texts.append(isZero ? QStringLiteral("0") : exponent == 0 ? number : number + u'e' + QString::number(exponent));
    }
    return texts;
}

QString textOnAxis(double value, double axisLength)
{
    const int decimals = static_cast<int>(std::ceil(-std::log10(axisLength / 1000)));
    return QString::number(value, 'f', std::clamp(decimals, 0, 7));
}

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
