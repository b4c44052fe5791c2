// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QList>

namespace zav {

/// A linear axis: data from `from` to `to` lie at `start` to `end` on the page (any direction).
struct PlotScale
{
    double from = 0;
    double to = 1;
    double start = 0;
    double end = 1;

    double at(double value) const { return start + (value - from) / (to - from) * (end - start); }
};

/// Multiples of 1, 2 or 5 times a power of ten within [from, to], as many as fit but at most `maxCount` (2 or more).
QList<double> niceTicks(double from, double to, int maxCount);

} // namespace zav
