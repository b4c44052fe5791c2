// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QChar>
#include <QtGui/QColor>
#include <QtGui/QFont>

namespace zav::plotStyle {

/// The colour of an ion series: blue b, vermilion y, green a, from the palette of Okabe and Ito ("Color universal
/// design", 2008), which colour-blind readers tell apart; dark grey for any other.
QColor ionColor(QChar ionType);

/// The same colour, lighter: ions that lost water or ammonia, and heavier isotopes.
QColor lighterIonColor(QChar ionType);

/// Chromatographic peaks: blue and sky blue of the same palette in turn, so that neighbours differ.
QColor peakColor(qsizetype number);

/// Where peaks are split: vermilion.
QColor splitColor();

QColor unmatchedColor();
QColor axisColor();
QColor textColor();
QColor faintTextColor();

/// The picture's font, the reader's own sans-serif one, at a height in page units.
QFont font(double pixels);

} // namespace zav::plotStyle
