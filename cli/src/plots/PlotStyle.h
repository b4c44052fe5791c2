// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QChar>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QColor>
#include <QtGui/QFont>
#include <QtGui/QPen>

class QFontMetricsF;
class QPainter;

namespace zav {

namespace plotStyle {

/// The colour of an ion series: blue b, vermilion y, green a, from the palette of Okabe and Ito ("Color universal
/// design", 2008), which colour-blind readers tell apart; dark grey for any other.
QColor ionColor(QChar ionType);

/// The same colour, lighter: ions that lost a neutral molecule, and heavier isotopes.
QColor lighterIonColor(QChar ionType);

/// Chromatographic peaks: blue and sky blue of the same palette in turn, so that neighbours differ.
QColor peakColor(qsizetype number);

/// Traces that are drawn together: six colours of the same palette, then the same with dashes, then with dots.
QPen memberPen(qsizetype number);

/// Modified residues: reddish purple of the same palette, darkened so that small text can be read.
QColor modificationColor();

/// Where peaks are split: vermilion.
QColor splitColor();

QColor unmatchedColor();
QColor axisColor();
QColor textColor();
QColor faintTextColor();

/// The reader's own sans-serif font, at a height in page units.
QFont font(double pixels);

} // namespace plotStyle

/// The text on one line. White space becomes one blank. Control characters and unpaired surrogates, which no picture
/// can show, become the replacement character.
QString printable(const QString &text);

/// At most `maxLines` lines no wider than `width`, broken at blanks where there are any. A text that is longer is
/// shortened in the middle of the last line: identifiers differ at their ends.
QStringList wrapped(const QString &text, const QFontMetricsF &metrics, double width, int maxLines);

/// What is drawn with these pens.
struct LegendEntry
{
    QList<QPen> pens; ///< a stroke of each, from right to left
    QString text;
};

/// The entries on one line, from left to right, that ends at `right` on the text's base line `y`.
void paintLegend(QPainter *painter, const QList<LegendEntry> &entries, double right, double y);

/// The same as a list in `columns` of equal width from `left` to `right`, row by row, `lineHeight` apart; the first
/// row's base line is `y`. A text that is too long is shortened in its middle.
struct LegendList
{
    double left = 0;
    double right = 0;
    double y = 0;
    double lineHeight = 0;
    int columns = 1;

    void paint(QPainter *painter, const QList<LegendEntry> &entries) const;
};

} // namespace zav
