// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>
#include <zav/Export.h>

#include <QtCore/QString>

namespace zav {

/// What `XicBaselineLimitsDetector::init` needs to know. The defaults fit the shipped network; only `modelFilePath` has
/// to be set. Indices and counts are in points of the chromatogram, heights relative to the highest smoothed point.
struct XicBaselineLimitsDetectorOptions
{
    /// The network's graph file. Not empty.
    QString modelFilePath;

    /// Length of the network's input in points, which the network must accept; above 200, at most 16,777,216
    /// (2^24). A longer chromatogram is thinned to 200 points less.
    int maxPointCount = 8192;

    /// A point belongs to a peak where the network gives a probability of 1 - this or more. Within 0 to 1: the higher,
    /// the more and the wider the peaks.
    double probabilityTolerance = 0.8;

    /// Peak points that are at most this many points apart belong together (DBSCAN's eps, inclusive). Above 0.
    double dbscanEpsilon = 1.5;

    /// Points within `dbscanEpsilon` of a point, itself included, that make it the core of a peak. 1 to 1,048,576
    /// (2^20); with 2 a lone point is noise. With 1 a lone first point is a peak whose limits cannot be told, and the
    /// call fails.
    int dbscanMinPoints = 2;

    /// A chromatogram of this many points or fewer has no peaks for the network. 0 or more.
    int minPointCount = 5;

    /// How often the intensities are smoothed by the Gaussian filter. 0 or more; 0 leaves them as they are.
    int smoothingPassCount = 1;

    /// Taps of the Gaussian filter (sigma 4 points), an even number rounded up. 1 to 1,048,576 (2^20).
    int gaussianFilterSize = 5;

    /// Without the network, a peak ends where it falls to this share of its apex. From 0 to less than 1.
    double limitThreshold = 0.05;

    /// `InvalidInput`, naming field, value and rule, for the first field out of its range (NaN always is), in the
    /// order above. Whether the file can be read is not looked at.
    ZAV_COMMON_CORE_MINI_EXPORT Error checkForParameterErrors() const;
};

} // namespace zav
