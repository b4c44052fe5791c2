// SPDX-License-Identifier: Apache-2.0
#include "XicBenchmarkTraces.h"

#include "BenchmarkSetting.h"

#include <cmath>
#include <random>
#include <vector>

namespace zav::xicBenchmarkTraces {

namespace {

constexpr double TYPICAL_NOISE = 40; // counts

double gaussian(double distance, double width)
{
    return std::exp(-0.5 * distance * distance / (width * width));
}

// An exponentially modified Gaussian by its two halves: steep in front, tailing behind.
double tailing(double distance, double width)
{
    return gaussian(distance, distance < 0 ? width : 1.6 * width);
}

template <typename Random>
double uniform(Random *random, double from, double to)
{
    return std::uniform_real_distribution<>(from, to)(*random);
}

} // namespace

QList<QPointF> twoPeaks(int pointCount, int fullCount)
{
    std::mt19937 random(1);
    const double width = 0.03 * pointCount;
    QList<QPointF> points;
    for (int i = 0; i < fullCount; ++i) {
        const double peaks =
            10000 * gaussian(i - FIRST_APEX * pointCount, width) + 7000 * gaussian(i - SECOND_APEX * pointCount, width);
        points.append({i * SECONDS_PER_POINT, peaks + uniform(&random, 0, TYPICAL_NOISE)});
    }
    return points;
}

QList<QPointF> countedTrace(int pointCount, unsigned seed)
{
    struct Peak
    {
        double apex, width, height;
    };
    std::mt19937 random(seed);
    std::vector<Peak> peaks(1 + seed % 5);
    for (Peak &peak : peaks)
        peak = {uniform(&random, 0.1, 0.9) * pointCount, uniform(&random, 3, 15), std::pow(10, uniform(&random, 2, 5))};
    QList<QPointF> points;
    for (int i = 0; i < pointCount; ++i) {
        double expected = 0.4; // ions of the background: mostly none
        for (const Peak &peak : peaks)
            expected += peak.height * tailing(i - peak.apex, peak.width);
        const auto ions = std::poisson_distribution<int>(expected)(random);
        points.append({i * SECONDS_PER_POINT, static_cast<double>(ions)});
    }
    return points;
}

void load(XicBaselineLimitsDetector *detector, const QString &folder, int maxPointCount)
{
    XicBaselineLimitsDetectorOptions options;
    options.modelFilePath = folder + QStringLiteral("/xic_limits.pb");
    options.maxPointCount = maxPointCount;
    benchmarkSetting::require(!detector->init(options).hasError(), "The network of limits could not be loaded");
}

void load(XicPeakSplitter *splitter, const QString &folder, int maxPointCount)
{
    XicPeakSplitterOptions options;
    options.modelFilePath = folder + QStringLiteral("/xic_split.pb");
    options.maxPointCount = maxPointCount;
    benchmarkSetting::require(!splitter->init(options).hasError(), "The network of splits could not be loaded");
}

} // namespace zav::xicBenchmarkTraces
