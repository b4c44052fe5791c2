// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QList>
#include <QtCore/QStringList>

namespace zav {

/// What stands beside the ticks of a linear axis: all with as many decimals as tell neighbours apart. From 100,000 on
/// and below a thousandth they share a power of ten that is a multiple of three: "0.5e6", "1.0e6". Zero is always "0".
QStringList tickTexts(const QList<double> &ticks);

/// A value as precise as is seen on an axis of this length: to a thousandth of it, seven decimals at most.
QString textOnAxis(double value, double axisLength);

} // namespace zav
