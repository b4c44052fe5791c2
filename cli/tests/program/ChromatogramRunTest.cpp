// SPDX-License-Identifier: Apache-2.0
#include "PeakRows.h"
#include "ProgramRun.h"
#include "SimulatedRun.h"
#include "SimulatedTraces.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <QtCore/QFileInfo>

#include <utility>

namespace zav {
namespace {

constexpr SimulatedPeak FIRST = {100, 5000, 4};
constexpr SimulatedPeak SECOND = {200, 20000, 6};

/// `zav limits` on runs in mzML.
class ChromatogramRun : public ::testing::Test
{
protected:
    ProgramRun limits(const QStringList &arguments, const QByteArray &standardInput = {}) const
    {
        return runZav(QStringList{"limits"} + arguments, standardInput, m_files.path(QString()));
    }

    TemporaryFiles m_files;
};

TEST_F(ChromatogramRun, StoredChromatogramsOfMzMlHaveTheUnitOfTheFile)
{
    m_files.write("run.mzML", SimulatedRun()
                                  .addChromatogram("SRM one", simulatedTrace(300, {FIRST}))
                                  .addChromatogram("SRM two", simulatedTrace(300, {SECOND}))
                                  .document());
    const ProgramRun run = limits({"run.mzML"});
    EXPECT_EQ(run.exitCode, 0) << run.standardError;
    const QStringList lines = linesOf(run.standardOutput);
    ASSERT_EQ(lines.size(), 3) << run.standardOutput;
    EXPECT_TRUE(lines[0].startsWith("id\tstart_min\tend_min\tapex_min\theight\t"));
    EXPECT_TRUE(lines[1].startsWith("SRM one\t"));
    EXPECT_TRUE(lines[2].startsWith("SRM two\t"));
    const QList<PeakRow> rows = peakRowsOf(run.standardOutput);
    EXPECT_GT(overlap(rows[0], FIRST), 0.6);
    EXPECT_GT(overlap(rows[1], SECOND), 0.6);
}

/// MS1 spectra with the peak at m/z 500.
QByteArray runWithPeakAt500()
{
    SimulatedRun run;
    for (const QPointF &point : simulatedTrace(300, {FIRST}))
        run.addSpectrum(point.x(), {{400, 7}, {500.001, point.y()}, {500.1, 3}});
    return run.document();
}

TEST_F(ChromatogramRun, TraceOfAnMzIsExtracted)
{
    m_files.write("run.mzML", runWithPeakAt500());
    const ProgramRun run = limits({"run.mzML", "--mz", "500", "--ppm", "5"});
    EXPECT_EQ(run.exitCode, 0) << run.standardError;
    EXPECT_TRUE(linesOf(run.standardOutput).value(1).startsWith("m/z 500\t"));
    ASSERT_EQ(peakRowsOf(run.standardOutput).size(), 1);
    EXPECT_GT(overlap(peakRowsOf(run.standardOutput)[0], FIRST), 0.6);
    const ProgramRun narrow = limits({"run.mzML", "--mz", "500", "--ppm", "1"});
    EXPECT_EQ(narrow.exitCode, 0);
    EXPECT_TRUE(peakRowsOf(narrow.standardOutput).isEmpty()) << "2 ppm away";
}

TEST_F(ChromatogramRun, RangeOfTimesCutsTheTrace)
{
    m_files.write("run.mzML", runWithPeakAt500());
    const QStringList extraction = {"run.mzML", "--mz", "500", "--ppm", "5", "--format", "json", "--rt"};
    const auto pointsOf = [&](const char *range) {
        const ProgramRun run = limits(extraction + QStringList{range});
        EXPECT_EQ(run.exitCode, 0) << run.standardError;
        return nlohmann::json::parse(run.standardOutput).at("traces").at(0).at("points").get<int>();
    };
    EXPECT_EQ(pointsOf("80-120"), 41);
    EXPECT_EQ(pointsOf("250-"), 50);
    EXPECT_EQ(pointsOf("-9"), 10);
}

TEST_F(ChromatogramRun, TargetsAreExtractedInTheirOrder)
{
    m_files.write("run.mzML", runWithPeakAt500());
    m_files.write("targets.tsv", "id\tmz\tppm\trt_from\trt_to\nthe peak\t500\t5\t80\t120\nnothing\t450\t\t\t\n");
    const ProgramRun run = limits({"run.mzML", "--targets", "targets.tsv", "--format", "json"});
    EXPECT_EQ(run.exitCode, 0) << run.standardError;
    const nlohmann::json traces = nlohmann::json::parse(run.standardOutput).at("traces");
    ASSERT_EQ(traces.size(), 2);
    EXPECT_EQ(traces[0].at("id"), "the peak");
    EXPECT_EQ(traces[0].at("points"), 41);
    EXPECT_EQ(traces[0].at("time_unit"), "min");
    EXPECT_EQ(traces[0].at("peaks").size(), 1);
    EXPECT_EQ(traces[1].at("id"), "nothing");
    EXPECT_TRUE(traces[1].at("peaks").empty());
}

TEST_F(ChromatogramRun, AllTargetsAreReadInOnePassThroughAPipe)
{
    m_files.write("run.mzML", runWithPeakAt500());
    m_files.write("targets.tsv", "id\tmz\tppm\trt_from\trt_to\n"
                                 "whole\t500\t5\t\t\nlate\t500\t5\t200\t300\nthe peak\t500\t5\t60\t140\n"
                                 "before\t500\t5\t-9\t-1\nbehind\t500\t5\t900\t901\n");
    const QStringList options = {"--targets", "targets.tsv", "--format", "json", "--threads"};
    const ProgramRun piped = limits(QStringList{"-"} + options + QStringList{"1"}, runWithPeakAt500());
    EXPECT_EQ(piped.exitCode, 0) << piped.standardError;
    const nlohmann::json traces = nlohmann::json::parse(piped.standardOutput).at("traces");
    ASSERT_EQ(traces.size(), 5);
    const QList<std::pair<const char *, int>> expected = {
        {"whole", 300}, {"late", 100}, {"the peak", 81}, {"before", 0}, {"behind", 0}};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(traces[i].at("id"), expected[qsizetype(i)].first);
        EXPECT_EQ(traces[i].at("points"), expected[qsizetype(i)].second);
    }
    EXPECT_EQ(traces[0].at("peaks").size(), 1);
    EXPECT_EQ(traces[2].at("peaks").size(), 1);
    EXPECT_NE(piped.standardError.find("zav: 5 traces: "), std::string::npos) << piped.standardError;
    EXPECT_EQ(limits(QStringList{"run.mzML"} + options + QStringList{"4"}).standardOutput, piped.standardOutput);
}

TEST_F(ChromatogramRun, TruncatedFileLeavesNoOutput)
{
    const QList<QPointF> trace = simulatedTrace(300, {FIRST});
    const QByteArray whole = SimulatedRun().addChromatogram("a", trace).addChromatogram("b", trace).document();
    m_files.write("torn.mzML", whole.left(whole.size() * 3 / 4));
    const ProgramRun torn = limits({"torn.mzML", "-o", "out.tsv"});
    EXPECT_EQ(torn.exitCode, 1);
    EXPECT_NE(torn.standardError.find("torn.mzML"), std::string::npos) << torn.standardError;
    EXPECT_FALSE(QFileInfo::exists(m_files.path("out.tsv")));
}

TEST_F(ChromatogramRun, UnreadableTargetsAreNamed)
{
    m_files.write("run.mzML", SimulatedRun().addSpectrum(1, {{500, 1}}).document());
    m_files.write("targets.tsv", "mass\n500\n");
    for (const char *targets : {"targets.tsv", "nowhere.tsv"}) {
        const ProgramRun failed = limits({"run.mzML", "--targets", targets, "-o", "out.tsv"});
        EXPECT_EQ(failed.exitCode, 1);
        EXPECT_EQ(linesOf(failed.standardError).size(), 1) << failed.standardError;
        EXPECT_NE(failed.standardError.find(targets), std::string::npos) << failed.standardError;
        EXPECT_FALSE(QFileInfo::exists(m_files.path("out.tsv")));
    }
}

} // namespace
} // namespace zav
