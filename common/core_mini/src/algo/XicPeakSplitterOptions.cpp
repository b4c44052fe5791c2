// SPDX-License-Identifier: Apache-2.0
#include <zav/XicPeakSplitterOptions.h>

#include "ParameterRule.h"

namespace zav {

Error XicPeakSplitterOptions::checkForParameterErrors() const
{
    // A chromatogram that does not fit is thinned to 200 points less than maxPointCount.
    return firstBrokenRule({
        ParameterRule::notEmpty("modelFilePath", modelFilePath),
        ParameterRule::greaterThan("maxPointCount", maxPointCount, 200),
        ParameterRule::atMost("maxPointCount", maxPointCount, MOST_POINTS),
        ParameterRule::within("probabilityTolerance", probabilityTolerance, 0.0, 1.0),
        ParameterRule::atLeast("gaussianFilterSize", gaussianFilterSize, 1),
        ParameterRule::atMost("gaussianFilterSize", gaussianFilterSize, MOST_FILTER_TAPS),
        ParameterRule::atLeast("smoothingPassCount", smoothingPassCount, 0),
    });
}

} // namespace zav
