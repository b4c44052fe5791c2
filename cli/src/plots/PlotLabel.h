// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QList>
#include <QtCore/QSizeF>
#include <QtCore/QString>
#include <QtGui/QColor>

class QFontMetricsF;
class QPainter;

namespace zav {

/// A peak as drawn: a vertical line of `height` above the base line at `x`. Lengths are in page units here and below.
struct Stick
{
    double x = 0;
    double height = 0;
};

/// A text to be written at the top of a stick.
struct LabelRequest
{
    Stick stick;
    QSizeF size;
    int rank = 0; ///< labels of lower rank choose first, whatever their sticks' heights
};

/// Where a text goes: its lower edge lies `height` above the base line, its horizontal middle at `x`.
struct LabelPlace
{
    int request = 0;
    double x = 0;
    double height = 0;
    bool needsLeader = false; ///< it had to move away: a line to the top of its stick is called for
};

/// Places labels above their sticks so that no label covers another label, a leader line or a stick. Within a rank
/// the tallest sticks choose first; a label that finds its place taken moves up or aside, and is left out when there is
/// no room nearby.
///
/// All labels stay between `left` and `right`, and under `top` above the base line. The cost grows with the square of
/// the number of labels.
QList<LabelPlace> placeLabels(const QList<LabelRequest> &requests, const QList<Stick> &sticks, double left,
                              double right, double top);

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
