// SPDX-License-Identifier: Apache-2.0
#include "PeptideDiagram.h"

#include "PlotStyle.h"

#include <QtGui/QFontMetricsF>
#include <QtGui/QPainter>

#include <algorithm>

namespace zav {

namespace {

constexpr double MAX_PITCH = 30;          // between neighbouring residues
constexpr double MIN_NUMBERED_PITCH = 19; // where the ion numbers have room
constexpr double LETTER_SHARE = 0.72;     // of the pitch
constexpr double MAX_LETTER = 18;
constexpr double NUMBER_SIZE = 9;
constexpr double MASS_DISTANCE = 12; // of a modification's mass from the hooks of the y ions

// Page positions of a diagram's parts.
struct DiagramGeometry
{
    double left; // of the first residue's cell
    double pitch;
    double middle; // vertical
    double letter; // font height

    double residueX(int index) const { return left + (index + 0.5) * pitch; }
    double bondX(int residuesBefore) const { return left + residuesBefore * pitch; }
    double armLength() const { return 0.5 * letter + 5; }
    double hookLength() const { return 0.36 * pitch; }
    double massBaseline() const { return middle - armLength() - MASS_DISTANCE; } // above the numbers of the y ions
};

void drawCentred(QPainter *painter, double x, double baseline, const QString &text)
{
    const double width = QFontMetricsF(painter->font()).horizontalAdvance(text);
    painter->drawText(QPointF(x - width / 2, baseline), text);
}

// `direction` is -1 for hooks up and to the right (y), 1 for hooks down and to the left (b).
void drawHook(QPainter *painter, const DiagramGeometry &geometry, int residuesBefore, int direction)
{
    const QPointF bond(geometry.bondX(residuesBefore), geometry.middle + direction * 0.5);
    const QPointF corner = bond + QPointF(0, direction * geometry.armLength());
    painter->drawPolyline(QList<QPointF>{bond, corner, corner - QPointF(direction * geometry.hookLength(), 0)});
}

void drawNumber(QPainter *painter, const DiagramGeometry &geometry, int residuesBefore, int direction, int number)
{
    if (geometry.pitch < MIN_NUMBERED_PITCH)
        return;
    const double x = geometry.bondX(residuesBefore) - direction * geometry.hookLength() / 2;
    const double edge = geometry.middle + direction * (geometry.armLength() + 3);
    const double ascent = direction > 0 ? NUMBER_SIZE * 0.75 : 0;
    drawCentred(painter, x, edge + ascent, QString::number(number));
}

bool isTerminal(const PlacedModification &placed, int length)
{
    return placed.position < 1 || placed.position > length;
}

// "+16", "-18"
QString wholeMass(double mass)
{
    return (mass < 0 ? QString() : QStringLiteral("+")) + QString::number(qRound64(mass));
}

void drawLetters(QPainter *painter, const DiagramGeometry &geometry, const Peptidoform &peptidoform)
{
    QSet<int> modified;
    for (const PlacedModification &placed : peptidoform.modifications())
        modified.insert(placed.position);
    painter->setFont(plotStyle::font(geometry.letter));
    const double baseline = geometry.middle + QFontMetricsF(painter->font()).capHeight() / 2;
    for (int i = 0; i < peptidoform.length(); ++i) {
        painter->setPen(modified.contains(i + 1) ? plotStyle::modificationColor() : plotStyle::textColor());
        drawCentred(painter, geometry.residueX(i), baseline, peptidoform.sequence().mid(i, 1));
    }
}

void drawMasses(QPainter *painter, const DiagramGeometry &geometry, const Peptidoform &peptidoform)
{
    if (peptidoform.modifications().isEmpty())
        return;
    painter->setFont(plotStyle::font(NUMBER_SIZE));
    painter->setPen(plotStyle::modificationColor());
    const double middle = geometry.middle + QFontMetricsF(painter->font()).capHeight() / 2;
    for (const PlacedModification &placed : peptidoform.modifications()) {
        const bool isBeside = isTerminal(placed, peptidoform.length());
        drawCentred(painter, geometry.residueX(placed.position - 1), isBeside ? middle : geometry.massBaseline(),
                    wholeMass(placed.modification.mass));
    }
}

} // namespace

void PeptideDiagram::paint(QPainter *painter, const QRectF &area) const
{
    const int length = peptidoform.length();
    if (length == 0)
        return;
    const QList<PlacedModification> &modifications = peptidoform.modifications();
    const bool hasTerminal = std::any_of(modifications.begin(), modifications.end(),
                                         [=](const auto &placed) { return isTerminal(placed, length); });
    const double pitch = std::min(MAX_PITCH, area.width() / (hasTerminal ? length + 2 : length));
    const DiagramGeometry geometry{area.center().x() - pitch * length / 2, pitch, area.center().y(),
                                   std::min(MAX_LETTER, LETTER_SHARE * pitch)};
    drawLetters(painter, geometry, peptidoform);
    drawMasses(painter, geometry, peptidoform);

    painter->setFont(plotStyle::font(NUMBER_SIZE));
    for (int bond = 1; bond < length; ++bond) {
        if (bIons.contains(bond)) {
            painter->setPen(QPen(plotStyle::ionColor(u'b'), 1.3));
            drawHook(painter, geometry, bond, 1);
            drawNumber(painter, geometry, bond, 1, bond);
        }
        if (yIons.contains(length - bond)) {
            painter->setPen(QPen(plotStyle::ionColor(u'y'), 1.3));
            drawHook(painter, geometry, bond, -1);
            drawNumber(painter, geometry, bond, -1, length - bond);
        }
    }
}

} // namespace zav
