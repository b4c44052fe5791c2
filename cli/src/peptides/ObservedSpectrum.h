// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>

namespace zav {

/// One measured MS/MS spectrum.
struct ObservedSpectrum
{
    QString title;           ///< what the file calls it: title or native id; the file's name where it has neither
    double precursorMz = 0;  ///< m/z of the selected ion, 0 where the file does not say
    int precursorCharge = 0; ///< 0 where the file does not say
    QList<QPointF> peaks;    ///< (m/z, intensity in the file's own unit), ascending m/z, intensities above 0
};

} // namespace zav
