// SPDX-License-Identifier: Apache-2.0
#include "HelpText.h"
#include "PeakRows.h"
#include "ProgramRun.h"
#include "SimulatedTraces.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <cstring>
#include <utility>

namespace zav {
namespace {

constexpr SimulatedPeak FIRST = {100, 5000, 4};
constexpr SimulatedPeak SECOND = {200, 20000, 6};

/// 0 but for a peak that rises and falls in straight lines: the walk's limits and the areas are known by hand.
const QByteArray TENT =
    "rt\tintensity\n1\t0\n2\t0\n3\t0\n4\t20\n5\t40\n6\t80\n7\t100\n8\t80\n9\t40\n10\t20\n11\t0\n12\t0\n"
    "13\t0\n14\t0\n15\t0\n";

class LimitsCommand : public ::testing::Test
{
protected:
    ProgramRun limits(const QStringList &arguments, const QByteArray &standardInput = {}) const
    {
        return runZav(QStringList{"limits"} + arguments, standardInput, m_files.path(QString()));
    }

    TemporaryFiles m_files;
};

class LimitsOfTent : public LimitsCommand
{
protected:
    /// The one peak that the walk finds in `TENT`, without smoothing unless asked for.
    PeakRow walk(const QStringList &options) const
    {
        m_files.write("tent.tsv", TENT);
        const ProgramRun run = limits(QStringList{"tent.tsv", "--method", "walk"} + options);
        EXPECT_EQ(run.exitCode, 0) << run.standardError;
        const QList<PeakRow> rows = peakRowsOf(run.standardOutput);
        EXPECT_EQ(rows.size(), 1) << run.standardOutput;
        return rows.value(0);
    }
};

TEST_F(LimitsCommand, PeaksOfASimulatedTraceAreFoundAndMeasured)
{
    const QList<QPointF> trace = simulatedTrace(300, {FIRST, SECOND});
    m_files.write("trace.tsv", tsvFile(trace));
    const ProgramRun run = limits({"trace.tsv"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardError, "zav: 1 trace: 2 peaks in 1, none in 0\n");
    EXPECT_EQ(linesOf(run.standardOutput).value(0).toStdString(),
              "id\tstart\tend\tapex\theight\tarea\tarea_above_line\tpoints");
    const QList<PeakRow> rows = peakRowsOf(run.standardOutput);
    ASSERT_EQ(rows.size(), 2) << run.standardOutput;
    for (int i = 0; i < 2; ++i) {
        const SimulatedPeak &peak = i == 0 ? FIRST : SECOND;
        EXPECT_GT(overlap(rows[i], peak), 0.6);
        EXPECT_EQ(rows[i].apex, peak.apex);
        EXPECT_EQ(rows[i].height, trace[int(peak.apex)].y());
        EXPECT_EQ(rows[i].points, rows[i].end - rows[i].start + 1) << "one point a second";
        EXPECT_NEAR(rows[i].areaAboveLine, peak.area(), 0.05 * peak.area());
    }
}

TEST_F(LimitsOfTent, LimitsAndAreasAreThoseByHand)
{
    const PeakRow row = walk({"--smoothing-pass-count", "0"});
    EXPECT_EQ(row.start, 3);
    EXPECT_EQ(row.end, 11);
    EXPECT_EQ(row.apex, 7);
    EXPECT_EQ(row.height, 100);
    EXPECT_EQ(row.area, 20 + 40 + 80 + 100 + 80 + 40 + 20);
    EXPECT_EQ(row.areaAboveLine, row.area);
    EXPECT_EQ(row.points, 9);
}

TEST_F(LimitsOfTent, LimitThresholdEndsTheWalkHigher)
{
    const PeakRow row = walk({"--smoothing-pass-count", "0", "--limit-threshold", "0.45"});
    EXPECT_EQ(row.start, 5);
    EXPECT_EQ(row.end, 9);
    EXPECT_EQ(row.area, 60 + 90 + 90 + 60);
    EXPECT_EQ(row.areaAboveLine, 300 - 4 * 40);
}

TEST_F(LimitsOfTent, SmoothingWidensTheWalk)
{
    const PeakRow once = walk({"--smoothing-pass-count", "1"});
    const PeakRow wider = walk({"--smoothing-pass-count", "1", "--gaussian-filter-size", "9"});
    EXPECT_LT(once.start, 3);
    EXPECT_LE(wider.start, once.start);
    EXPECT_GT(wider.points, walk({"--smoothing-pass-count", "0"}).points);
}

/// Three tents on 0 with the areas 40, 120 and 200, one point a minute.
const QList<double> TENTS = {0, 0, 0, 10, 20, 10, 0, 0, 0, 0, 30, 60, 30, 0, 0, 0, 0, 50, 100, 50, 0, 0, 0};

QList<QPointF> pointsOf(const QList<double> &intensities)
{
    QList<QPointF> points;
    for (const double intensity : intensities)
        points.append({double(points.size()), intensity});
    return points;
}

class BestOfTents : public LimitsCommand
{
protected:
    ProgramRun best(const QStringList &options, const QByteArray &lines) const
    {
        return limits(QStringList{"-", "--method", "walk", "--smoothing-pass-count", "0"} + options, lines);
    }

    QByteArray m_tents = jsonLine(pointsOf(TENTS), "a", "min");
};

TEST_F(BestOfTents, PeaksOfTheLargestAreaAreWrittenByTheirStart)
{
    const auto areas = [&](const QStringList &options, const char *summary) {
        const ProgramRun run = best(options, m_tents);
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.standardError, "zav: 1 trace: " + std::string(summary) + '\n');
        QList<double> found;
        for (const PeakRow &row : peakRowsOf(run.standardOutput))
            found.append(row.areaAboveLine);
        return found;
    };
    EXPECT_EQ(areas({"--best", "1"}, "1 peak in 1, none in 0, 2 peaks left out"), (QList<double>{200}));
    EXPECT_EQ(areas({"--best", "2"}, "2 peaks in 1, none in 0, 1 peak left out"), (QList<double>{120, 200}));
    EXPECT_EQ(areas({"--best", "3"}, "3 peaks in 1, none in 0"), (QList<double>{40, 120, 200}));
    EXPECT_EQ(best({"--best", "9"}, m_tents).standardOutput, best({}, m_tents).standardOutput);
}

TEST_F(BestOfTents, JsonHoldsThemAlone)
{
    const ProgramRun run = best({"--best", "2", "--format", "json"}, m_tents);
    EXPECT_EQ(run.exitCode, 0) << run.standardError;
    const nlohmann::json peaks = nlohmann::json::parse(run.standardOutput).at("traces").at(0).at("peaks");
    ASSERT_EQ(peaks.size(), 2);
    EXPECT_EQ(peaks[0].at("area_above_line"), 120);
    EXPECT_EQ(peaks[1].at("area_above_line"), 200);
}

/// By itself "a" is highest at 18; together the traces are highest at 11: 4 * 60 against 100.
TEST_F(BestOfTents, AGroupHasTheBestOfItsSum)
{
    QList<double> second(TENTS.size(), 0);
    for (int i = 8; i < 15; ++i)
        second[i] = TENTS[i];
    const auto member = [](const QList<double> &intensities, const char *id) {
        return "{\"group\": \"P\", " + jsonLine(pointsOf(intensities), id, "min").mid(1);
    };
    const ProgramRun run =
        best({"--best", "1", "--group", "--format", "json"}, member(TENTS, "a") + member(second, "b"));
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardError, "zav: 2 traces in 1 group: 2 peaks in 2, none in 0, 4 peaks left out\n");
    const nlohmann::json traces = nlohmann::json::parse(run.standardOutput).at("traces");
    ASSERT_EQ(traces.size(), 2);
    for (const nlohmann::json &trace : traces) {
        ASSERT_EQ(trace.at("peaks").size(), 1) << trace;
        EXPECT_EQ(trace.at("peaks")[0].at("apex"), 11);
        EXPECT_EQ(trace.at("peaks")[0].at("area_above_line"), 120);
    }
}

TEST_F(LimitsCommand, WalkFindsTheSamePeaksHoweverManyOthers)
{
    m_files.write("trace.tsv", tsvFile(simulatedTrace(300, {FIRST, SECOND})));
    const ProgramRun run = limits({"trace.tsv", "--method", "walk"});
    const QList<PeakRow> rows = peakRowsOf(run.standardOutput);
    for (const SimulatedPeak &peak : {FIRST, SECOND})
        EXPECT_TRUE(
            std::any_of(rows.begin(), rows.end(), [&](const PeakRow &row) { return overlap(row, peak) > 0.6; }));
    EXPECT_TRUE(
        std::is_sorted(rows.begin(), rows.end(), [](const PeakRow &a, const PeakRow &b) { return a.start < b.start; }));
}

TEST_F(LimitsCommand, TraceWithoutAPeakIsAnAnswer)
{
    m_files.write("flat.tsv", tsvFile(QList<QPointF>(60, {1, 0})));
    const ProgramRun run = limits({"flat.tsv"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(linesOf(run.standardOutput).size(), 1) << run.standardOutput;
    EXPECT_EQ(run.standardError, "zav: flat.tsv: 1: no peak found\nzav: 1 trace: 0 peaks in 0, none in 1\n");
}

TEST_F(LimitsCommand, TooFewPointsAreAnAnswer)
{
    m_files.write("short.tsv", tsvFile(simulatedTrace(5, {{2, 100, 1}})));
    const ProgramRun run = limits({"short.tsv"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardError, "zav: short.tsv: 1: 5 points or fewer, too few for the network\n"
                                 "zav: 1 trace: 0 peaks in 0, none in 1\n");
}

TEST_F(LimitsCommand, MinPointCountLeavesOutLongerTracesToo)
{
    m_files.write("trace.tsv", tsvFile(simulatedTrace(300, {FIRST})));
    const ProgramRun run = limits({"trace.tsv", "--min-point-count", "300"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_NE(run.standardError.find("300 points or fewer, too few for the network"), std::string::npos);
    EXPECT_EQ(peakRowsOf(limits({"trace.tsv", "--min-point-count", "299"}).standardOutput).size(), 1);
}

TEST_F(LimitsCommand, OptionsOfTheDetectorDecideWhatAPeakIs)
{
    m_files.write("trace.tsv", tsvFile(simulatedTrace(300, {FIRST, SECOND})));
    // A threshold of 0, which every point reaches: one peak, which starts at index 1 by rule.
    const QList<PeakRow> all = peakRowsOf(limits({"trace.tsv", "--probability-tolerance", "1"}).standardOutput);
    ASSERT_EQ(all.size(), 1);
    EXPECT_EQ(all[0].start, 1);
    EXPECT_EQ(all[0].end, 299);
    EXPECT_TRUE(peakRowsOf(limits({"trace.tsv", "--dbscan-min-points", "100"}).standardOutput).isEmpty());
    // Points 100 apart belong together: one peak remains of two.
    const QList<PeakRow> joined = peakRowsOf(limits({"trace.tsv", "--dbscan-epsilon", "100"}).standardOutput);
    ASSERT_EQ(joined.size(), 1);
    EXPECT_LT(joined[0].start, FIRST.apex);
    EXPECT_GT(joined[0].end, SECOND.apex);
}

TEST_F(LimitsCommand, HintWithinAPeakChangesNothing)
{
    m_files.write("trace.tsv", tsvFile(simulatedTrace(300, {FIRST, SECOND})));
    EXPECT_EQ(limits({"trace.tsv", "--hint", "101"}).standardOutput, limits({"trace.tsv"}).standardOutput);
}

TEST_F(LimitsCommand, HintBringsOutAFaintPeak)
{
    // A hundredth of its neighbour in height: overlooked until the trace is amplified.
    const SimulatedPeak faint = {60, 90, 4};
    m_files.write("trace.tsv", tsvFile(simulatedTrace(300, {faint, {200, 20000, 6}})));
    const auto isFound = [&](const ProgramRun &run) {
        const QList<PeakRow> rows = peakRowsOf(run.standardOutput);
        return std::any_of(rows.begin(), rows.end(), [&](const PeakRow &row) { return overlap(row, faint) > 0.3; });
    };
    EXPECT_FALSE(isFound(limits({"trace.tsv"})));
    EXPECT_TRUE(isFound(limits({"trace.tsv", "--hint", "60"})));
}

TEST_F(LimitsCommand, LongTraceIsThinnedAndSaidSo)
{
    const SimulatedPeak wide = {3000, 5000, 40};
    m_files.write("trace.tsv", tsvFile(simulatedTrace(5000, {wide})));
    const ProgramRun run = limits({"trace.tsv"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_NE(run.standardError.find("zav: trace.tsv: 1: 5000 points thinned to 4096 for the network\n"),
              std::string::npos);
    const QList<PeakRow> rows = peakRowsOf(run.standardOutput);
    ASSERT_FALSE(rows.isEmpty());
    const PeakRow highest = *std::max_element(rows.begin(), rows.end(),
                                              [](const PeakRow &a, const PeakRow &b) { return a.height < b.height; });
    EXPECT_GT(overlap(highest, wide), 0.6) << "the limits are times of the whole trace";
    EXPECT_EQ(highest.points, highest.end - highest.start + 1) << "measured on every point";
}

TEST_F(LimitsCommand, MaxPointCountFixesTheLengthOfTheInput)
{
    m_files.write("trace.tsv", tsvFile(simulatedTrace(300, {FIRST, SECOND})));
    const ProgramRun small = limits({"trace.tsv", "--max-point-count", "224"});
    EXPECT_NE(small.standardError.find("300 points thinned to 224"), std::string::npos);
    const ProgramRun large = limits({"trace.tsv", "--max-point-count", "4096"});
    EXPECT_EQ(large.standardOutput, limits({"trace.tsv"}).standardOutput) << "the padding does not matter";
    const ProgramRun odd = limits({"trace.tsv", "--max-point-count", "1000"});
    EXPECT_EQ(odd.exitCode, 1);
    EXPECT_EQ(odd.standardOutput, "");
    EXPECT_EQ(odd.standardError.find("ml/src"), std::string::npos) << odd.standardError;
}

TEST_F(LimitsCommand, StandardInputIsReadAsEitherText)
{
    const QList<QPointF> trace = simulatedTrace(300, {FIRST});
    const ProgramRun table = limits({"-"}, tsvFile(trace));
    const ProgramRun lines = limits({"-"}, jsonLine(trace, "a", "s"));
    EXPECT_EQ(table.exitCode, 0) << table.standardError;
    EXPECT_EQ(lines.exitCode, 0) << lines.standardError;
    EXPECT_TRUE(linesOf(lines.standardOutput).value(0).startsWith("id\tstart_s\t"));
    ASSERT_EQ(peakRowsOf(table.standardOutput).size(), 1);
    EXPECT_EQ(peakRowsOf(table.standardOutput)[0].start, peakRowsOf(lines.standardOutput).value(0).start);
}

TEST_F(LimitsCommand, SeveralFilesAreNamedAndKeepTheirOrder)
{
    m_files.write("b.tsv", tsvFile(simulatedTrace(300, {FIRST})));
    m_files.write("a.jsonl", jsonLine(simulatedTrace(300, {SECOND}), "x"));
    const ProgramRun run = limits({"b.tsv", "a.jsonl"});
    EXPECT_EQ(run.exitCode, 0) << run.standardError;
    const QStringList lines = linesOf(run.standardOutput);
    ASSERT_EQ(lines.size(), 3) << run.standardOutput;
    EXPECT_TRUE(lines[0].startsWith("file\tid\tstart\t"));
    EXPECT_TRUE(lines[1].startsWith("b.tsv\t1\t"));
    EXPECT_TRUE(lines[2].startsWith("a.jsonl\tx\t"));
}

TEST_F(LimitsCommand, FilesOfOtherUnitsAreConverted)
{
    const QList<QPointF> trace = simulatedTrace(300, {FIRST});
    m_files.write("a.jsonl", jsonLine(trace, "x", "s") + jsonLine(trace, "y", "min"));
    const QList<PeakRow> rows = peakRowsOf(limits({"a.jsonl"}).standardOutput);
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows[1].apex, 60 * rows[0].apex);
    EXPECT_EQ(rows[1].height, rows[0].height);
    EXPECT_NEAR(rows[1].area, 60 * rows[0].area, 1e-8 * rows[1].area) << "10 digits are written";
}

TEST_F(LimitsCommand, OutputIsTheSameWhateverTheNumberOfThreads)
{
    QByteArray file;
    for (int i = 0; i < 60; ++i) {
        const int count = i % 10 == 0 ? 4 : 150 + i * 30; // lengths for three sizes of network, and too short ones
        file += jsonLine(simulatedTrace(count, {{60 + i * 0.7, 3000.0 + i, 4}}), "t" + QByteArray::number(i));
    }
    file += "{\"id\": \"torn\", \"rt\": [1, 2], \"intensity\": [1]}\n";
    m_files.write("traces.jsonl", file);
    const ProgramRun one = limits({"traces.jsonl", "--threads", "1"});
    EXPECT_EQ(one.exitCode, 1) << "one trace is broken";
    EXPECT_GE(linesOf(one.standardOutput).size(), 50) << one.standardError;
    for (const char *threads : {"2", "5"}) {
        const ProgramRun more = limits({"traces.jsonl", "--threads", threads});
        EXPECT_EQ(more.standardOutput, one.standardOutput);
        EXPECT_EQ(more.standardError, one.standardError);
        EXPECT_EQ(more.exitCode, one.exitCode);
    }
}

TEST_F(LimitsCommand, FormatFollowsTheFlagOrTheEndingOfTheFile)
{
    m_files.write("trace.tsv", tsvFile(simulatedTrace(300, {FIRST})));
    EXPECT_EQ(limits({"trace.tsv", "-o", "out.json"}).standardOutput, "");
    const nlohmann::json document = nlohmann::json::parse(m_files.read("out.json").toStdString());
    EXPECT_EQ(document.at("generator"), "zav " ZAV_VERSION);
    EXPECT_EQ(document.at("traces").at(0).at("peaks").size(), 1);
    EXPECT_EQ(limits({"trace.tsv", "-o", "out.tsv"}).exitCode, 0);
    EXPECT_TRUE(m_files.read("out.tsv").startsWith("id\tstart\t"));
    const ProgramRun table = limits({"trace.tsv", "--format", "table"});
    EXPECT_EQ(linesOf(table.standardOutput).value(0).simplified().toStdString(),
              "start end apex height area area_above_line points id");
}

TEST_F(LimitsCommand, HelpShowsTheDefaultsOfTheOptions)
{
    const ProgramRun help = limits({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    for (const auto &[option, shown] :
         {std::pair("--probability-tolerance X", "[0.8]"), std::pair("--dbscan-epsilon X", "[1.5]"),
          std::pair("--dbscan-min-points N", "[2]"), std::pair("--min-point-count N", "[5]"),
          std::pair("--smoothing-pass-count N", "[1]"), std::pair("--gaussian-filter-size N", "[5]"),
          std::pair("--limit-threshold X", "[0.05]"), std::pair("--max-point-count N", "[512 to 4096, the smallest")})
        EXPECT_EQ(defaultIn(help.standardOutput, option).left(int(strlen(shown))), shown) << option;
}

} // namespace
} // namespace zav
