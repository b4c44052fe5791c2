// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Export.h>

#include <Eigen/Core>

namespace zav {

/// Density-based clustering (Ester, Kriegel, Sander and Xu, KDD 1996) of the rows of a matrix, Euclidean distance.
///
/// The neighbourhood of a row are the rows at a distance of `eps` or less, itself included; a row with at least
/// `minPoints` of them is a core. Rows are compared along their widest column first: n rows that differ in no other one
/// cost n log n, however large `eps` and `minPoints` are; rows spread over several columns cost up to the square of the
/// number within one `eps` along that column.
class ClusteringDBSCAN
{
public:
    /// `eps` in the unit of the rows. With an `eps` below 0 or NaN no row has neighbours; `minPoints` of 1 or less
    /// makes every row that has one a core.
    ZAV_COMMON_CORE_MINI_EXPORT ClusteringDBSCAN(double eps, int minPoints);

    /// One label per row: -1 for noise, else the cluster 0, 1, 2, ... in the order of the clusters' first core rows.
    /// A row that is no core joins the lowest cluster that has a core in its neighbourhood. A row with a value that is
    /// not finite is noise and nobody's neighbour.
    ZAV_COMMON_CORE_MINI_EXPORT Eigen::VectorXi performDBSCAN(const Eigen::MatrixXd &rows) const;

private:
    double m_eps;
    int m_minPoints;
};

} // namespace zav
