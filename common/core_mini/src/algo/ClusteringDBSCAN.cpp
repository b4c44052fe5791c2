// SPDX-License-Identifier: Apache-2.0
#include "ClusteringDBSCAN.h"

#include <algorithm>
#include <numeric>
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

// The column of the greatest spread.
struct WidestColumn
{
    Eigen::VectorXd values;          // zeros where there is no column or no row
    bool isOnlyOneThatVaries = true; // the rows lie on a line
};

WidestColumn widestColumn(const Eigen::MatrixXd &rows)
{
    if (rows.size() == 0)
        return {Eigen::VectorXd::Zero(rows.rows())};
    const Eigen::RowVectorXd spreads = rows.colwise().maxCoeff() - rows.colwise().minCoeff();
    Index widest = 0;
    spreads.maxCoeff(&widest);
    return {rows.col(widest), (spreads.array() > 0.0).count() <= 1};
}

// Rows sorted along their widest column: a neighbourhood is a stretch of them, sieved. A place is a position in that
// order.
class SortedRows
{
public:
    SortedRows(const Eigen::MatrixXd &rows, double eps) : m_eps(eps), m_placeOf(static_cast<std::size_t>(rows.rows()))
    {
        std::vector<Index> rowAt(m_placeOf.size());
        std::iota(rowAt.begin(), rowAt.end(), Index(0));
        const WidestColumn column = widestColumn(rows);
        const Eigen::VectorXd &keys = column.values;
        m_isLine = column.isOnlyOneThatVaries;
        std::stable_sort(rowAt.begin(), rowAt.end(), [&](Index a, Index b) { return keys[a] < keys[b]; });
        for (std::size_t place = 0; place < rowAt.size(); ++place)
            m_placeOf[static_cast<std::size_t>(rowAt[place])] = static_cast<Index>(place);
        m_points = rows(rowAt, Eigen::all).transpose();
        findStretches(keys(rowAt));
    }

    Index size() const { return m_points.cols(); }
    Index placeOf(Index row) const { return m_placeOf[static_cast<std::size_t>(row)]; }

    // All neighbours of a place lie from here to before there.
    Index firstNear(Index place) const { return m_firstNear[static_cast<std::size_t>(place)]; }
    Index endNear(Index place) const { return m_endNear[static_cast<std::size_t>(place)]; }

    // Whether all of these are its neighbours, as they are where the rows differ in one column only.
    bool isLine() const { return m_isLine; }

    // For places that lie so near along that column.
    bool areNeighbours(Index a, Index b) const
    {
        return m_isLine || (m_points.col(a) - m_points.col(b)).norm() <= m_eps;
    }

private:
    void findStretches(const Eigen::VectorXd &keys)
    {
        Index first = 0;
        Index end = 0;
        for (Index place = 0; place < keys.size(); ++place) {
            while (first < place && !(keys[place] - keys[first] <= m_eps))
                ++first;
            end = std::max(end, place);
            while (end < keys.size() && keys[end] - keys[place] <= m_eps)
                ++end;
            m_firstNear.push_back(first);
            m_endNear.push_back(end);
        }
    }

    double m_eps;
    bool m_isLine = false;
    std::vector<Index> m_placeOf; // by row
    std::vector<Index> m_firstNear;
    std::vector<Index> m_endNear;
    Eigen::MatrixXd m_points; // [columns, places]: one row after the other in memory
};

// The places without a label. Finding the next one costs next to nothing however many have theirs already: a chain of
// labelled places is shortened whenever it is followed (Tarjan, J. ACM 22, 215, 1975).
class UnlabelledPlaces
{
public:
    explicit UnlabelledPlaces(Index count) : m_next(static_cast<std::size_t>(count) + 1)
    {
        std::iota(m_next.begin(), m_next.end(), std::size_t(0));
    }

    // The first at `from` or later; the number of places when there is none.
    Index next(Index from)
    {
        auto place = static_cast<std::size_t>(from);
        while (m_next[place] != place) {
            m_next[place] = m_next[m_next[place]];
            place = m_next[place];
        }
        return static_cast<Index>(place);
    }

    void remove(Index place) { m_next[static_cast<std::size_t>(place)] = static_cast<std::size_t>(place) + 1; }

private:
    std::vector<std::size_t> m_next; // itself while unlabelled, else a later place
};

bool isCore(const SortedRows &rows, Index place, int minPoints)
{
    Index missing = std::max(minPoints, 1);
    const bool isFullEnough = rows.endNear(place) - rows.firstNear(place) >= missing;
    if (!isFullEnough || rows.isLine())
        return isFullEnough;
    for (Index other = rows.firstNear(place); other < rows.endNear(place) && missing > 0; ++other)
        missing -= rows.areNeighbours(place, other) ? 1 : 0;
    return missing == 0;
}

std::vector<bool> coresOf(const SortedRows &rows, int minPoints)
{
    std::vector<bool> cores(static_cast<std::size_t>(rows.size()));
    for (Index place = 0; place < rows.size(); ++place)
        cores[static_cast<std::size_t>(place)] = isCore(rows, place, minPoints);
    return cores;
}

// Gives `label` to every row without one that is reached from the core at `seed`, from core to core.
void flood(const SortedRows &rows, const std::vector<bool> &cores, Index seed, int label, Eigen::VectorXi &labels,
           UnlabelledPlaces &unlabelled)
{
    std::vector<Index> frontier;
    const auto reach = [&](Index place) {
        labels[place] = label;
        unlabelled.remove(place);
        if (cores[static_cast<std::size_t>(place)])
            frontier.push_back(place);
    };
    reach(seed);
    while (!frontier.empty()) {
        const Index core = frontier.back();
        frontier.pop_back();
        const Index end = rows.endNear(core);
        for (Index place = unlabelled.next(rows.firstNear(core)); place < end; place = unlabelled.next(place + 1)) {
            if (rows.areNeighbours(core, place))
                reach(place);
        }
    }
}

// One label per row of finite values.
Eigen::VectorXi cluster(const Eigen::MatrixXd &finite, double eps, int minPoints)
{
    const SortedRows rows(finite, eps);
    const std::vector<bool> cores = coresOf(rows, minPoints);
    Eigen::VectorXi labelAt = Eigen::VectorXi::Constant(rows.size(), NOISE);
    UnlabelledPlaces unlabelled(rows.size());
    int clusters = 0;
    for (Index row = 0; row < rows.size(); ++row) {
        const Index place = rows.placeOf(row);
        if (cores[static_cast<std::size_t>(place)] && labelAt[place] == NOISE)
            flood(rows, cores, place, clusters++, labelAt, unlabelled);
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
