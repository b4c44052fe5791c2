// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Interval.h>

#include <QtCore/QList>
#include <QtCore/QPointF>

#include <optional>

namespace zav {

/// The trace's points (time, intensity) by ascending time; those of equal time keep their order.
QList<QPointF> byTime(QList<QPointF> points);

/// The intensity at a time, on straight lines from point to point; of points of equal time, that of the first. Nothing
/// outside of the points' range. `points` ascend in time.
std::optional<double> intensityAt(double time, const QList<QPointF> &points);

/// What the traces of one precursor show together: at each time of the trace with the most points (of equals, the
/// first), the square of the sum of the square roots of all intensities. A peak that all traces have stands out; one of
/// the same height in a single trace does so much less.
///
/// A trace counts only within its own range of time. Negative intensities count as 0. The result ascends in time.
QList<QPointF> consensusOf(const QList<QList<QPointF>> &traces);

/// The consensus of that many traces in their size: with the mean of the square roots in place of their sum.
QList<QPointF> scaledConsensus(QList<QPointF> consensus, qsizetype traces);

/// How alike a trace and the consensus are within the limits: Pearson's r of their intensities at the times of the
/// consensus that the trace's range holds too. NaN for fewer than two such times, and where either is constant.
double shapeAgreement(const QList<QPointF> &trace, const QList<QPointF> &consensus, const Interval<double> &limits);

} // namespace zav
