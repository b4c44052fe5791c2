// SPDX-License-Identifier: Apache-2.0
#include "TargetList.h"
#include "TemporaryFiles.h"

#include <limits>

namespace zav {
namespace {

struct TargetLists : testing::Test
{
    TemporaryFiles files;

    Result<QList<ExtractionTarget>> read(const QByteArray &content) const
    {
        return readTargetList(files.write("t.tsv", content), 20);
    }

    std::string message(const QByteArray &content) const
    {
        return files.withoutFolder(read(content).error().message());
    }
};

TEST_F(TargetLists, MissingColumnsAndCellsHaveTheirDefaults)
{
    const auto targets = read("mz\n500.25\n600.5\n500.25\n");
    ASSERT_FALSE(targets.hasError()) << targets.error().toString().toStdString();
    ASSERT_EQ(targets.value().size(), 3);
    EXPECT_EQ(targets.value()[0].id, "500.25");
    EXPECT_EQ(targets.value()[0].mz, 500.25);
    EXPECT_EQ(targets.value()[0].ppm, 20);
    EXPECT_EQ(targets.value()[0].rtFrom, -std::numeric_limits<double>::infinity());
    EXPECT_EQ(targets.value()[0].rtTo, std::numeric_limits<double>::infinity());
    EXPECT_EQ(targets.value()[2].id, "500.25#2");
}

TEST_F(TargetLists, TargetsOfOneMzAreNumberedPastIdsThatAreTaken)
{
    const auto targets = read("id\tmz\n\t500\n500#2\t600\n\t500\n\t500\n\t600\n");
    ASSERT_FALSE(targets.hasError()) << targets.error().toString().toStdString();
    QStringList ids;
    for (const ExtractionTarget &target : targets.value())
        ids.append(target.id);
    EXPECT_EQ(ids, QStringList({"500", "500#2", "500#3", "500#4", "600"}));
}

TEST_F(TargetLists, MayHoldOneMzAHundredThousandTimes)
{
    const auto targets = read("mz\n" + QByteArray("500\n").repeated(100'000));
    ASSERT_FALSE(targets.hasError()) << targets.error().toString().toStdString();
    EXPECT_EQ(targets.value().last().id, "500#100000");
}

TEST_F(TargetLists, EveryColumnIsReadWhateverTheOrder)
{
    const auto targets = read("# wanted\r\nrt_to\tid\tnote\tmz\tppm\trt_from\r\n12.5\tYIC\tx\t500.25\t5\t10\r\n"
                              "\tother\t\t600\t\t3\r\n");
    ASSERT_FALSE(targets.hasError()) << targets.error().toString().toStdString();
    const ExtractionTarget &first = targets.value()[0];
    EXPECT_EQ(first.id, "YIC");
    EXPECT_EQ(first.mz, 500.25);
    EXPECT_EQ(first.ppm, 5);
    EXPECT_EQ(first.rtFrom, 10);
    EXPECT_EQ(first.rtTo, 12.5);
    EXPECT_EQ(targets.value()[1].ppm, 20);
    EXPECT_EQ(targets.value()[1].rtFrom, 3);
    EXPECT_EQ(targets.value()[1].rtTo, std::numeric_limits<double>::infinity());
}

TEST_F(TargetLists, WhatIsNoTargetIsRefusedWithItsLine)
{
    EXPECT_EQ(message(""), "cannot read t.tsv: it is empty");
    EXPECT_EQ(message("mz\n"), "cannot read t.tsv: it holds no target (a heading without rows)");
    EXPECT_EQ(message("id\tm/z\nx\t5\n"),
              "t.tsv, line 1: the heading has no column 'mz' (columns are separated by tabs)");
    EXPECT_EQ(message("mz\tid\n500\ta\n\tb\n"), "t.tsv, line 3: the row has no mz");
    EXPECT_EQ(message("mz\n5OO\n"), "t.tsv, line 2: mz '5OO' is not a finite number");
    EXPECT_EQ(message("mz\tppm\n500\tinf\n"), "t.tsv, line 2: ppm 'inf' is not a finite number");
    EXPECT_EQ(message("mz\n-500\n"), "t.tsv, line 2: mz and ppm have to be above 0");
    EXPECT_EQ(message("mz\tppm\n500\t0\n"), "t.tsv, line 2: mz and ppm have to be above 0");
    EXPECT_EQ(message("mz\trt_from\trt_to\n500\t2\t1\n"), "t.tsv, line 2: rt_from is above rt_to");
    EXPECT_EQ(message("mz\tid\n500\ta\n600\ta\n"), "t.tsv, line 3: the id 'a' appears twice");
}

TEST_F(TargetLists, GroupsAreReadOnRequest)
{
    const QString path = files.write("t.tsv", "mz\tgroup\n500\tAK\n600\t\n");
    const auto targets = readTargetList(path, 20, true);
    ASSERT_FALSE(targets.hasError()) << targets.error().toString().toStdString();
    EXPECT_EQ(targets.value()[0].group, "AK");
    EXPECT_EQ(targets.value()[1].group, "");
    EXPECT_EQ(readTargetList(path, 20).value()[0].group, "");
}

} // namespace
} // namespace zav
