// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArrayView>

#include <charconv>
#include <cmath>
#include <optional>

namespace zav {

/// The finite number that all of `text` is, apart from white space around it; written with a dot whatever the locale.
inline std::optional<double> finiteNumber(QByteArrayView text)
{
    QByteArrayView digits = text.trimmed();
    if (digits.startsWith('+') && !digits.startsWith("+-"))
        digits = digits.sliced(1);
    double number = 0;
    const auto [end, problem] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool isWhole = problem == std::errc() && end == digits.data() + digits.size();
    return isWhole && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

} // namespace zav
