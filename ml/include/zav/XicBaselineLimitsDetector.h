// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>
#include <zav/Export.h>
#include <zav/Interval.h>
#include <zav/Result.h>
#include <zav/XicBaselineLimitsDetectorOptions.h>

#include <QtCore/QList>
#include <QtCore/QPointF>

#include <memory>

namespace zav {

/// Finds where the peaks of an extracted-ion chromatogram (XIC) start and end, with a trained segmentation network or
/// by a walk outward from the local maxima.
///
/// Points are (retention time, intensity) in acquisition order; limits come back in the same unit of time. The times
/// must not descend within a peak: a call that meets an interval whose start is later than its end fails as a whole
/// (`InvalidInput` "Start is greater than end"). Infinite and NaN intensities are taken; +infinity hides the others.
/// An interval beyond the end of the list is left out.
///
/// A network run costs what `maxPointCount` asks, whatever the length of the XIC, and a longer XIC the time to thin it
/// (n log n, about 50 ms for a million points). The limits are then read at the network's positions in the caller's
/// list: choose `maxPointCount` to hold the XIC where the limits matter.
///
/// A call that runs out of memory returns `Failure` "Out of memory"; the object can be used as after any other failure
/// of that call. TensorFlow itself ends the process when it gets no memory.
///
/// One thread at a time per object; separate objects are independent and may be used in parallel.
class ZAV_ML_EXPORT XicBaselineLimitsDetector
{
public:
    /// Loads nothing: every detection fails with `Failure` until an `init` has succeeded.
    XicBaselineLimitsDetector();
    ~XicBaselineLimitsDetector();

    XicBaselineLimitsDetector(const XicBaselineLimitsDetector &) = delete;
    XicBaselineLimitsDetector &operator=(const XicBaselineLimitsDetector &) = delete;

    /// Stores the options, checks them and loads the network that they name.
    ///
    /// The options replace the stored ones even when they are refused. After a failure a detector that worked before
    /// goes on with them, except that the smoothing filter and, where the options were refused, the network stay the
    /// old ones. Where it was the loading that failed, the network is gone, or it is the new one if only its operation
    /// "init" was missing or failed.
    Error init(const XicBaselineLimitsDetectorOptions &options);

    /// The limits of the peaks that the walk finds, the highest apex first. No network is run. Intervals may overlap; a
    /// maximum of height 0 between negative intensities gives an interval from the first point to the first point.
    ///
    /// `Failure` before the first `init`.
    Result<QList<Interval<double>>> integrateXIC(const QList<QPointF> &points);

    /// The limits of the peaks that the network finds, in acquisition order.
    ///
    /// With a `retentionTimeHint` above -1.0 that lies in none of them, the search is repeated on the XIC amplified
    /// tenfold and clipped at its highest point, three times at most; `retryDepth` counts the repetitions already
    /// done, and callers pass 0 (below 0 counts as 0). One network run, and one more per repetition.
    ///
    /// `Failure` before the first `init`, for a network without the operations "import/img" and
    /// "import/conv2d_19/Sigmoid" of floats, for one that takes another number of values than `maxPointCount` or
    /// returns fewer than there are points, and when its run fails.
    Result<QList<Interval<double>>> integrateXIC(const QList<QPointF> &points, double retentionTimeHint,
                                                 int retryDepth);

private:
    friend class XicBaselineLimitsDetectorInspector; // the unit tests' view of Private

    class Private;
    std::unique_ptr<Private> d;
};

} // namespace zav
