// SPDX-License-Identifier: Apache-2.0
#include "MonotoneMap.h"

#include "RobustStatistics.h"

#include <Eigen/Cholesky>

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

constexpr Eigen::Index POINTS_A_PIECE = 16;
constexpr Eigen::Index MOST_PIECES = 12;

constexpr double LOWEST_SLOPE = 0.01; // of the overall slope
constexpr double SMOOTHING = 0.02;    // how much a difference of neighbouring slopes counts beside the residuals

/// The lengths of the pieces up to x: a row of `columns` times the slopes is the curve over x, less its start.
Eigen::RowVectorXd lengthsUpTo(double x, double start, const std::vector<double> &knots)
{
    Eigen::RowVectorXd lengths(static_cast<Eigen::Index>(knots.size()) + 1);
    double from = start;
    for (std::size_t i = 0; i <= knots.size(); ++i) {
        const double to = i < knots.size() ? knots[i] : x;
        const double reached = i < knots.size() ? std::min(x, to) : x;
        // The first piece goes on to the left, the last one to the right.
        lengths[static_cast<Eigen::Index>(i)] = i == 0 ? reached - from : std::max(0.0, reached - from);
        from = to;
    }
    return lengths;
}

/// The points of a fit of slopes.
struct SlopeFit
{
    Eigen::MatrixXd lengths; ///< [points, pieces]
    Eigen::VectorXd y;
    double pieceLength = 0.0; ///< of an average piece
    double lowestSlope = 0.0;

    struct Curve
    {
        double value = 0.0; ///< at the start
        Eigen::VectorXd slopes;
    };

    Eigen::VectorXd residuals(const Curve &curve) const
    {
        return y - (lengths * curve.slopes).array().matrix() - Eigen::VectorXd::Constant(y.size(), curve.value);
    }

    Curve solve(const Eigen::VectorXd &weights) const;
};

/// The smoothing, as a matrix of squares of differences between neighbours.
Eigen::MatrixXd differences(Eigen::Index count)
{
    Eigen::MatrixXd squares = Eigen::MatrixXd::Zero(count, count);
    for (Eigen::Index i = 0; i + 1 < count; ++i) {
        squares(i, i) += 1.0;
        squares(i + 1, i + 1) += 1.0;
        squares(i, i + 1) -= 1.0;
        squares(i + 1, i) -= 1.0;
    }
    return squares;
}

/// The slopes that are free, with the others at `lowest`; solved in their place.
void solveFree(const Eigen::MatrixXd &normal, const Eigen::VectorXd &right, const std::vector<Eigen::Index> &free,
               double lowest, Eigen::VectorXd *slopes)
{
    slopes->setConstant(lowest);
    if (free.empty())
        return;
    (*slopes)(free).setZero();
    const Eigen::VectorXd rest = right - normal * *slopes;
    const Eigen::MatrixXd normalOfFree = normal(free, free);
    const Eigen::VectorXd rightOfFree = rest(free);
    const Eigen::VectorXd solution = normalOfFree.ldlt().solve(rightOfFree);
    (*slopes)(free) = solution;
}

/// Slopes that come out too low are held at the lowest one, and the others solved again.
SlopeFit::Curve SlopeFit::solve(const Eigen::VectorXd &weights) const
{
    const Eigen::RowVectorXd centre = weights.transpose() * lengths / weights.sum();
    const double yCentre = weights.dot(y) / weights.sum();
    const Eigen::MatrixXd centred = lengths.rowwise() - centre;
    const Eigen::MatrixXd weighted = weights.asDiagonal() * centred;
    const Eigen::Index count = lengths.cols();
    const double smoothing = SMOOTHING * weights.sum() / static_cast<double>(count) * pieceLength * pieceLength;
    const Eigen::MatrixXd normal = centred.transpose() * weighted + smoothing * differences(count);
    const Eigen::VectorXd right = weighted.transpose() * (y.array() - yCentre).matrix();

    Eigen::VectorXd slopes(count);
    std::vector<Eigen::Index> free(static_cast<std::size_t>(count));
    for (Eigen::Index i = 0; i < count; ++i)
        free[static_cast<std::size_t>(i)] = i;
    for (bool isDone = false; !isDone;) {
        solveFree(normal, right, free, lowestSlope, &slopes);
        isDone = std::erase_if(free, [&](Eigen::Index i) { return !(slopes[i] >= lowestSlope); }) == 0;
    }
    return {yCentre - centre.dot(slopes), slopes};
}

std::vector<double> knotsOf(const Eigen::VectorXd &x, int pieceCount)
{
    std::vector<double> knots;
    for (int i = 1; i < pieceCount; ++i)
        knots.push_back(robustStatistics::quantile(x, static_cast<double>(i) / pieceCount));
    return knots;
}

} // namespace

int MonotoneMap::pieceCountFor(Eigen::Index pointCount)
{
    return static_cast<int>(std::clamp(pointCount / POINTS_A_PIECE, Eigen::Index{1}, MOST_PIECES));
}

MonotoneMap MonotoneMap::fit(const Eigen::VectorXd &x, const Eigen::VectorXd &y, int pieceCount)
{
    MonotoneMap map;
    map.m_knots = knotsOf(x, pieceCount);
    map.m_start = x.minCoeff();
    const robustStatistics::Line line = robustStatistics::theilSenLine(x, y);
    map.m_value = line.intercept + line.slope * map.m_start;
    map.m_slopes = Eigen::VectorXd::Constant(pieceCount, line.slope);
    const double smallest = robustStatistics::smallestDeviation(y);
    if (!(line.slope > 0.0) || !(smallest > 0.0))
        return map;

    SlopeFit points{Eigen::MatrixXd(x.size(), pieceCount), y, (x.maxCoeff() - map.m_start) / pieceCount,
                    LOWEST_SLOPE * line.slope};
    for (Eigen::Index i = 0; i < x.size(); ++i)
        points.lengths.row(i) = lengthsUpTo(x[i], map.m_start, map.m_knots);
    SlopeFit::Curve curve{map.m_value, map.m_slopes};
    for (int step = 0; step < robustStatistics::STEPS; ++step)
        curve = points.solve(robustStatistics::weightsOfStep(step, points.residuals(curve), smallest));
    map.m_value = curve.value;
    map.m_slopes = curve.slopes;
    return map;
}

double MonotoneMap::at(double x) const
{
    return m_value + lengthsUpTo(x, m_start, m_knots).dot(m_slopes);
}

Eigen::VectorXd MonotoneMap::at(const Eigen::VectorXd &x) const
{
    return x.unaryExpr([this](double each) { return at(each); });
}

Eigen::VectorXd MonotoneMap::inverseAt(const Eigen::VectorXd &y) const
{
    return y.unaryExpr([this](double value) {
        double x = m_start;
        double reached = m_value;
        for (std::size_t i = 0; i < m_knots.size(); ++i) {
            const double slope = m_slopes[static_cast<Eigen::Index>(i)];
            const double next = reached + slope * (m_knots[i] - x);
            if (value <= next)
                return x + (value - reached) / slope;
            x = m_knots[i];
            reached = next;
        }
        return x + (value - reached) / m_slopes[m_slopes.size() - 1];
    });
}

} // namespace zav
