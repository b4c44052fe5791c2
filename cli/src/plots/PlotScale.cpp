// SPDX-License-Identifier: Apache-2.0
#include "PlotScale.h"

#include <cmath>

namespace zav {

namespace {

double niceStep(double atLeast)
{
    const double power = std::pow(10.0, std::floor(std::log10(atLeast)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= atLeast * (1 - 1e-9))
            return factor * power;
    }
    return 10 * power;
}

} // namespace

QList<double> niceTicks(double from, double to, int maxCount)
{
    const double step = niceStep((to - from) / (maxCount - 1));
    const double slack = 1e-9 * step; // a limit that is a tick but for rounding counts as one
    QList<double> ticks;
    const auto last = static_cast<qint64>(std::floor((to + slack) / step));
    for (auto i = static_cast<qint64>(std::ceil((from - slack) / step)); i <= last; ++i)
        ticks.append(static_cast<double>(i) * step);
    return ticks;
}

} // namespace zav
