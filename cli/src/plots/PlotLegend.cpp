// SPDX-License-Identifier: Apache-2.0
#include "PlotLegend.h"

#include "PlotStyle.h"

#include <QtGui/QFontMetricsF>
#include <QtGui/QPainter>

namespace zav {

namespace {

// In page units.
constexpr double TEXT_SIZE = 11;
constexpr double GAP = 5;
constexpr double STROKE = 12;

} // namespace

void paintLegend(QPainter *painter, const QList<LegendEntry> &entries, double right, double y)
{
    painter->setFont(plotStyle::font(TEXT_SIZE));
    const QFontMetricsF metrics(painter->font());
    const double middle = y - metrics.capHeight() / 2;
    double x = right;
    for (auto entry = entries.crbegin(); entry != entries.crend(); ++entry) {
        x -= metrics.horizontalAdvance(entry->text);
        painter->setPen(plotStyle::textColor());
        painter->drawText(QPointF(x, y), entry->text);
        x -= GAP;
        for (const QPen &pen : entry->pens) {
            painter->setPen(pen);
            painter->drawLine(QPointF(x - STROKE, middle), QPointF(x, middle));
            x -= STROKE;
        }
        x -= 3 * GAP;
    }
}

} // namespace zav
