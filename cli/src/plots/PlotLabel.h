// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LabelPlacement.h"

#include <QtCore/QString>
#include <QtGui/QColor>

class QFontMetricsF;
class QPainter;

namespace zav {

/// The room a label asks for, some of it free around the text.
QSizeF labelSize(const QString &text, const QFontMetricsF &metrics);

/// The base line of a plot on the page and the direction of its sticks: -1 upward, 1 downward.
struct LabelBase
{
    double y = 0;
    int direction = -1;
};

/// Writes a text of `labelSize` at its place in the painter's font, with a thin line to its stick where it lies away.
void paintLabel(QPainter *painter, const LabelBase &base, const LabelRequest &request, const LabelPlace &place,
                const QString &text, const QColor &color);

} // namespace zav
