// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QList>
#include <QtCore/QPointF>

#include <array>

namespace zav {

/// The lengths of network input that the program uses, in points: a trace costs what the input costs that it is laid
/// into, whatever its own length.
constexpr std::array<int, 4> NETWORK_SIZES = {512, 1024, 2048, 4096};

/// The smallest of them that holds so many points; the largest when none does.
int networkSizeFor(qsizetype pointCount);

/// The trace in at most `size` points. A longer one is thinned to exactly `size`: neighbouring points, as equal in
/// number as can be, become one of their mean intensity at the time of the first; the whole trace keeps its shape, and
/// its times stay times of the trace.
QList<QPointF> thinnedTo(int size, const QList<QPointF> &points);

} // namespace zav
