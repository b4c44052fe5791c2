// SPDX-License-Identifier: Apache-2.0
#include "RecordSorter.h"

#include "DigestionFixtures.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace zav {
namespace {

using Pair = std::pair<std::string, std::string>; // std::string orders as memcmp does, shorter ones first

SortingSpace onDisk(qint64 memoryLimit)
{
    SortingSpace space;
    space.onDisk = true;
    space.memoryLimit = memoryLimit;
    return space;
}

std::vector<Pair> sortedBySorter(const SortingSpace &space, const std::vector<Pair> &records)
{
    RecordSorter sorter(space);
    for (const auto &[key, payload] : records)
        EXPECT_FALSE(sorter.add({QByteArray::fromStdString(key), QByteArray::fromStdString(payload)}).hasError());
    EXPECT_EQ(sorter.isEmpty(), records.empty());
    const Result<std::unique_ptr<RecordStream>> stream = sorter.finish();
    EXPECT_FALSE(stream.hasError());
    std::vector<Pair> sorted;
    while (stream.value()->next()) {
        const Record record = stream.value()->record();
        sorted.emplace_back(record.key.toByteArray().toStdString(), record.payload.toByteArray().toStdString());
    }
    EXPECT_FALSE(stream.value()->error().hasError());
    EXPECT_FALSE(stream.value()->next());
    return sorted;
}

std::vector<Pair> randomRecords(int count, int longestKey, std::string_view letters)
{
    std::mt19937 random(11);
    std::vector<Pair> records;
    for (int i = 0; i < count; ++i) {
        const QByteArray key = randomSequence(random, static_cast<int>(random() % (longestKey + 1)), letters);
        const QByteArray payload = randomSequence(random, static_cast<int>(random() % 6), {"\x00\x01\x7F\x80\xFF", 5});
        records.emplace_back(key.toStdString(), payload.toStdString());
    }
    return records;
}

class RecordSorterTest : public ::testing::TestWithParam<qint64>
{
protected:
    SortingSpace space() const { return GetParam() == 0 ? SortingSpace() : onDisk(GetParam()); }

    void expectSorted(std::vector<Pair> records) const
    {
        const std::vector<Pair> sorted = sortedBySorter(space(), records);
        std::sort(records.begin(), records.end());
        EXPECT_TRUE(sorted == records);
    }
};

TEST_P(RecordSorterTest, OrdersByKeyThenByPayload)
{
    expectSorted(randomRecords(20000, 30, "ACDEFGHIKLMNPQRSTVWY"));
}

TEST_P(RecordSorterTest, OrdersKeysThatDifferOnlyBehindTheirFirstLetters)
{
    expectSorted(randomRecords(20000, 20, "AAAAAAAAAAAAAAAAY"));
}

TEST_P(RecordSorterTest, KeepsEqualRecords)
{
    expectSorted(std::vector<Pair>(1000, {"PEPTIDEK", "x"}));
}

TEST_P(RecordSorterTest, TakesLongKeysAndPayloads)
{
    expectSorted({{std::string(65535, 'W'), std::string(3000000, 'b')},
                  {std::string(65535, 'W'), std::string(3000000, 'a')},
                  {std::string(65534, 'W'), ""},
                  {"", "x"}});
}

TEST_P(RecordSorterTest, HasNothingToGiveWhenNothingWasAdded)
{
    expectSorted({});
}

// In memory; on disk in a run for each record, in many runs, in two, and in one that is never written.
INSTANTIATE_TEST_SUITE_P(Spaces, RecordSorterTest, ::testing::Values(0, 1, 10000, 600000, 100000000));

TEST(RecordSorter, UnusableFolderIsNamed)
{
    SortingSpace space = onDisk(1);
    space.temporaryFolder = QStringLiteral("/nowhere/at all");
    RecordSorter sorter(space);
    const Error error = sorter.add({"PEPTIDEK", {}});
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_EQ(error.message().left(49), QStringLiteral("cannot make a temporary file in /nowhere/at all: "));
}

} // namespace
} // namespace zav
