// SPDX-License-Identifier: Apache-2.0
#include "TickText.h"

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

constexpr double SHORTENED_FROM = 1e5;
constexpr double SHORTENED_BELOW = 1e-3;
constexpr int MAX_DECIMALS = 12;

// Of a step that is a small whole number times a power of ten.
int decimalsOf(double step)
{
    int decimals = 0;
    while (decimals < MAX_DECIMALS && std::abs(step - std::round(step)) > 1e-6 * step) {
        step *= 10;
        ++decimals;
    }
    return decimals;
}

int sharedExponent(double largest)
{
    if (largest <= 0 || (largest >= SHORTENED_BELOW && largest < SHORTENED_FROM))
        return 0;
    return 3 * static_cast<int>(std::floor(std::log10(largest) / 3 + 1e-9));
}

} // namespace

QStringList tickTexts(const QList<double> &ticks)
{
    double largest = 0;
    for (const double tick : ticks)
        largest = std::max(largest, std::abs(tick));
    const int exponent = sharedExponent(largest);
    const double unit = std::pow(10.0, exponent);
    const int decimals = decimalsOf((ticks.size() > 1 ? ticks[1] - ticks[0] : largest) / unit);
    QStringList texts;
    for (const double tick : ticks) {
        const QString number = QString::number(tick / unit, 'f', decimals);
        const bool isZero = number.toDouble() == 0;
        texts.append(isZero ? QStringLiteral("0") : exponent == 0 ? number : number + u'e' + QString::number(exponent));
    }
    return texts;
}

QString textOnAxis(double value, double axisLength)
{
    const int decimals = static_cast<int>(std::ceil(-std::log10(axisLength / 1000)));
    return QString::number(value, 'f', std::clamp(decimals, 0, 7));
}

} // namespace zav
