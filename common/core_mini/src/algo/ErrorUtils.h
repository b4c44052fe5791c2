// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <utility>

namespace zav {

/// Whether equality passes a threshold check: with `Inclusive` it does, with any other value it does not.
enum ErrorUtilsParam : int { Exclusive = 0, Inclusive = 1 };

/// Checks that turn a broken condition into the error the caller hands in.
///
/// Each returns `Error(NoError)` when the condition holds and drops `error`. Otherwise it returns `error`, tagged with
/// the check itself; an `error` without a code comes back untagged, so that such a check fails silently.
struct ErrorUtils
{
    /// Passes when a == b.
    template <typename T>
    static Error equal(const T &a, const T &b, Error error)
    {
        return a == b ? Error(NoError) : tagged(std::move(error), Q_FUNC_INFO, __LINE__);
    }

    /// Passes when value >= threshold (`Inclusive`) or value > threshold (`Exclusive`).
    template <typename T>
    static Error aboveThreshold(const T &value, const T &threshold, ErrorUtilsParam param, Error error)
    {
        static_assert(std::is_integral_v<T>, "floating-point values need a rule for near equality");
        const bool passes = param == Inclusive ? value >= threshold : value > threshold;
        return passes ? Error(NoError) : tagged(std::move(error), Q_FUNC_INFO, __LINE__);
    }

    /// Passes when value <= threshold (`Inclusive`) or value < threshold (`Exclusive`).
    ///
    /// For floating point, `Inclusive` fails only on value > threshold, compared exactly, and `Exclusive` also on
    /// near equality (`nearlyEqual`). No comparison with NaN holds, so NaN passes both. `nearlyEqual` takes an infinity
    /// for near to every other number, the opposite infinity too, but not to itself: `Exclusive` passes where both are
    /// the same infinity, and fails where one of the two is finite or the other infinity.
    template <typename T>
    static Error belowThreshold(const T &value, const T &threshold, ErrorUtilsParam param, Error error)
    {
        bool passes = !(value > threshold);
        if (param != Inclusive)
            passes = passes && !nearlyEqual(value, threshold);
        return passes ? Error(NoError) : tagged(std::move(error), Q_FUNC_INFO, __LINE__);
    }

private:
    /// |a - b| <= 1e-12 max(1, |a|, |b|) for floating point, equality for integers.
    template <typename T>
    static bool nearlyEqual(const T &a, const T &b)
    {
        if constexpr (std::is_floating_point_v<T>)
            return std::abs(a - b) <= T(1e-12) * std::max({T(1), std::abs(a), std::abs(b)});
        else
            return a == b;
    }

    static Error tagged(Error error, const char *functionSignature, int line)
    {
        if (error.hasError())
            error.ecatch(functionSignature, "common/core_mini/src/algo/ErrorUtils", line);
        return error;
    }
};

} // namespace zav
