// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "BenchmarkSetting.h"

#include <functional>
#include <vector>

namespace zav {

/// A call's cost beside that of a part of it: the medians of many rounds, in microseconds a call, and the median of the
/// rounds' ratios.
struct CallComparison
{
    benchmarkSetting::Moment part;
    benchmarkSetting::Moment whole;
    benchmarkSetting::Moment ratio; ///< of the whole to the part
};

/// Times the two in turn, because other work on the machine disturbs neighbours in time alike. Both return whether they
/// succeeded; a failure ends the program.
CallComparison compareCalls(int rounds, int callsPerRound, const std::function<bool()> &part,
                            const std::function<bool()> &whole);

} // namespace zav
