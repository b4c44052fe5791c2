// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Error.h"
#include "Export.h"
#include "Result.h"
#include "XicPeakSplitterOptions.h"

#include <QtCore/QList>
#include <QtCore/QPointF>

#include <memory>
#include <utility>

namespace zav {

/// Finds where an extracted-ion chromatogram (XIC) should be split into separate peaks, with a trained segmentation
/// network.
///
/// Points are (retention time, intensity) in acquisition order; split times come back in the same unit. A call costs
/// what `maxPointCount` asks, whatever the length of the XIC; a longer XIC is thinned first.
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
    /// goes on with the new options, and without a network if it was the loading that failed.
    Error init(const XicPeakSplitterOptions &options);

    /// The split points as pairs (retention time, probability), at most four, those of the highest probability first.
    /// Fewer than 5 points give an empty list without a network run; otherwise one run.
    Result<QList<std::pair<double, double>>> splitXIC(const QList<QPointF> &points);

private:
    friend class XicPeakSplitterInspector; // the unit tests' view of Private

    class Private;
    std::unique_ptr<Private> d;
};

} // namespace zav
