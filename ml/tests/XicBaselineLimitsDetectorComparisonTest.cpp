// SPDX-License-Identifier: Apache-2.0
#include <zav/XicBaselineLimitsDetector.h>

#include "NaiveChromatogram.h"
#include "XicBaselineLimitsDetectorFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace zav {
namespace {

// Against the naive implementation, on random traces

std::vector<double> randomTrace(std::mt19937 &random)
{
    const int size = std::uniform_int_distribution(1, 400)(random);
    std::vector<double> trace(size, 0.0);
    std::exponential_distribution<double> noise(50.0);
    for (double &value : trace)
        value = noise(random);
    const int peaks = std::uniform_int_distribution(0, 5)(random);
    for (int peak = 0; peak < peaks; ++peak) {
        const double centre = std::uniform_real_distribution<>(0.0, size)(random);
        const double sigma = std::uniform_real_distribution<>(0.5, 12.0)(random);
        const double height = std::uniform_real_distribution<>(0.1, 1.0)(random);
        for (int i = 0; i < size; ++i)
            trace[i] += height * std::exp(-0.5 * std::pow((i - centre) / sigma, 2));
    }
    return trace;
}

XicBaselineLimitsDetectorOptions randomOptions(std::mt19937 &random, const QString &modelFilePath)
{
    XicBaselineLimitsDetectorOptions options;
    options.modelFilePath = modelFilePath;
    options.maxPointCount = std::uniform_int_distribution(203, 350)(random);
    options.probabilityTolerance = std::uniform_real_distribution<>(0.2, 0.9)(random);
    options.smoothingPassCount = std::uniform_int_distribution(0, 3)(random);
    options.gaussianFilterSize = std::uniform_int_distribution(1, 9)(random) | 1;
    options.dbscanEpsilon = std::uniform_real_distribution<>(0.5, 4.0)(random);
    options.dbscanMinPoints = std::uniform_int_distribution(1, 4)(random);
    options.minPointCount = std::uniform_int_distribution(0, 6)(random);
    options.limitThreshold = std::uniform_real_distribution<>(0.0, 0.5)(random);
    return options;
}

std::vector<float> naiveInput(const QList<QPointF> &points, const XicBaselineLimitsDetectorOptions &options)
{
    const QList<QPointF> kept =
        points.size() > options.maxPointCount ? naive::thinned(points, options.maxPointCount - 200) : points;
    return naive::inputVector(kept, options.maxPointCount, -1.0, options.smoothingPassCount,
                              options.gaussianFilterSize);
}

/// The intervals of the network path, for a network whose probabilities are its input.
std::vector<std::pair<int, int>> naiveNetworkPath(const QList<QPointF> &points,
                                                  const XicBaselineLimitsDetectorOptions &options)
{
    const std::vector<float> input = naiveInput(points, options);
    const int used = std::min<int>(options.maxPointCount, static_cast<int>(points.size()));
    std::vector<int> selected;
    for (int i = 0; used > options.minPointCount && i < used; ++i) {
        if (input[i] >= 1.0 - options.probabilityTolerance)
            selected.push_back(i);
    }
    std::vector<std::pair<int, int>> intervals;
    for (const auto &limits : naive::clusterLimits(selected, options.dbscanEpsilon, options.dbscanMinPoints)) {
        if (limits.start < points.size())
            intervals.emplace_back(limits.start, limits.end);
    }
    return intervals;
}

TEST_F(XicBaselineLimitsDetectorTest, NetworkPathAgreesWithANaiveImplementationOnRandomTraces)
{
    std::mt19937 random(20261121);
    const QString path = network.write(Network::identity());
    int intervalCount = 0;
    for (int round = 0; round < 40; ++round) {
        const XicBaselineLimitsDetectorOptions options = randomOptions(random, path);
        initialise(options);
        for (int repeat = 0; repeat < 50; ++repeat) {
            const QList<QPointF> points = Network::chromatogram(randomTrace(random));
            const auto expected = naiveNetworkPath(points, options);
            intervalCount += static_cast<int>(expected.size());
            // A cluster at index 0 of a single point would start behind its end.
            const bool inverted = std::any_of(expected.begin(), expected.end(),
                                              [](const auto &limits) { return limits.first > limits.second; });
            const Intervals actual = detector.integrateXIC(points, NO_HINT, 0);
            if (inverted) {
                EXPECT_TRUE(actual.error().equals(InvalidInput)) << "round " << round << " trace " << repeat;
                continue;
            }
            SCOPED_TRACE(testing::Message() << "round " << round << " trace " << repeat);
            ASSERT_NO_FATAL_FAILURE(expectIntervals(expected, actual));
        }
    }
    EXPECT_GT(intervalCount, 1000);
}

/// The intervals of the walk that start within the points.
std::vector<std::pair<int, int>> naiveWalk(const QList<QPointF> &points,
                                           const XicBaselineLimitsDetectorOptions &options)
{
    std::vector<std::pair<int, int>> intervals;
    const int last = static_cast<int>(points.size()) - 1;
    for (const naive::IndexInterval &limits : naive::walks(naiveInput(points, options), options.limitThreshold)) {
        if (limits.start <= last)
            intervals.emplace_back(limits.start, std::min(limits.end, last));
    }
    return intervals;
}

TEST_F(XicBaselineLimitsDetectorTest, WalkAgreesWithANaiveImplementationOnRandomTraces)
{
    std::mt19937 random(1121);
    const QString path = network.write(Network::identity());
    int intervalCount = 0;
    for (int round = 0; round < 20; ++round) {
        const XicBaselineLimitsDetectorOptions options = randomOptions(random, path);
        initialise(options);
        for (int repeat = 0; repeat < 50; ++repeat) {
            const QList<QPointF> points = Network::chromatogram(randomTrace(random));
            const auto expected = naiveWalk(points, options);
            intervalCount += static_cast<int>(expected.size());
            SCOPED_TRACE(testing::Message() << "round " << round << " trace " << repeat);
            ASSERT_NO_FATAL_FAILURE(expectIntervals(expected, detector.integrateXIC(points)));
        }
    }
    EXPECT_GT(intervalCount, 1000);
}

} // namespace
} // namespace zav
