// SPDX-License-Identifier: Apache-2.0
//
// What the chromatogram predictors do around their networks: thinning, smoothing, clustering. Each input is built from
// its known answer, and a wrong answer is reported instead of a time.
#include "ClusteringDBSCAN.h"
#include "EigenUtilities.h"
#include "removeLowIntensePoints.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>

namespace {

// A shuffled trace of the heights 0 to n - 1, thinned to n / 2: the upper half stays.
void thinning(benchmark::State &state)
{
    const auto count = static_cast<int>(state.range(0));
    const int target = count / 2;
    QList<QPointF> trace;
    for (int i = 0; i < count; ++i)
        trace.append({0.0, static_cast<double>(i)});
    std::shuffle(trace.begin(), trace.end(), std::mt19937(1));
    for ([[maybe_unused]] auto _ : state) {
        QList<QPointF> thinned = trace;
        benchmark::DoNotOptimize(zav::removeLowIntensePoints(thinned, target, false));
        const auto stays = [&](const QPointF &point) { return point.y() >= count - target; };
        if (thinned.size() != target || !std::all_of(thinned.cbegin(), thinned.cend(), stays))
            return state.SkipWithError("the wrong points were kept");
    }
    state.SetItemsProcessed(state.iterations() * count);
}

// A flat signal, which the five-tap Gaussian leaves as it is.
void smoothing(benchmark::State &state)
{
    const Eigen::VectorXd flat = Eigen::VectorXd::Constant(state.range(0), 3.5);
    const Eigen::VectorXd kernel = zav::EigenUtilities::buildGaussianFilter1D(5, 4.0, true);
    Eigen::VectorXd smoothed;
    for ([[maybe_unused]] auto _ : state) {
        smoothed = zav::EigenUtilities::convolveVectorWithKernel(flat, kernel);
        benchmark::DoNotOptimize(smoothed.data());
    }
    if (!smoothed.isApprox(flat, 1e-14))
        state.SkipWithError("a flat signal was bent");
    state.SetItemsProcessed(state.iterations() * flat.size());
}

// Indices in runs of nine with a gap between them, which are the clusters.
void clustering(benchmark::State &state)
{
    Eigen::MatrixXd rows(state.range(0), 2);
    rows.col(0).setOnes();
    for (Eigen::Index row = 0; row < rows.rows(); ++row) {
        const Eigen::Index gapsBefore = row / 9;
        rows(row, 1) = static_cast<double>(row + gapsBefore);
    }
    Eigen::VectorXi labels;
    for ([[maybe_unused]] auto _ : state) {
        labels = zav::ClusteringDBSCAN(1.5, 2).performDBSCAN(rows);
        benchmark::DoNotOptimize(labels.data());
    }
    for (Eigen::Index row = 0; row < rows.rows(); ++row)
        if (labels[row] != row / 9)
            return state.SkipWithError("wrong clusters");
    state.SetItemsProcessed(state.iterations() * rows.rows());
}

// One run of indices, all within one eps, each with all the others in its neighbourhood, of which a core
// needs half: one cluster. The time for a row must not grow with their number.
void clusteringOfManyNeighbours(benchmark::State &state)
{
    Eigen::MatrixXd rows(state.range(0), 2);
    rows.col(0).setOnes();
    rows.col(1).setLinSpaced(0.0, static_cast<double>(state.range(0) - 1));
    const int minPoints = static_cast<int>(state.range(0) / 2);
    Eigen::VectorXi labels;
    for ([[maybe_unused]] auto _ : state) {
        labels = zav::ClusteringDBSCAN(static_cast<double>(state.range(0)), minPoints).performDBSCAN(rows);
        benchmark::DoNotOptimize(labels.data());
    }
    if ((labels.array() != 0).any())
        return state.SkipWithError("more than one cluster");
    state.SetItemsProcessed(state.iterations() * rows.rows());
}

} // namespace

BENCHMARK(thinning)->Arg(5000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(smoothing)->Arg(1024)->Arg(4096)->Unit(benchmark::kMicrosecond);
BENCHMARK(clustering)->Arg(90)->Arg(900)->Arg(90'000)->Arg(900'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(clusteringOfManyNeighbours)->Arg(8192)->Arg(65'536)->Arg(524'288)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
