// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TraceOptions.h"

#include <zav/XicBaselineLimitsDetectorOptions.h>

namespace zav {

/// What `zav limits` was asked for.
struct LimitsOptions : TraceOptions
{
    XicBaselineLimitsDetectorOptions detector; ///< without model file and `maxPointCount`
    bool usesNetwork = true;                   ///< or the walk from the local maxima
    double retentionTimeHint = -1.0;           ///< a time that should lie in a peak; -1: none
};

} // namespace zav
