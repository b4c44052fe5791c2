// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Trace.h"

#include <zav/Interval.h>

#include <QtCore/QList>
#include <QtCore/QPointF>

namespace zav {

/// Measures a peak on the points (time, intensity; in acquisition order) whose time lies within the limits, as they
/// are: nothing is smoothed, interpolated or cut off below 0. Where there are none, all but the limits is 0.
TracePeak measurePeak(const QList<QPointF> &points, const Interval<double> &limits);

} // namespace zav
