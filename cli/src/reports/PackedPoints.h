// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QPointF>

namespace zav {

/// Of longer traces a report holds the points that a picture shows: the first, the lowest, the highest and the last of
/// each of 8,192 stretches of equal numbers of points.
constexpr qsizetype MOST_REPORTED_POINTS = 32768;

/// The points of a trace or the peaks of a spectrum in the form that the page reads, for its picture: single precision,
/// the places (times or m/z) as distances from the first. All numbers are little-endian:
///
///     4 bytes  number of points n (unsigned)
///     8 bytes  place of the first point (double)
///     8 bytes  factor of the intensities (double), a power of two, 1 unless single precision cannot hold them
///     4 n      distances from the first place (float): first the lowest byte of each, then the second and so on
///     4 n      intensities divided by the factor (float): likewise
///
/// Bytes of one rank stand together because they deflate better.
QByteArray packedPoints(const QList<QPointF> &points);

/// The points that a report holds of a trace.
QList<QPointF> reportedPoints(const QList<QPointF> &points);

} // namespace zav
