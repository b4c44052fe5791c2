// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace zav {

/// A closed interval [start, end], in the unit of the values it was made from (indices, or retention times in the
/// caller's unit).
template <typename T>
struct Interval
{
    T start{};
    T end{};

    /// True for both ends and everything between them.
    bool contains(const T &value) const { return start <= value && value <= end; }
};

} // namespace zav
