// SPDX-License-Identifier: Apache-2.0
//
// The cost of one isotope envelope, averaged over fragment ladders. Refuses to time wrong answers.
#include <zav/TheoreticalIsotopePoint2dListGenerator.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace {

using Generator = zav::TheoreticalIsotopePoint2dListGenerator;

// Averagine of 2000 Da with fractional atom counts, by contour integration in Python's mpmath.
constexpr double REFERENCE_MASS = 2000.0;
constexpr double REFERENCE[] = {1.0,
                                1.09156876355,
                                0.678611208114,
                                0.306959876262,
                                0.110955391433,
                                0.0336772850769,
                                0.00885601875697,
                                0.00206240051971};

// Neutral masses in Da of y1 to y15 of VGAHAGEYGAEALER (mature human hemoglobin alpha, residues 17 to 31), from
// pyteomics.
constexpr double LADDER[] = {174.1117,  303.1543,  416.2383,  487.2754,  616.3180,  687.3552,  744.3766, 907.4399,
                             1036.4825, 1093.5040, 1164.5411, 1301.6000, 1372.6371, 1429.6586, 1528.7270};

void refuseWrongAnswers()
{
    const auto result = Generator().buildTheoreticalIsotopicDistributionPoints(REFERENCE_MASS, 1, 0.0);
    bool right = !result.hasError() && result.value().size() == static_cast<qsizetype>(std::size(REFERENCE));
    for (std::size_t k = 0; right && k < std::size(REFERENCE); ++k)
        right = std::abs(result.value()[static_cast<qsizetype>(k)].y() - REFERENCE[k]) < 1e-6;
    if (!right) {
        std::fprintf(stderr, "the envelope of %g Da is wrong: not timed\n", REFERENCE_MASS);
        std::exit(EXIT_FAILURE);
    }
}

// One iteration is a whole ladder; the counter is the time of one envelope.
void fragmentLadder(benchmark::State &state)
{
    const Generator generator;
    const int charge = static_cast<int>(state.range(0));
    qsizetype peaks = 0;
    for ([[maybe_unused]] auto _ : state) {
        for (const double mass : LADDER) {
            const auto result = generator.buildTheoreticalIsotopicDistributionPoints(mass, charge, 0.0);
            peaks += result.value().size();
            benchmark::DoNotOptimize(result);
        }
    }
    const auto calls = static_cast<double>(state.iterations() * static_cast<qint64>(std::size(LADDER)));
    state.counters["time/envelope"] =
        benchmark::Counter(calls, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["peaks/envelope"] = static_cast<double>(peaks) / calls;
}

void oneMass(benchmark::State &state)
{
    const Generator generator;
    const auto mass = static_cast<double>(state.range(0));
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(generator.buildTheoreticalIsotopicDistributionPoints(mass, 1, 0.0));
}

} // namespace

BENCHMARK(fragmentLadder)->ArgName("charge")->Arg(1)->Arg(2);
BENCHMARK(oneMass)->ArgName("Da")->Arg(57)->Arg(500)->Arg(2000)->Arg(10'000)->Arg(100'000)->Arg(1'000'000);

int main(int argc, char **argv)
{
    refuseWrongAnswers();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return EXIT_SUCCESS;
}
