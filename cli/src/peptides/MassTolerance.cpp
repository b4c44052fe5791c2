// SPDX-License-Identifier: Apache-2.0
#include "MassTolerance.h"

#include "PrintableText.h"

#include <QtCore/QRegularExpression>

#include <cmath>

namespace zav {

Result<MassTolerance> parseMassTolerance(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^\\s*([0-9.eE+-]+)\\s*(ppm|da)?\\s*$"),
                                         QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    bool isNumber = false;
    const double value = match.captured(1).toDouble(&isNumber);
    if (!match.hasMatch() || !isNumber || !std::isfinite(value) || !(value > 0))
        return Error(InvalidInput,
                     QStringLiteral("'%1' is not a tolerance such as 20ppm or 0.02Da").arg(displayText(text)));
    const bool isDalton = match.captured(2).compare(QLatin1String("da"), Qt::CaseInsensitive) == 0;
    return MassTolerance{value, isDalton ? MassTolerance::Dalton : MassTolerance::Ppm};
}

} // namespace zav
