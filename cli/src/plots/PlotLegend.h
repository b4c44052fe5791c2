// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtGui/QPen>

class QPainter;

namespace zav {

/// What is drawn with these pens.
struct LegendEntry
{
    QList<QPen> pens; ///< a stroke of each, from right to left
    QString text;
};

/// The entries on one line, from left to right, that ends at `right` on the text's base line `y`.
void paintLegend(QPainter *painter, const QList<LegendEntry> &entries, double right, double y);

} // namespace zav
