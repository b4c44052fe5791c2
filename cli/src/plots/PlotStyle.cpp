// SPDX-License-Identifier: Apache-2.0
#include "PlotStyle.h"

namespace zav::plotStyle {

QColor ionColor(QChar ionType)
{
    switch (ionType.unicode()) {
    case u'b':
        return QColor(0x00, 0x72, 0xB2);
    case u'y':
        return QColor(0xD5, 0x5E, 0x00);
    case u'a':
        return QColor(0x00, 0x9E, 0x73);
    default:
        return QColor(0x55, 0x55, 0x55);
    }
}

QColor lighterIonColor(QChar ionType)
{
    const QColor full = ionColor(ionType);
    const auto lighter = [](int channel) { return qRound(channel + 0.45 * (255 - channel)); };
    return QColor(lighter(full.red()), lighter(full.green()), lighter(full.blue()));
}

QColor peakColor(qsizetype number)
{
    return number % 2 == 0 ? QColor(0x00, 0x72, 0xB2) : QColor(0x56, 0xB4, 0xE9);
}

QColor splitColor()
{
    return QColor(0xD5, 0x5E, 0x00);
}

QColor unmatchedColor()
{
    return QColor(0xBE, 0xBE, 0xBE);
}

QColor axisColor()
{
    return QColor(0x33, 0x33, 0x33);
}

QColor faintTextColor()
{
    return QColor(0x77, 0x77, 0x77);
}

QColor textColor()
{
    return QColor(0x22, 0x22, 0x22);
}

QFont font(double pixels)
{
    // The generic name stands in vector files too, so that each viewer takes a font that it has.
    QFont font(QStringLiteral("sans-serif"));
    font.setPixelSize(qRound(pixels));
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

} // namespace zav::plotStyle
