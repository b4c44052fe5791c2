// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QStringList>

#include <ostream>

namespace zav {

/// The places of an error's trail as "Tensor::setData in ml/src/Tensor", the innermost first. A place without a line
/// reads "no line".
inline QStringList trailOf(const Error &error)
{
    QStringList places;
    for (const CaughtAt &place : error.trail()) {
        const QString call = place.functionSignature.section(QLatin1Char('('), 0, 0).section(QLatin1Char(' '), -1);
        const QString function = QString(call).remove(QStringLiteral("zav::"));
        places.append(place.line > 0 ? function + QStringLiteral(" in ") + place.sourceFile
                                     : QStringLiteral("no line"));
    }
    return places;
}

} // namespace zav

// GoogleTest finds these beside the types.
inline std::ostream &operator<<(std::ostream &stream, const QString &text)
{
    return stream << '"' << text.toStdString() << '"';
}
