// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Export.h>

#include <QtCore/QList>
#include <QtCore/QPointF>

namespace zav {

/// Thins a chromatogram or spectrum (y = intensity) in place until at most `targetCount` points are left (below 0
/// counts as 0), and returns how many were removed.
///
/// The lowest points go first, of equally low ones the latest; a NaN intensity is lower than any number. The rest keep
/// their order. With `keepEnds` the first and the last point go only when no other point is left to remove.
///
/// Needs time proportional to the number of points on average (n log n at worst) and one index per point. A list that
/// is short enough is not touched.
ZAV_COMMON_STABLE_EXPORT int removeLowIntensePoints(QList<QPointF> &points, int targetCount, bool keepEnds);

} // namespace zav
