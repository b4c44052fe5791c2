// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Interval.h>

#include <QtCore/QList>

#include <Eigen/Core>

#include <cstdint>

namespace zav {

/// A point of a smoothed chromatogram from which the walk sets out.
struct LocalMaximum
{
    std::int64_t id = -1;
    int index = 0;         ///< position in the vector
    double value = 0.0;    ///< the vector's value there
    bool consumed = false; ///< true once an interval covers it
};

/// Every index whose value, truncated to 1 / `scale`, is above its left and not below its right neighbour: the first
/// index of a plateau. In ascending order; the ends of the vector are never among them.
QList<LocalMaximum> findLocalMaxima(const Eigen::VectorXf &input, int scale);

/// Walks from a maximum to both sides until the height relative to the maximum falls to `threshold` or rises above 1;
/// that index still belongs to the interval. The end of the vector gives the third last index on the right and 0 on
/// the left; a maximum of 0 gives [0, 0].
Interval<int> walkPeakLimits(const Eigen::VectorXf &input, const LocalMaximum &maximum, double threshold);

/// The intervals of all maxima, the highest first; a maximum that an earlier interval covers gets none of its own. The
/// maxima stand in ascending order of index.
///
/// Costs n log n at most. Once the walks have looked at every value `plainVisits` times on average, they search the
/// vector in blocks: below zero a value can lie on the way of every maximum. The intervals are the same either way.
QList<Interval<int>> walkAllPeakLimits(const Eigen::VectorXf &input, QList<LocalMaximum> maxima, double threshold,
                                       int plainVisits = 4);

} // namespace zav
