// SPDX-License-Identifier: Apache-2.0
#include "ExtractedTraces.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <utility>

namespace zav {
namespace {

constexpr double INF = std::numeric_limits<double>::infinity();

struct TimedPeaks
{
    double time;
    SpectrumPeaks peaks;
};

ExtractionTarget target(const char *id, double mz, double from = -INF, double to = INF)
{
    return {QString::fromLatin1(id), mz, 10, from, to};
}

/// Every peak of every spectrum beside the window of the target, one after the other.
QList<QPointF> naiveTrace(const ExtractionTarget &target, const std::vector<TimedPeaks> &spectra)
{
    QList<QPointF> points;
    for (const auto &[time, peaks] : spectra) {
        if (time < target.rtFrom || time > target.rtTo)
            continue;
        double sum = 0;
        for (std::size_t i = 0; i < peaks.mzs.size(); ++i)
            sum += std::abs(peaks.mzs[i] - target.mz) <= target.mz * target.ppm * 1e-6 ? peaks.intensities[i] : 0;
        points.append({time, sum});
    }
    return points;
}

/// Peaks in no order of m/z with whole intensities, whose sums are exact in any order.
SpectrumPeaks randomPeaks(std::mt19937 *random, int most)
{
    std::uniform_real_distribution<double> mz(400, 401);
    std::uniform_int_distribution<int> count(0, most);
    std::uniform_int_distribution<int> intensity(1, 1000);
    SpectrumPeaks peaks;
    for (int left = count(*random); left > 0; --left) {
        peaks.mzs.push_back(mz(*random));
        peaks.intensities.push_back(intensity(*random));
    }
    return peaks;
}

TEST(ExtractedTraces, AreThoseOfANaiveSearch)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> mz(399.9, 401.1);
    std::uniform_real_distribution<double> ppm(1, 300); // windows overlap
    std::uniform_real_distribution<double> time(-5, 45);
    QList<ExtractionTarget> targets;
    for (int i = 0; i < 200; ++i) {
        const std::pair<double, double> times = std::minmax({time(random), time(random)});
        ExtractionTarget made{QString::number(i), mz(random), ppm(random)};
        if (i % 3 != 0) {
            made.rtFrom = times.first;
            made.rtTo = times.second;
        }
        targets.append(made);
    }
    std::vector<TimedPeaks> spectra;
    spectra.reserve(40);
    for (int i = 0; i < 40; ++i)
        spectra.push_back({double(i), randomPeaks(&random, i % 2 == 0 ? 3 : 2000)});

    ExtractedTraces traces(targets, false);
    for (TimedPeaks spectrum : spectra)
        EXPECT_EQ(traces.addSpectrum(spectrum.time, &spectrum.peaks), QString());
    for (qsizetype i = 0; i < targets.size(); ++i)
        EXPECT_EQ(traces.take(i).points, naiveTrace(targets[i], spectra)) << i;
}

TEST(ExtractedTraces, TraceIsOverBehindItsRange)
{
    ExtractedTraces traces({target("a", 500, 1, 2), target("whole", 500)}, false);
    SpectrumPeaks peaks;
    EXPECT_FALSE(traces.isOver(0));
    traces.addSpectrum(2, &peaks);
    EXPECT_FALSE(traces.isOver(0)) << "the next spectrum may have the same time";
    traces.addSpectrum(2.5, &peaks);
    EXPECT_TRUE(traces.isOver(0));
    EXPECT_FALSE(traces.isOver(1));
}

TEST(ExtractedTraces, SpectrumOfATraceThatWasGivenAwayIsRefused)
{
    ExtractedTraces traces({target("a", 500, 1, 2)}, false);
    SpectrumPeaks peaks{{500}, {7}};
    for (const double time : {1.5, 3.0})
        EXPECT_EQ(traces.addSpectrum(time, &peaks), QString());
    EXPECT_EQ(traces.take(0).points, (QList<QPointF>{{1.5, 7}}));
    EXPECT_EQ(traces.addSpectrum(2.5, &peaks), QString()) << "it goes back, but no trace misses it";
    EXPECT_EQ(traces.addSpectrum(2, &peaks),
              QStringLiteral("its scan start time is before that of a spectrum in front of it, and the chromatogram of "
                             "target 'a' was closed there"));
}

TEST(ExtractedTraces, TimesThatGoBackKeepTheirOrderAndTheirPoints)
{
    ExtractedTraces traces({target("a", 500, 1, 2), target("whole", 500)}, true);
    const std::vector<TimedPeaks> spectra = {
        {1, {{500}, {1}}}, {3, {{500}, {2}}}, {2, {{500}, {3}}}, {0.5, {{500}, {4}}}, {1.5, {{500}, {5}}}};
    for (TimedPeaks spectrum : spectra)
        EXPECT_EQ(traces.addSpectrum(spectrum.time, &spectrum.peaks), QString());
    for (int reading = 0; reading < 2; ++reading) {
        EXPECT_EQ(traces.take(0).points, (QList<QPointF>{{1, 1}, {2, 3}, {1.5, 5}}));
        EXPECT_EQ(traces.take(1).points, (QList<QPointF>{{1, 1}, {3, 2}, {2, 3}, {0.5, 4}, {1.5, 5}}));
    }
}

} // namespace
} // namespace zav
