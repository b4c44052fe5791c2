// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QPointF>

#include <optional>

namespace zav {

/// True for an m/z above 0 and an intensity of 0 or more, both finite.
bool isPeak(const QPointF &peak);

/// Reads m/z and intensity, the first two fields of a line of fields separated by white space; `.` is the decimal
/// point. Nothing when they are not there or are not a peak.
std::optional<QPointF> parsePeakLine(const QByteArray &line);

/// Drops the peaks of intensity 0 and sorts the others by m/z.
void tidyPeaks(QList<QPointF> *peaks);

} // namespace zav
