// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Result.h>

#include <QtCore/QString>

namespace zav {

/// How far an observed peak may lie from the m/z of an ion, to either side; the limit itself counts.
struct MassTolerance
{
    enum Unit { Ppm, Dalton };

    double value = 20;
    Unit unit = Ppm;

    /// The tolerance in m/z units at `mz`.
    double at(double mz) const { return unit == Ppm ? mz * value * 1e-6 : value; }
};

/// Reads `20ppm`, `0.02Da` or `0.02 Da`; the unit in any case, ppm where it is missing. `InvalidInput` for anything
/// else and for a value that is not positive and finite.
Result<MassTolerance> parseMassTolerance(const QString &text);

} // namespace zav
