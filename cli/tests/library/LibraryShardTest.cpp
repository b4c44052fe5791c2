// SPDX-License-Identifier: Apache-2.0
#include "LibraryShard.h"
#include "CommandArguments.h"

#include <gtest/gtest.h>

#include <limits>

namespace zav {
namespace {

const char *const SLURM_VARIABLES[] = {"SLURM_ARRAY_TASK_ID", "SLURM_ARRAY_TASK_COUNT", "SLURM_ARRAY_TASK_MIN",
                                       "SLURM_ARRAY_TASK_STEP"};

class SlurmShard : public testing::Test
{
protected:
    void SetUp() override { clear(); }
    void TearDown() override { clear(); }

    static void clear()
    {
        for (const char *variable : SLURM_VARIABLES)
            qunsetenv(variable);
    }

    static void set(const std::initializer_list<int> &values)
    {
        const char *const *variable = SLURM_VARIABLES;
        for (const int value : values)
            qputenv(*variable++, QByteArray::number(value));
    }
};

std::string parsed(const QString &text)
{
    const Result<LibraryShard> shard = LibraryShard::parse(text);
    return shard.hasError() ? "refused" : shard.value().name().toStdString();
}

TEST(LibraryShard, IsReadFromNumberAndCount)
{
    EXPECT_EQ(parsed("2/4"), "2/4");
    EXPECT_EQ(parsed("1/1"), "1/1");
    EXPECT_TRUE(LibraryShard::parse("1/1").value().isWhole());
    EXPECT_EQ(LibraryShard::parse("2/4").value().fileNamePart(), "2-of-4");
}

TEST(LibraryShard, RefusesWhatIsNoShard)
{
    for (const char *text : {"", "2", "0/4", "5/4", "-1/4", "2/0", "a/4", "2/b", "1/2/3", "1/1000001", "2-4"})
        EXPECT_EQ(parsed(text), "refused") << text;
}

TEST(LibraryShard, StretchesLieEndToEndAndDifferByOnePeptideAtMost)
{
    for (const qint64 peptides : {0, 1, 3, 10, 1001}) {
        for (const int count : {1, 2, 3, 7, 1000}) {
            qint64 next = 0;
            for (int number = 1; number <= count; ++number) {
                const LibraryShard shard{number, count};
                EXPECT_EQ(shard.first(peptides), next);
                next = shard.end(peptides);
                EXPECT_GE(next - shard.first(peptides), peptides / count);
                EXPECT_LE(next - shard.first(peptides), peptides / count + 1);
            }
            EXPECT_EQ(next, peptides);
        }
    }
}

TEST(LibraryShard, HoldsNumbersOfPeptidesBeyond32Bits)
{
    const LibraryShard last{1000000, 1000000};
    EXPECT_EQ(last.end(qint64(4) << 40), qint64(4) << 40);
}

TEST_F(SlurmShard, OutsideAnArrayJobIsTheWholeLibrary)
{
    EXPECT_EQ(LibraryShard::ofSlurmTask().value().name(), "1/1");
    set({3});
    EXPECT_EQ(LibraryShard::ofSlurmTask().value().name(), "1/1");
}

TEST_F(SlurmShard, CountsTasksFromTheLowest)
{
    set({0, 4, 0});
    EXPECT_EQ(LibraryShard::ofSlurmTask().value().name(), "1/4");
    set({4, 4, 1});
    EXPECT_EQ(LibraryShard::ofSlurmTask().value().name(), "4/4");
    set({12, 3, 10});
    EXPECT_EQ(LibraryShard::ofSlurmTask().value().name(), "3/3");
}

TEST_F(SlurmShard, CountsTasksByTheirStep)
{
    set({8, 4, 0, 4});
    EXPECT_EQ(LibraryShard::ofSlurmTask().value().name(), "3/4");
}

TEST_F(SlurmShard, RefusesTasksThatDoNotFollowOneAnother)
{
    set({7, 3, 1, 1});
    EXPECT_TRUE(LibraryShard::ofSlurmTask().error().message().contains("--shard"));
    set({6, 4, 0, 4});
    EXPECT_TRUE(LibraryShard::ofSlurmTask().hasError());
}

TEST_F(SlurmShard, RefusesNumbersFarOutsideOfAnArray)
{
    constexpr int LOWEST = std::numeric_limits<int>::min();
    constexpr int HIGHEST = std::numeric_limits<int>::max();
    for (const auto &values : {std::initializer_list<int>{HIGHEST, 4, LOWEST}, {LOWEST, 4, HIGHEST}, {2, HIGHEST, 1}}) {
        set(values);
        EXPECT_TRUE(LibraryShard::ofSlurmTask().hasError()) << *values.begin();
    }
}

TEST(ChargeList, TakesListsAndRangesInAnyOrder)
{
    EXPECT_EQ(parseCharges("2,3").value(), (QList<int>{2, 3}));
    EXPECT_EQ(parseCharges("5, 1,2-3,3").value(), (QList<int>{1, 2, 3, 5}));
}

TEST(ChargeList, RefusesWhatNoNetworkServes)
{
    for (const char *text : {"", "0", "7", "2-7", "3-2", "1-2-3", "two", "2;3", "2,"})
        EXPECT_TRUE(parseCharges(text).hasError()) << text;
}

} // namespace
} // namespace zav
