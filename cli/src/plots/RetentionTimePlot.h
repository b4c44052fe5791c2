// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>

#include <functional>

namespace zav {

/// What a picture shows: a calibration of retention times and the pairs that it was fitted to.
struct RetentionTimePlotData
{
    QString source;                       ///< of the observed times, such as the file's name; may be empty
    QList<QPointF> pairs;                 ///< (predicted index, observed time), in any order
    std::function<double(double)> timeAt; ///< the curve: the time of an index
    double width95 = 0;                   ///< of the band around the curve, in the unit of the times
    int outlierCount = 0;                 ///< among the pairs
};

/// Draws observed against predicted times, the fitted curve and the band that holds 95 % of the pairs, into a file
/// whose ending says what it is: .svg, .png or .pdf. The file appears under its name only when it is complete; an older
/// one stays on failure.
///
/// Pairs that are not finite, or so far off that the others would shrink to a line, are counted in the picture and not
/// drawn. Pairs that share a pixel are drawn once.
///
/// Needs a QGuiApplication (`createApplication`). `InvalidInput` for another ending; `Failure` when the file cannot be
/// written, when the machine has no font, and in a build that cannot draw.
Error drawRetentionTimes(const RetentionTimePlotData &data, const QString &path);

} // namespace zav
