// SPDX-License-Identifier: Apache-2.0
#include <zav/XicBaselineLimitsDetectorOptions.h>

#include "ParameterRule.h"

namespace zav {

Error XicBaselineLimitsDetectorOptions::checkForParameterErrors() const
{
    // A chromatogram that does not fit is thinned to 200 points less than maxPointCount.
    return firstBrokenRule({
        ParameterRule::notEmpty("modelFilePath", modelFilePath),
        ParameterRule::greaterThan("maxPointCount", maxPointCount, 200),
        ParameterRule::atMost("maxPointCount", maxPointCount, MOST_POINTS),
        ParameterRule::within("probabilityTolerance", probabilityTolerance, 0.0, 1.0),
        ParameterRule::greaterThan("dbscanEpsilon", dbscanEpsilon, 0.0),
        ParameterRule::atLeast("dbscanMinPoints", dbscanMinPoints, 1),
        ParameterRule::atMost("dbscanMinPoints", dbscanMinPoints, MOST_CORE_POINTS),
        ParameterRule::atLeast("minPointCount", minPointCount, 0),
        ParameterRule::atLeast("smoothingPassCount", smoothingPassCount, 0),
        ParameterRule::atLeast("gaussianFilterSize", gaussianFilterSize, 1),
        ParameterRule::atMost("gaussianFilterSize", gaussianFilterSize, MOST_FILTER_TAPS),
        ParameterRule::fromToBelow("limitThreshold", limitThreshold, 0.0, 1.0),
    });
}

} // namespace zav
