// SPDX-License-Identifier: Apache-2.0
#include "HelpText.h"
#include "ProgramRun.h"
#include "SimulatedTraces.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace zav {
namespace {

/// Two peaks of one height meet half way between them: there is the valley.
const QList<QPointF> NEIGHBOURS = simulatedTrace(200, {{90, 5000, 5}, {110, 5000, 5}});

class SplitCommand : public ::testing::Test
{
protected:
    ProgramRun split(const QStringList &arguments, const QByteArray &standardInput = {}) const
    {
        return runZav(QStringList{"split"} + arguments, standardInput, m_files.path(QString()));
    }

    TemporaryFiles m_files;
};

TEST_F(SplitCommand, NeighboursAreSplitInTheirValley)
{
    m_files.write("trace.tsv", tsvFile(NEIGHBOURS));
    const ProgramRun run = split({"trace.tsv"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardError, "zav: 1 trace: 1 split in 1, none in 0\n");
    const QStringList lines = linesOf(run.standardOutput);
    ASSERT_EQ(lines.size(), 2) << run.standardOutput;
    EXPECT_EQ(lines[0].toStdString(), "id\tsplit\tprobability");
    const QStringList cells = lines[1].split('\t');
    ASSERT_EQ(cells.size(), 3);
    EXPECT_NEAR(cells[1].toDouble(), 100, 2);
    EXPECT_GE(cells[2].toDouble(), 0.5);
    EXPECT_LE(cells[2].toDouble(), 1);
}

TEST_F(SplitCommand, SinglePeakStaysWholeAndThatIsAnAnswer)
{
    const ProgramRun run = split({"-"}, tsvFile(simulatedTrace(200, {{100, 5000, 5}})));
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardOutput, "id\tsplit\tprobability\n");
    EXPECT_EQ(run.standardError, "zav: standard input: 1: no split found\nzav: 1 trace: 0 splits in 0, none in 1\n");
}

TEST_F(SplitCommand, TooFewPointsAreAnAnswer)
{
    const ProgramRun run = split({"-"}, tsvFile(simulatedTrace(4, {})));
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardError, "zav: standard input: 1: fewer than 5 points, too few for the network\n"
                                 "zav: 1 trace: 0 splits in 0, none in 1\n");
}

TEST_F(SplitCommand, SplitsOfATraceAreInTheOrderOfTime)
{
    const ProgramRun run =
        split({"-", "--format", "json"},
              jsonLine(simulatedTrace(300, {{90, 5000, 5}, {112, 9000, 5}, {134, 5000, 5}}), "three", "s"));
    EXPECT_EQ(run.exitCode, 0) << run.standardError;
    const nlohmann::json trace = nlohmann::json::parse(run.standardOutput).at("traces").at(0);
    EXPECT_EQ(trace.at("time_unit"), "s");
    ASSERT_EQ(trace.at("splits").size(), 2) << run.standardOutput;
    EXPECT_NEAR(trace.at("splits")[0].at("split").get<double>(), 101, 3);
    EXPECT_NEAR(trace.at("splits")[1].at("split").get<double>(), 123, 3);
}

TEST_F(SplitCommand, NoSplitIsCertainEnoughForAToleranceOfZero)
{
    const ProgramRun run = split({"-", "--probability-tolerance", "0"}, tsvFile(NEIGHBOURS));
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(linesOf(run.standardOutput).size(), 1);
}

TEST_F(SplitCommand, SmoothingIsAppliedBeforeTheNetwork)
{
    // Smoothed until the valley is gone.
    const ProgramRun run =
        split({"-", "--smoothing-pass-count", "60", "--gaussian-filter-size", "15"}, tsvFile(NEIGHBOURS));
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(linesOf(run.standardOutput).size(), 1) << run.standardOutput;
}

TEST_F(SplitCommand, LongTraceIsSplitAtATimeOfItsOwn)
{
    const QList<QPointF> trace = simulatedTrace(6000, {{2900, 5000, 50}, {3150, 5000, 50}});
    for (const QStringList &size : {QStringList(), QStringList{"--max-point-count", "1024"}}) {
        const ProgramRun run = split(QStringList{"-"} + size, tsvFile(trace));
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.standardError, "zav: 1 trace: 1 split in 1, none in 0\n");
        const QStringList lines = linesOf(run.standardOutput);
        ASSERT_EQ(lines.size(), 2) << run.standardOutput;
        EXPECT_NEAR(lines[1].section('\t', 1, 1).toDouble(), 3025, 15);
    }
}

TEST_F(SplitCommand, MoreSplitsAreFoundThanTheNetworkTellsAtOnce)
{
    QList<SimulatedPeak> peaks;
    for (int i = 0; i < 10; ++i)
        peaks.append({50.0 + 30 * i, 5000, 6});
    const ProgramRun run = split({"-"}, tsvFile(simulatedTrace(370, peaks)));
    const QStringList lines = linesOf(run.standardOutput);
    ASSERT_EQ(lines.size(), 10) << run.standardOutput;
    for (int i = 1; i < 10; ++i)
        EXPECT_NEAR(lines[i].section('\t', 1, 1).toDouble(), 35 + 30 * i, 3);
}

TEST_F(SplitCommand, TraceThatFallsBelow0IsSplit)
{
    // The two small neighbours lie below 0 as a whole.
    QList<QPointF> trace = simulatedTrace(160, {{40, 5000, 5}, {90, 1000, 5}, {110, 1000, 5}});
    for (QPointF &point : trace)
        point.ry() -= 1200;
    const QStringList lines = linesOf(split({"-"}, tsvFile(trace)).standardOutput);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_NEAR(lines[1].section('\t', 1, 1).toDouble(), 65, 5);
    EXPECT_NEAR(lines[2].section('\t', 1, 1).toDouble(), 100, 2);
}

TEST_F(SplitCommand, OutputIsTheSameWhateverTheNumberOfThreads)
{
    QByteArray file;
    for (int i = 0; i < 40; ++i)
        file += jsonLine(simulatedTrace(200 + i * 40, {{90, 5000, 5}, {105.0 + i / 2, 5000.0 + i * 100, 5}}),
                         "t" + QByteArray::number(i));
    m_files.write("traces.jsonl", file);
    const ProgramRun one = split({"traces.jsonl", "--threads", "1"});
    EXPECT_GE(linesOf(one.standardOutput).size(), 20) << one.standardError;
    for (const char *threads : {"2", "5"}) {
        const ProgramRun more = split({"traces.jsonl", "--threads", threads});
        EXPECT_EQ(more.standardOutput, one.standardOutput);
        EXPECT_EQ(more.standardError, one.standardError);
    }
}

TEST_F(SplitCommand, HelpShowsTheDefaultsOfTheOptions)
{
    const std::string help = split({"--help"}).standardOutput;
    EXPECT_EQ(defaultIn(help, "--probability-tolerance X"), "[0.5]");
    EXPECT_EQ(defaultIn(help, "--smoothing-pass-count N"), "[0]");
    EXPECT_EQ(defaultIn(help, "--gaussian-filter-size N"), "[5]");
}

} // namespace
} // namespace zav
