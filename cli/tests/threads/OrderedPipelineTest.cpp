// SPDX-License-Identifier: Apache-2.0
#include "OrderedPipeline.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <numeric>
#include <set>

namespace zav {
namespace {

using Numbers = std::vector<int>;
using Pipeline = OrderedPipeline<int, int>;

std::vector<int> upTo(int count)
{
    std::vector<int> numbers(static_cast<size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

/// 0, 1, 2, ... `count` - 1, then the end, or `error` when there is one.
Pipeline::Source counting(int count, const Error &error = {})
{
    return [next = 0, count, error]() mutable -> Result<std::optional<int>> {
        if (next < count)
            return std::optional<int>(next++);
        if (error.hasError())
            return error;
        return std::optional<int>();
    };
}

Pipeline::Sink appendTo(Numbers *numbers)
{
    return [numbers](int number) {
        numbers->push_back(number);
        return Error();
    };
}

int same(int, int number)
{
    return number;
}

void sleepMilliseconds(int time)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(time));
}

int withoutMemory(int, int number)
{
    return number < 5 ? number : throw std::bad_alloc();
}

class OrderedPipelineThreads : public ::testing::TestWithParam<int>
{};

TEST_P(OrderedPipelineThreads, OutcomesComeInTheOrderOfThePieces)
{
    Numbers consumed;
    const auto slowAtFirst = [](int, int number) {
        // The first of every eight pieces is done last.
        if (number % 8 == 0)
            sleepMilliseconds(2);
        return number;
    };
    EXPECT_FALSE(Pipeline({GetParam(), 16}).run(counting(400), slowAtFirst, appendTo(&consumed)).hasError());
    EXPECT_EQ(consumed, upTo(400));
}

TEST_P(OrderedPipelineThreads, EmptyStreamConsumesNothing)
{
    Numbers consumed;
    EXPECT_FALSE(Pipeline({GetParam()}).run(counting(0), same, appendTo(&consumed)).hasError());
    EXPECT_TRUE(consumed.empty());
}

TEST_P(OrderedPipelineThreads, NeverHasMorePiecesInFlightThanItsBound)
{
    constexpr int BOUND = 3;
    std::atomic<int> inFlight = 0;
    std::atomic<int> most = 0;
    const auto source = [&, next = 0]() mutable -> Result<std::optional<int>> {
        if (next == 200)
            return std::optional<int>();
        most = std::max(most.load(), ++inFlight); // only one worker reads at a time
        return std::optional<int>(next++);
    };
    const auto slowSink = [&](int number) {
        if (number % 50 == 0)
            sleepMilliseconds(5);
        --inFlight;
        return Error();
    };
    EXPECT_FALSE(Pipeline({GetParam(), BOUND}).run(source, same, slowSink).hasError());
    EXPECT_LE(most, BOUND);
}

TEST_P(OrderedPipelineThreads, BrokenSourceIsReportedAfterThePiecesBeforeIt)
{
    Numbers consumed;
    const Error error = Pipeline({GetParam()}).run(counting(30, Error(Failure, "torn")), same, appendTo(&consumed));
    EXPECT_EQ(error.message(), "torn");
    EXPECT_EQ(consumed, upTo(30));
}

TEST_P(OrderedPipelineThreads, FailingSinkEndsTheReading)
{
    std::atomic<int> read = 0;
    Numbers consumed;
    const auto endless = [&]() -> Result<std::optional<int>> { return std::optional<int>(read++); };
    const auto fullDisk = [&](int number) {
        consumed.push_back(number);
        return number == 20 ? Error(Failure, "disk full") : Error();
    };
    EXPECT_EQ(Pipeline({GetParam(), 8}).run(endless, same, fullDisk).message(), "disk full");
    EXPECT_EQ(consumed, upTo(21));
    EXPECT_LE(read, 21 + 8);
}

TEST_P(OrderedPipelineThreads, InterruptEndsAnEndlessStream)
{
    Numbers consumed;
    const auto endless = [next = 0]() mutable -> Result<std::optional<int>> { return std::optional<int>(next++); };
    Pipeline pipeline({GetParam(), 4}, [&] { return consumed.size() == 10; });
    const Error error = pipeline.run(endless, same, appendTo(&consumed));
    EXPECT_EQ(error.code(), Failure);
    EXPECT_EQ(error.message(), "interrupted");
    EXPECT_EQ(consumed, upTo(10));
}

TEST_P(OrderedPipelineThreads, InterruptIsSeenWhileNoOutcomeComes)
{
    std::atomic<bool> isInterrupted = false;
    const auto slowWork = [&](int, int number) {
        isInterrupted = true;
        sleepMilliseconds(250);
        return number;
    };
    Numbers consumed;
    Pipeline pipeline({GetParam()}, [&] { return isInterrupted.load(); });
    EXPECT_EQ(pipeline.run(counting(1), slowWork, appendTo(&consumed)).message(), "interrupted");
    EXPECT_TRUE(consumed.empty());
}

TEST_P(OrderedPipelineThreads, EachWorkerHasItsNumberToItself)
{
    const int threads = GetParam();
    std::vector<std::atomic<bool>> busy(static_cast<size_t>(threads));
    std::atomic<int> collisions = 0;
    const auto work = [&](int worker, int number) {
        collisions += busy.at(static_cast<size_t>(worker)).exchange(true);
        sleepMilliseconds(1);
        busy.at(static_cast<size_t>(worker)) = false;
        return number;
    };
    Numbers consumed;
    EXPECT_FALSE(Pipeline({threads}).run(counting(60), work, appendTo(&consumed)).hasError());
    EXPECT_EQ(collisions, 0);
}

TEST_P(OrderedPipelineThreads, SinkRunsInTheCallingThread)
{
    std::set<std::thread::id> sinks;
    const auto sink = [&](int) {
        sinks.insert(std::this_thread::get_id());
        return Error();
    };
    EXPECT_FALSE(Pipeline({GetParam()}).run(counting(20), same, sink).hasError());
    EXPECT_EQ(sinks, std::set<std::thread::id>{std::this_thread::get_id()});
}

TEST_P(OrderedPipelineThreads, RunEndsWhereAWorkerGetsNoMemory)
{
    Numbers consumed;
    EXPECT_THROW(static_cast<void>(Pipeline({GetParam()}).run(counting(1000), withoutMemory, appendTo(&consumed))),
                 std::bad_alloc);
    EXPECT_LE(consumed.size(), 5U);
}

TEST_P(OrderedPipelineThreads, RunEndsWhereTheSourceOrTheSinkGetsNoMemory)
{
    const auto source = []() -> Result<std::optional<int>> { throw std::bad_alloc(); };
    Numbers consumed;
    EXPECT_THROW(static_cast<void>(Pipeline({GetParam()}).run(source, same, appendTo(&consumed))), std::bad_alloc);
    EXPECT_TRUE(consumed.empty());
    const auto sink = [](int) -> Error { throw std::bad_alloc(); };
    EXPECT_THROW(static_cast<void>(Pipeline({GetParam()}).run(counting(1000), same, sink)), std::bad_alloc);
}

// As drawing does in Qt Gui, which another thread has left locked.
int stuckOrWithoutMemory(int, int number)
{
    if (number > 0)
        throw std::bad_alloc();
    sleepMilliseconds(60'000);
    return number;
}

void exitWithoutMemory()
{
    try {
        std::rethrow_exception(std::current_exception());
    } catch (const std::bad_alloc &) {
        std::_Exit(7);
    }
}

TEST(OrderedPipelineDeathTest, ProcessEndsWhereAWorkerIsStuckWhenMemoryHasRunOut)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto run = [] {
        std::set_terminate(exitWithoutMemory);
        PipelineLimits limits{2};
        limits.patience = std::chrono::seconds(0);
        Numbers consumed;
        static_cast<void>(Pipeline(limits).run(counting(2), stuckOrWithoutMemory, appendTo(&consumed)));
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(7), "");
}

INSTANTIATE_TEST_SUITE_P(OrderedPipeline, OrderedPipelineThreads, ::testing::Values(1, 2, 5));

TEST(OrderedPipeline, ThreadsWorkAtTheSameTime)
{
    // Each of the two pieces waits until the other has been started too.
    std::atomic<int> started = 0;
    const auto meet = [&](int, int number) {
        ++started;
        for (int waited = 0; started < 2 && waited < 5000; ++waited)
            sleepMilliseconds(1);
        return started == 2 ? number : -1;
    };
    Numbers consumed;
    EXPECT_FALSE(Pipeline({2}).run(counting(2), meet, appendTo(&consumed)).hasError());
    EXPECT_EQ(consumed, upTo(2));
}

TEST(OrderedPipeline, PiecesAndOutcomesNeedNotBeCopyable)
{
    using Box = std::unique_ptr<int>;
    int next = 0;
    int sum = 0;
    const auto source = [&]() -> Result<std::optional<Box>> {
        return next == 5 ? std::optional<Box>() : std::optional<Box>(std::make_unique<int>(next++));
    };
    const auto pass = [](int, Box box) { return box; };
    const auto add = [&](Box box) {
        sum += *box;
        return Error();
    };
    EXPECT_FALSE((OrderedPipeline<Box, Box>({2}).run(source, pass, add).hasError()));
    EXPECT_EQ(sum, 10);
}

TEST(OrderedPipeline, LimitsBelowOneAreTakenForTheLeast)
{
    Numbers consumed;
    EXPECT_FALSE(Pipeline({0, -3}).run(counting(9), same, appendTo(&consumed)).hasError());
    EXPECT_EQ(consumed, upTo(9));
}

} // namespace
} // namespace zav
