// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>

namespace zav {

/// One trace of intensity over retention time.
struct Chromatogram
{
    QString id;            ///< the file's own id; in a file without ids "1", "2" and so on, by order; never empty
    QList<QPointF> points; ///< (time, intensity) in acquisition order, all finite; may be empty
    QString timeUnit;      ///< "min" or "s", rarely another symbol; empty where the file does not say
    QString intensityUnit; ///< e.g. "counts"; empty where the file does not say
};

} // namespace zav
