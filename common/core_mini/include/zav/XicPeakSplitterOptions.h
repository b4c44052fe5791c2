// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>
#include <zav/Export.h>

#include <QtCore/QString>

namespace zav {

/// What `XicPeakSplitter::init` needs to know. The defaults fit the shipped network; only `modelFilePath` has to be
/// set.
struct XicPeakSplitterOptions
{
    /// The network's graph file. Not empty.
    QString modelFilePath;

    /// Length of the network's input in points, which the network must accept; above 200, at most 16,777,216
    /// (2^24). A longer chromatogram is thinned to it.
    int maxPointCount = 1024;

    /// A split point needs a probability of 1 - this or more from the network. Within 0 to 1: the higher, the more
    /// splits.
    double probabilityTolerance = 0.5;

    /// Taps of the Gaussian filter (sigma 4 points), an even number rounded up. 1 to 1,048,576 (2^20).
    int gaussianFilterSize = 5;

    /// How often the intensities are smoothed by the Gaussian filter. 0 or more; 0 leaves them as they are.
    int smoothingPassCount = 0;

    /// `InvalidInput`, naming field, value and rule, for the first field out of its range (NaN always is), in the
    /// order above. Whether the file can be read is not looked at.
    ZAV_COMMON_CORE_MINI_EXPORT Error checkForParameterErrors() const;
};

} // namespace zav
