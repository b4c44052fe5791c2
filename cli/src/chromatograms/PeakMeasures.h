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

/// Leaves at most `count` peaks, those of the largest area above the line, by their start as before; of equal ones the
/// earlier stays. The others are counted in `leftOut`.
void keepBest(qsizetype count, TraceFindings *findings);

/// What was found in the consensus of a group, for one of its traces: the same limits and splits, measured on the
/// trace's points and compared with the consensus.
///
/// Where the trace has no intensity above 0 within the limits, height and areas are 0, apex and shape NaN. `remark`
/// says in how many peaks that is so; the other remarks are left to the group.
TraceFindings memberFindings(const TraceFindings &ofConsensus, const QList<QPointF> &points,
                             const QList<QPointF> &consensus);

} // namespace zav
