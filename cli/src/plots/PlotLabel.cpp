// SPDX-License-Identifier: Apache-2.0
#include "PlotLabel.h"

#include "PlotStyle.h"

#include <QtGui/QFontMetricsF>
#include <QtGui/QPainter>

namespace zav {

namespace {

constexpr double GAP = 3; // free around a label, both sides together

} // namespace

QSizeF labelSize(const QString &text, const QFontMetricsF &metrics)
{
    return {metrics.horizontalAdvance(text) + GAP, metrics.capHeight() + GAP};
}

void paintLabel(QPainter *painter, const LabelBase &base, const LabelRequest &request, const LabelPlace &place,
                const QString &text, const QColor &color)
{
    if (place.needsLeader) {
        painter->setPen(QPen(plotStyle::unmatchedColor(), 0.6));
        painter->drawLine(QPointF(request.stick.x, base.y + base.direction * (request.stick.height + 1)),
                          QPointF(place.x, base.y + base.direction * (place.height - 1)));
    }
    const double middle = base.y + base.direction * (place.height + request.size.height() / 2);
    const QPointF start(place.x - (request.size.width() - GAP) / 2,
                        middle + QFontMetricsF(painter->font()).capHeight() / 2);
    painter->setPen(color.darker(115));
    painter->drawText(start, text);
}

} // namespace zav
