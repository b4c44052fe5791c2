// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TraceOptions.h"

#include <zav/XicPeakSplitterOptions.h>

namespace zav {

/// What `zav split` was asked for.
struct SplitOptions : TraceOptions
{
    XicPeakSplitterOptions splitter; ///< without model file and `maxPointCount`
};

} // namespace zav
