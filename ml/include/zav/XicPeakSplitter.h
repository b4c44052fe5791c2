// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>
#include <zav/Export.h>
#include <zav/Result.h>
#include <zav/XicPeakSplitterOptions.h>

#include <QtCore/QList>
#include <QtCore/QPointF>

#include <memory>
#include <utility>

namespace zav {

/// Finds where an extracted-ion chromatogram (XIC) should be split into separate peaks, with a trained segmentation
/// network.
///
/// Points are (retention time, intensity) in acquisition order; split times come back in the same unit. A network run
/// costs what `maxPointCount` asks, whatever the length of the XIC; a longer XIC is thinned to it first (n log n, about
/// 50 ms for a million points). Infinite and NaN intensities are taken; +infinity hides the others.
///
/// A call that runs out of memory returns `Failure` "Out of memory"; the object can be used as after any other failure
/// of that call. TensorFlow itself ends the process when it gets no memory.
///
/// One thread at a time per object; separate objects are independent and may be used in parallel.
class ZAV_ML_EXPORT XicPeakSplitter
{
public:
    /// Loads nothing: `splitXIC` fails with `Failure` until an `init` has succeeded.
    XicPeakSplitter();
    ~XicPeakSplitter();

    XicPeakSplitter(const XicPeakSplitter &) = delete;
    XicPeakSplitter &operator=(const XicPeakSplitter &) = delete;

    /// Stores the options, checks them and loads the network that they name.
    ///
    /// The options replace the stored ones even when they are refused. After a failure a splitter that worked before
    /// goes on with them, except that the smoothing filter and, where the options were refused, the network stay the
    /// old ones. Where it was the loading that failed, the network is gone, or it is the new one if only its operation
    /// "init" was missing or failed.
    Error init(const XicPeakSplitterOptions &options);

    /// The split points as pairs (retention time, probability), at most four: those whose probability is nearest to 1,
    /// nearest first, which are the most probable ones of a network that stays within 0 to 1. Fewer than 5 points give
    /// an empty list without a network run; otherwise one run.
    ///
    /// `Failure` before the first `init`, for a network without the operations "import/img" and
    /// "import/conv2d_19/Sigmoid" of floats, for one that takes another number of values than `maxPointCount` or
    /// returns fewer than there are points, and when its run fails.
    Result<QList<std::pair<double, double>>> splitXIC(const QList<QPointF> &points);

private:
    friend class XicPeakSplitterInspector; // the unit tests' view of Private

    class Private;
    std::unique_ptr<Private> d;
};

} // namespace zav
