// SPDX-License-Identifier: Apache-2.0
#include "ClusteringDBSCAN.h"

#include <algorithm>
#include <vector>

namespace zav {

namespace {

using Eigen::Index;

constexpr int NOISE = -1;

std::vector<Index> finiteRows(const Eigen::MatrixXd &rows)
{
    std::vector<Index> finite;
    for (Index row = 0; row < rows.rows(); ++row)
        if (rows.cols() == 0 || rows.row(row).allFinite()) // Eigen takes no row of a matrix without data
            finite.push_back(row);
    return finite;
}

// The column of the greatest spread; zeros where there is no column or no row.
Eigen::VectorXd widestColumn(const Eigen::MatrixXd &rows)
{
    if (rows.size() == 0)
        return Eigen::VectorXd::Zero(rows.rows());
    Index widest = 0;
    (rows.colwise().maxCoeff() - rows.colwise().minCoeff()).maxCoeff(&widest);
    return rows.col(widest);
}

// Rows sorted along their widest column: a neighbourhood is a stretch of them, sieved. A place is a position in that
// order.
class SortedRows
{
public:
    SortedRows(const Eigen::MatrixXd &rows, double eps) : m_eps(eps), m_placeOf(static_cast<std::size_t>(rows.rows()))
    {
        std::vector<Index> rowAt(m_placeOf.size());
        for (std::size_t place = 0; place < rowAt.size(); ++place)
            rowAt[place] = static_cast<Index>(place);
        const Eigen::VectorXd keys = widestColumn(rows);
        std::stable_sort(rowAt.begin(), rowAt.end(), [&](Index a, Index b) { return keys[a] < keys[b]; });
        for (std::size_t place = 0; place < rowAt.size(); ++place)
            m_placeOf[static_cast<std::size_t>(rowAt[place])] = static_cast<Index>(place);
        m_keys = keys(rowAt);
        m_points = rows(rowAt, Eigen::all).transpose();
    }

    Index size() const { return m_keys.size(); }
    Index placeOf(Index row) const { return m_placeOf[static_cast<std::size_t>(row)]; }

    // Calls visit(place) for each neighbour, itself included, until it returns false.
    template <typename Visit>
    void forEachNeighbour(Index place, const Visit &visit) const
    {
        Index other = place;
        while (other > 0 && m_keys[place] - m_keys[other - 1] <= m_eps)
            --other;
        for (; other < size() && m_keys[other] - m_keys[place] <= m_eps; ++other)
            if ((m_points.col(other) - m_points.col(place)).norm() <= m_eps && !visit(other))
                return;
    }

private:
    double m_eps;
    std::vector<Index> m_placeOf; // by row
    Eigen::VectorXd m_keys;       // ascending
    Eigen::MatrixXd m_points;     // [columns, places]: one row after the other in memory
};

std::vector<bool> coresOf(const SortedRows &rows, int minPoints)
{
    std::vector<bool> cores(static_cast<std::size_t>(rows.size()));
    for (Index place = 0; place < rows.size(); ++place) {
        int missing = std::max(minPoints, 1);
        rows.forEachNeighbour(place, [&](Index) { return --missing > 0; });
        cores[static_cast<std::size_t>(place)] = missing == 0;
    }
    return cores;
}

// Gives `label` to every row without one that is reached from the core at `seed`, from core to core.
void flood(const SortedRows &rows, const std::vector<bool> &cores, Index seed, int label, Eigen::VectorXi &labels)
{
    std::vector<Index> frontier{seed};
    labels[seed] = label;
    while (!frontier.empty()) {
        const Index core = frontier.back();
        frontier.pop_back();
        rows.forEachNeighbour(core, [&](Index place) {
            if (labels[place] == NOISE) {
                labels[place] = label;
                if (cores[static_cast<std::size_t>(place)])
                    frontier.push_back(place);
            }
            return true;
        });
    }
}

// One label per row of finite values.
Eigen::VectorXi cluster(const Eigen::MatrixXd &finite, double eps, int minPoints)
{
    const SortedRows rows(finite, eps);
    const std::vector<bool> cores = coresOf(rows, minPoints);
    Eigen::VectorXi labelAt = Eigen::VectorXi::Constant(rows.size(), NOISE);
    int clusters = 0;
    for (Index row = 0; row < rows.size(); ++row) {
        const Index place = rows.placeOf(row);
        if (cores[static_cast<std::size_t>(place)] && labelAt[place] == NOISE)
            flood(rows, cores, place, clusters++, labelAt);
    }

    Eigen::VectorXi labels(rows.size());
    for (Index row = 0; row < rows.size(); ++row)
        labels[row] = labelAt[rows.placeOf(row)];
    return labels;
}

} // namespace

ClusteringDBSCAN::ClusteringDBSCAN(double eps, int minPoints) : m_eps(eps), m_minPoints(minPoints) {}

Eigen::VectorXi ClusteringDBSCAN::performDBSCAN(const Eigen::MatrixXd &rows) const
{
    const std::vector<Index> finite = finiteRows(rows);
    Eigen::VectorXi labels = Eigen::VectorXi::Constant(rows.rows(), NOISE);
    labels(finite) = cluster(rows(finite, Eigen::all), m_eps, m_minPoints);
    return labels;
}

} // namespace zav
