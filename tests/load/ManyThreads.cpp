// SPDX-License-Identifier: Apache-2.0
//
// many_threads MODELS SECONDS: sixteen threads, each with predictors of its own, predict the same inputs over and over,
// while sixteen others make predictors, use them once and drop them. Fails where a call fails or where a result is not
// that of one thread before them, bit for bit.
#include "Predictors.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

constexpr int THREADS = 16; // of either kind
constexpr int INPUTS = 20;

using zav::load::Input;
using zav::load::Predictors;
using zav::load::Result;

std::vector<Input> someInputs()
{
    zav::load::Random random(3);
    std::vector<Input> inputs;
    for (int i = 0; i < INPUTS; ++i)
        inputs.push_back({zav::load::peptide(&random), 1 + i % 5, zav::load::trace(&random)});
    return inputs;
}

struct Counts
{
    std::atomic<bool> isOver = false;
    std::atomic<qint64> calls = 0, lives = 0, failures = 0;
};

/// Predicts all inputs in turn with the same predictors until the time is over.
void predictOn(const QDir &models, const std::vector<Input> &inputs, const std::vector<Result> &expected,
               Counts *counts)
{
    Predictors predictors;
    counts->failures += predictors.load(models) ? 0 : 1;
    while (!counts->isOver) {
        for (size_t i = 0; i < inputs.size() && !counts->isOver; ++i) {
            counts->failures += predictors.predict(inputs[i]) == expected[i] ? 0 : 1;
            ++counts->calls;
        }
    }
}

/// A new set of predictors for each input.
void liveOn(const QDir &models, const std::vector<Input> &inputs, const std::vector<Result> &expected, Counts *counts)
{
    for (size_t i = 0; !counts->isOver; i = (i + 1) % inputs.size()) {
        Predictors predictors;
        const bool isRight = predictors.load(models) && predictors.predict(inputs[i]) == expected[i];
        counts->failures += isRight ? 0 : 1;
        ++counts->lives;
    }
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 3) {
        std::fputs("usage: many_threads MODELS SECONDS\n", stderr);
        return 2;
    }
    const QDir models(QFile::decodeName(argv[1]));
    const std::vector<Input> inputs = someInputs();
    std::vector<Result> expected;
    {
        Predictors predictors;
        if (!predictors.load(models))
            return 1;
        for (const Input &input : inputs)
            expected.push_back(predictors.predict(input));
    }
    Counts counts;
    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; ++i) {
        threads.emplace_back([&] { predictOn(models, inputs, expected, &counts); });
        threads.emplace_back([&] { liveOn(models, inputs, expected, &counts); });
    }
    std::this_thread::sleep_for(std::chrono::seconds(std::atoi(argv[2])));
    counts.isOver = true;
    for (std::thread &thread : threads)
        thread.join();
    std::printf("%lld inputs predicted, %lld sets of predictors made and dropped, %lld failed or differed\n",
                static_cast<long long>(counts.calls), static_cast<long long>(counts.lives),
                static_cast<long long>(counts.failures));
    return counts.failures == 0 && counts.calls > 0 && counts.lives > 0 ? 0 : 1;
}
