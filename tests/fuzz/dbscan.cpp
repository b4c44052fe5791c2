// SPDX-License-Identifier: Apache-2.0
//
// Door: rows to cluster.
// Promise: the labels are those of the definition, whatever the rows, the distance and the number of neighbours.
#include "ClusteringDBSCAN.h"
#include "FuzzSupport.h"
#include "NaiveClustering.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <limits>

namespace zav::fuzz {
namespace {

/// Whole numbers of a unit make distances of exactly `eps`; their squares neither overflow nor vanish. Over several
/// columns only the unit 1 is exact.
double takeCoordinate(FuzzedDataProvider *data, double unit, int side)
{
    constexpr double BROKEN[] = {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                                 std::numeric_limits<double>::quiet_NaN()};
    const int step = data->ConsumeIntegralInRange(-1, side);
    return step < 0 ? data->PickValueInArray(BROKEN) : unit * step;
}

} // namespace

void tryInput(const QByteArray &input)
{
    constexpr double UNITS[] = {1.0, 1.0 / 3.0, 1e-100, 1e100};
    FuzzedDataProvider data(reinterpret_cast<const std::uint8_t *>(input.constData()),
                            static_cast<std::size_t>(input.size()));
    const double unit = data.PickValueInArray(UNITS);
    const int side = data.ConsumeIntegralInRange(0, 60);
    const double eps = unit * data.ConsumeIntegralInRange(-1, 40) / 2.0;
    const int minPoints = data.ConsumeIntegralInRange(-1, 12);
    const int columns = data.ConsumeIntegralInRange(1, 4);
    Eigen::MatrixXd rows(data.ConsumeIntegralInRange(0, 60), columns);
    for (Eigen::Index row = 0; row < rows.rows(); ++row) {
        for (Eigen::Index column = 0; column < columns; ++column)
            rows(row, column) = unit == 1.0 || column == 0 ? takeCoordinate(&data, unit, side) : unit;
    }
    const Eigen::VectorXi labels = ClusteringDBSCAN(eps, minPoints).performDBSCAN(rows);
    require(std::vector<int>(labels.begin(), labels.end()) == naive::labelsByDefinition(rows, eps, minPoints),
            "the labels are those of the definition");
}

} // namespace zav::fuzz
