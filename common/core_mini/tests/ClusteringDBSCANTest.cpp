// SPDX-License-Identifier: Apache-2.0
#include "ClusteringDBSCAN.h"

#include "NaiveClustering.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QMap>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace zav {
namespace {

using Eigen::MatrixXd;
using Eigen::VectorXi;

std::vector<int> labelsOf(const MatrixXd &rows, double eps, int minPoints)
{
    const VectorXi labels = ClusteringDBSCAN(eps, minPoints).performDBSCAN(rows);
    return {labels.begin(), labels.end()};
}

// Rows (1, index), as chromatogram points are clustered.
MatrixXd line(const std::vector<double> &indices)
{
    MatrixXd rows(static_cast<Eigen::Index>(indices.size()), 2);
    rows.col(0).setOnes();
    rows.col(1) = Eigen::Map<const Eigen::VectorXd>(indices.data(), rows.rows());
    return rows;
}

TEST(ClusteringDBSCAN, RunsOfIndicesAreClustersAndLonePointsNoise)
{
    EXPECT_EQ(std::vector<int>({0, 0, 0, -1, 1, 1}), labelsOf(line({3, 4, 5, 9, 20, 21}), 1.5, 2));
}

TEST(ClusteringDBSCAN, NeighbourhoodIncludesDistanceEps)
{
    EXPECT_EQ(std::vector<int>({0, 0}), labelsOf(line({0, 2}), 2.0, 2));
    EXPECT_EQ(std::vector<int>({-1, -1}), labelsOf(line({0, 2}), std::nextafter(2.0, 0.0), 2));
}

TEST(ClusteringDBSCAN, RowCountsAsItsOwnNeighbour)
{
    EXPECT_EQ(std::vector<int>({0, 1}), labelsOf(line({0, 5}), 1.0, 1)) << "each is a core alone";
    EXPECT_EQ(std::vector<int>({0, 1}), labelsOf(line({0, 5}), 1.0, -3));
    EXPECT_EQ(std::vector<int>({-1, -1}), labelsOf(line({0, 5}), 1.0, 2));
}

TEST(ClusteringDBSCAN, ClustersAreNumberedByTheirFirstCoreRow)
{
    EXPECT_EQ(std::vector<int>({0, 1, 0, 1, -1}), labelsOf(line({100, 1, 101, 2, 50}), 1.5, 2));
}

TEST(ClusteringDBSCAN, EdgeRowSeenFirstDoesNotNumberItsCluster)
{
    // With three points to a core, 10 is an edge of {10, 11, 12}; {30, 31, 32} has the first core row.
    EXPECT_EQ(std::vector<int>({1, 0, 0, 0, 1, 1}), labelsOf(line({10, 31, 30, 32, 11, 12}), 1.0, 3));
}

TEST(ClusteringDBSCAN, EdgeRowBetweenTwoClustersJoinsTheLowerOne)
{
    // 3 is within reach of the cores 1 and 5 but no core: its neighbourhood of 4 points is one too small.
    const std::vector<double> indices = {5, 5.5, 6, 6.5, 7, 3, 0, 0.2, 0.4, 0.6, 1};
    EXPECT_EQ(std::vector<int>({0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1}), labelsOf(line(indices), 2.0, 5));
}

TEST(ClusteringDBSCAN, EqualRowsAreNeighboursEvenAtEpsZero)
{
    EXPECT_EQ(std::vector<int>({0, -1, 0, 1, 1}), labelsOf(line({4, 5, 4, 7, 7}), 0.0, 2));
}

TEST(ClusteringDBSCAN, EpsThatIsNegativeOrNaNMakesAllNoise)
{
    for (const double eps : {-1.0, -0.5, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(std::vector<int>({-1, -1, -1}), labelsOf(line({1, 1, 2}), eps, 1));
}

TEST(ClusteringDBSCAN, InfiniteEpsMakesOneCluster)
{
    EXPECT_EQ(std::vector<int>({0, 0, 0}),
              labelsOf(line({1, 1e6, -1e300}), std::numeric_limits<double>::infinity(), 3));
}

TEST(ClusteringDBSCAN, RowsThatAreNotFiniteAreNoiseAndNobodysNeighbours)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    EXPECT_EQ(std::vector<int>({-1, 0, 0, -1, -1, -1}),
              labelsOf(line({nan, 1, 2, infinite, infinite, -infinite}), 1.5, 2));
    EXPECT_EQ(std::vector<int>({-1, -1}), labelsOf(line({nan, nan}), 1.5, 1));
}

TEST(ClusteringDBSCAN, NoRowsGiveNoLabels)
{
    EXPECT_EQ(std::vector<int>(), labelsOf(MatrixXd(0, 2), 1.5, 2));
    EXPECT_EQ(std::vector<int>(), labelsOf(MatrixXd(0, 0), 1.5, 2));
}

TEST(ClusteringDBSCAN, RowsWithoutColumnsAreAllTheSame)
{
    EXPECT_EQ(std::vector<int>({0, 0, 0}), labelsOf(MatrixXd(3, 0), 1.5, 2));
}

TEST(ClusteringDBSCAN, AgreesWithScikitLearn)
{
    struct Case
    {
        double eps = 0.0;
        int minPoints = 0;
        std::vector<int> labels;
        std::vector<std::vector<double>> rows;
    };
    QFile file(QStringLiteral(ZAV_TEST_DATA_DIR "/dbscan.tsv"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QMap<int, Case> cases;
    while (!file.atEnd()) {
        const QList<QByteArray> cells = file.readLine().trimmed().split('\t');
        if (cells.first().startsWith('#') || cells.first() == "case")
            continue;
        Case &one = cases[cells[0].toInt()];
        one.eps = cells[1].toDouble();
        one.minPoints = cells[2].toInt();
        one.labels.push_back(cells[3].toInt());
        one.rows.emplace_back();
        for (qsizetype column = 4; column < cells.size(); ++column)
            one.rows.back().push_back(cells[column].toDouble());
    }
    ASSERT_EQ(4, cases.size());
    for (auto one = cases.cbegin(); one != cases.cend(); ++one) {
        MatrixXd rows(static_cast<Eigen::Index>(one->rows.size()), static_cast<Eigen::Index>(one->rows[0].size()));
        for (Eigen::Index row = 0; row < rows.rows(); ++row)
            for (Eigen::Index column = 0; column < rows.cols(); ++column)
                rows(row, column) = one->rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
        EXPECT_EQ(one->labels, labelsOf(rows, one->eps, one->minPoints)) << "case " << one.key();
    }
}

TEST(ClusteringDBSCAN, AgreesWithItsDefinitionOnRandomRows)
{
    std::mt19937 random(99);
    for (int round = 0; round < 300; ++round) {
        const int count = std::uniform_int_distribution(0, 40)(random);
        const int columns = std::uniform_int_distribution(1, 4)(random);
        // Whole coordinates in a small box: many equal rows and distances of exactly eps.
        const int side = std::uniform_int_distribution(2, 12)(random);
        const MatrixXd rows = MatrixXd::NullaryExpr(
            count, columns, [&] { return static_cast<double>(std::uniform_int_distribution(0, side)(random)); });
        const double eps = std::uniform_int_distribution(0, 6)(random) / 2.0;
        const int minPoints = std::uniform_int_distribution(0, 6)(random);
        ASSERT_EQ(naive::labelsByDefinition(rows, eps, minPoints), labelsOf(rows, eps, minPoints))
            << "round " << round << ", eps " << eps << ", " << minPoints << " points, rows\n"
            << rows;
    }
}

TEST(ClusteringDBSCAN, AgreesWithItsDefinitionOnLinesOfManyNeighbours)
{
    std::mt19937 random(1907);
    const auto pick = [&random](const std::vector<double> &values) { return values[random() % values.size()]; };
    for (int round = 0; round < 300; ++round) {
        const int count = std::uniform_int_distribution(0, 40)(random);
        const int columns = std::uniform_int_distribution(1, 3)(random);
        const int side = std::uniform_int_distribution(0, 60)(random);
        const double unit = pick({1.0, 1.0 / 3.0, 1e100, 1e-100});
        MatrixXd rows = MatrixXd::Constant(count, columns, pick({0.0, 1.0, -unit}));
        rows.col(std::uniform_int_distribution(0, columns - 1)(random)) =
            Eigen::VectorXd::NullaryExpr(count, [&] { return unit * std::uniform_int_distribution(0, side)(random); });
        const double eps = unit * std::uniform_int_distribution(0, 60)(random) / 2.0;
        const int minPoints = std::uniform_int_distribution(0, count + 2)(random);
        ASSERT_EQ(naive::labelsByDefinition(rows, eps, minPoints), labelsOf(rows, eps, minPoints))
            << "round " << round << ", eps " << eps << ", " << minPoints << " points, rows\n"
            << rows;
    }
}

TEST(ClusteringDBSCAN, DistancesOnALineAreTakenWithoutTheirSquares)
{
    // 1e200 squared is infinite; 1.3 * 2^-537 squared rounds to 2 * 2^-1074, the square of a larger distance.
    EXPECT_EQ(std::vector<int>({0, 0, -1}), labelsOf(line({0, 1e200, 1e202}), 1e200, 2));
    const double tiny = std::ldexp(1.3, -537);
    EXPECT_EQ(std::vector<int>({0, 0, -1}), labelsOf(line({0, tiny, 3 * tiny}), tiny, 2));
}

TEST(ClusteringDBSCAN, LongLinesAreNotQuadratic)
{
    // Runs of nine indices and a gap; all pairs of them would take hours under sanitizers.
    constexpr int COUNT = 90'000;
    std::vector<double> indices;
    for (int index = 0; static_cast<int>(indices.size()) < COUNT; ++index)
        if (index % 10 != 9)
            indices.push_back(index);
    const MatrixXd rows = line(indices);
    const auto start = std::chrono::steady_clock::now();
    const std::vector<int> labels = labelsOf(rows, 1.5, 2);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60)) << "ample under sanitizers";
    ASSERT_EQ(indices.size(), labels.size());
    for (std::size_t i = 0; i < labels.size(); ++i)
        ASSERT_EQ(static_cast<int>(i / 9), labels[i]);
}

// Their pairs would take minutes.
TEST(ClusteringDBSCAN, ManyRowsOfALineWithinOneEpsAreOneClusterAtOnce)
{
    Eigen::MatrixXd rows(200000, 2);
    rows.col(0).setOnes();
    rows.col(1).setLinSpaced(0.0, 199999.0);
    EXPECT_TRUE((ClusteringDBSCAN(1e6, 2).performDBSCAN(rows).array() == 0).all());
    EXPECT_TRUE(
        (ClusteringDBSCAN(std::numeric_limits<double>::infinity(), 200000).performDBSCAN(rows).array() == 0).all());
    EXPECT_TRUE((ClusteringDBSCAN(1e6, 200001).performDBSCAN(rows).array() == -1).all());
}

} // namespace
} // namespace zav
