// SPDX-License-Identifier: Apache-2.0
#include "ProgramRun.h"
#include "SimulatedRun.h"
#include "SimulatedTraces.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <QtCore/QDir>

#include <cmath>

namespace zav {
namespace {

using nlohmann::json;

constexpr SimulatedPeak STRONG = {100, 20000, 5};
constexpr SimulatedPeak WEAK = {100, 4000, 5};
constexpr SimulatedPeak OTHER = {200, 9000, 5};

QByteArray jsonMember(const QList<QPointF> &points, const QByteArray &id, const QByteArray &group)
{
    return "{\"group\": \"" + group + "\", " + jsonLine(points, id, "s").mid(1);
}

QList<QPointF> silentTrace(int count)
{
    QList<QPointF> points;
    for (int second = 0; second < count; ++second)
        points.append({double(second), 0});
    return points;
}

/// Two groups whose traces are scattered, and a trace of no group; "y5" has no signal.
QByteArray twoGroups()
{
    return jsonMember(simulatedTrace(300, {STRONG}), "y3", "P") + jsonMember(simulatedTrace(300, {OTHER}), "z3", "Q") +
           jsonMember(simulatedTrace(300, {WEAK}), "y4", "P") + jsonLine(simulatedTrace(300, {OTHER}), "lone", "s") +
           jsonMember(silentTrace(300), "y5", "P") + jsonMember(simulatedTrace(150, {}), "z4", "Q");
}

class GroupedTraces : public ::testing::Test
{
protected:
    ProgramRun run(const QStringList &arguments, const QByteArray &standardInput = {}) const
    {
        return runZav(arguments, standardInput, m_files.path(QString()));
    }

    TemporaryFiles m_files;
};

TEST_F(GroupedTraces, MembersShareTheirLimitsAndHaveMeasuresOfTheirOwn)
{
    m_files.write("a.jsonl", twoGroups());
    const ProgramRun found = run({"limits", "a.jsonl", "--group", "--format", "json"});
    ASSERT_EQ(found.exitCode, 0) << found.standardError;
    const json traces = json::parse(found.standardOutput).at("traces");
    ASSERT_EQ(traces.size(), 6);
    const QList<const char *> order = {"y3", "y4", "y5", "z3", "z4", "lone"};
    for (int i = 0; i < order.size(); ++i)
        EXPECT_EQ(traces[static_cast<std::size_t>(i)].at("id"), order[i]);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(traces[i].at("group"), "P");
        EXPECT_EQ(traces[i].at("members"), 3);
        ASSERT_EQ(traces[i].at("peaks").size(), 1) << i;
        EXPECT_EQ(traces[i].at("peaks")[0].at("start"), traces[0].at("peaks")[0].at("start"));
        EXPECT_EQ(traces[i].at("peaks")[0].at("end"), traces[0].at("peaks")[0].at("end"));
    }
    const json strong = traces[0].at("peaks")[0];
    const json weak = traces[1].at("peaks")[0];
    EXPECT_NEAR(strong.at("area").get<double>(), STRONG.area(), 0.1 * STRONG.area());
    EXPECT_NEAR(weak.at("area").get<double>(), WEAK.area(), 0.1 * WEAK.area());
    EXPECT_EQ(strong.at("apex"), 100);
    EXPECT_GT(strong.at("shape").get<double>(), 0.99);
    EXPECT_GT(weak.at("shape").get<double>(), 0.99);
    EXPECT_EQ(traces[5].at("group"), "lone");
    EXPECT_EQ(traces[5].at("members"), 1);
}

/// The peaks of each trace of a JSON output, in the file's order.
QList<json> peaksOf(const ProgramRun &found)
{
    QList<json> peaks;
    const json output = json::parse(found.standardOutput);
    for (const json &trace : output.at("traces"))
        peaks.append(trace.at("peaks"));
    return peaks;
}

bool holds(const json &peak, double time)
{
    return peak.at("start") < time && peak.at("end") > time;
}

TEST_F(GroupedTraces, PeakOfOneMemberAloneIsNotThatOfTheGroup)
{
    // Highest points of the recorded transitions: all five near 4236 s, and "y7 2+" once more at 3971.7 s.
    constexpr double COMMON = 4236;
    constexpr double FOREIGN = 3971.7;
    const QString recorded = QStringLiteral(ZAV_TEST_DATA_DIR "/FTQAGSEVSALLGR.jsonl");
    const QList<json> alone = peaksOf(run({"limits", recorded, "--format", "json"}));
    ASSERT_EQ(alone.size(), 5);
    ASSERT_EQ(alone[2].size(), 2);
    EXPECT_TRUE(holds(alone[2][0], FOREIGN)) << alone[2];

    const QList<json> grouped = peaksOf(run({"limits", recorded, "--group", "--format", "json"}));
    ASSERT_EQ(grouped.size(), 5);
    for (const json &peaks : grouped) {
        ASSERT_EQ(peaks.size(), 1);
        EXPECT_TRUE(holds(peaks[0], COMMON)) << peaks;
    }
}

TEST_F(GroupedTraces, MemberWithoutSignalIsListedAndTold)
{
    m_files.write("a.jsonl", twoGroups());
    const ProgramRun found = run({"limits", "a.jsonl", "--group"});
    ASSERT_EQ(found.exitCode, 0) << found.standardError;
    QStringList silent;
    for (const QString &line : linesOf(found.standardOutput)) {
        if (line.startsWith("y5\t"))
            silent = line.split('\t');
    }
    ASSERT_EQ(silent.size(), 11) << found.standardOutput;
    EXPECT_EQ(silent[1], "P");
    EXPECT_EQ(silent[2], "3");
    EXPECT_EQ(silent[5], "") << "apex";
    EXPECT_EQ(silent[7], "0") << "area";
    EXPECT_EQ(silent[10], "") << "shape";
    EXPECT_NE(found.standardError.find("a.jsonl: y5: no signal within the limits of the peak"), std::string::npos)
        << found.standardError;
    EXPECT_NE(found.standardError.find("6 traces in 3 groups: "), std::string::npos) << found.standardError;
}

TEST_F(GroupedTraces, TraceAloneIsReadAsWithoutGroups)
{
    m_files.write("a.jsonl", jsonLine(simulatedTrace(300, {STRONG, OTHER}), "a", "s"));
    const QStringList alone = linesOf(run({"limits", "a.jsonl"}).standardOutput);
    const QStringList grouped = linesOf(run({"limits", "a.jsonl", "--group"}).standardOutput);
    ASSERT_EQ(alone.size(), 3);
    ASSERT_EQ(grouped.size(), 3);
    for (int i = 1; i < 3; ++i)
        EXPECT_EQ(grouped[i], "a\ta\t1\t" + alone[i].mid(2) + "\t1.0000");
}

TEST_F(GroupedTraces, OutputIsTheSameWhateverTheThreadsAndTheWayIn)
{
    QByteArray lines;
    for (int i = 0; i < 40; ++i)
        lines += jsonMember(simulatedTrace(200 + i, {{80.0 + i, 900.0 * (i % 5 + 1), 4}}), QByteArray::number(i),
                            QByteArray::number(i % 7));
    m_files.write("a.jsonl", lines);
    m_files.write("b.jsonl.gz", gzip(lines));
    const std::string expected = run({"limits", "a.jsonl", "--group", "--threads", "1"}).standardOutput;
    EXPECT_GT(linesOf(expected).size(), 20);
    EXPECT_EQ(run({"limits", "a.jsonl", "--group", "--threads", "4"}).standardOutput, expected);
    EXPECT_EQ(run({"limits", "b.jsonl.gz", "--group", "--threads", "3"}).standardOutput, expected);
    EXPECT_EQ(run({"limits", "-", "--group"}, lines).standardOutput, expected);
}

TEST_F(GroupedTraces, SplitsAreThoseOfTheConsensus)
{
    const QList<QPointF> pair = simulatedTrace(200, {{90, 5000, 5}, {110, 5000, 5}});
    m_files.write("a.jsonl", jsonMember(pair, "y3", "P") + jsonMember(pair, "y4", "P"));
    const ProgramRun found = run({"split", "a.jsonl", "--group", "--format", "json"});
    ASSERT_EQ(found.exitCode, 0) << found.standardError;
    const json traces = json::parse(found.standardOutput).at("traces");
    ASSERT_EQ(traces.size(), 2);
    ASSERT_EQ(traces[0].at("splits").size(), 1);
    EXPECT_NEAR(traces[0].at("splits")[0].at("split").get<double>(), 100, 3);
    EXPECT_EQ(traces[0].at("splits")[0].at("shape"), 1.0);
    EXPECT_EQ(traces[1].at("splits"), traces[0].at("splits"));
}

TEST_F(GroupedTraces, PatternAndListOfTargetsNameGroups)
{
    const QList<QPointF> trace = simulatedTrace(300, {STRONG});
    m_files.write("a.mzML", SimulatedRun()
                                .addChromatogram("AK/2_y3", trace)
                                .addChromatogram("CK/2_y3", trace)
                                .addChromatogram("AK/2_y4", trace)
                                .document());
    const ProgramRun byId = run({"limits", "a.mzML", "--group", "--group-by", "^([^_]+)_"});
    ASSERT_EQ(byId.exitCode, 0) << byId.standardError;
    const QStringList lines = linesOf(byId.standardOutput);
    ASSERT_EQ(lines.size(), 4) << byId.standardOutput;
    EXPECT_TRUE(lines[1].startsWith("AK/2_y3\tAK/2\t2\t"));
    EXPECT_TRUE(lines[2].startsWith("AK/2_y4\tAK/2\t2\t"));
    EXPECT_TRUE(lines[3].startsWith("CK/2_y3\tCK/2\t1\t"));

    SimulatedRun spectra;
    for (const QPointF &point : trace)
        spectra.addSpectrum(point.x(), {{500, point.y()}, {600, 2 * point.y()}});
    m_files.write("b.mzML", spectra.document());
    m_files.write("targets.tsv", "mz\tid\tgroup\n500\tM\tAK\n600\tM+1\tAK\n");
    const ProgramRun targets = run({"limits", "b.mzML", "--targets", "targets.tsv", "--group"});
    ASSERT_EQ(targets.exitCode, 0) << targets.standardError;
    EXPECT_TRUE(linesOf(targets.standardOutput).value(1).startsWith("M\tAK\t2\t")) << targets.standardOutput;
    EXPECT_TRUE(linesOf(targets.standardOutput).value(2).startsWith("M+1\tAK\t2\t"));
}

TEST_F(GroupedTraces, WrongPatternIsWrongUsage)
{
    m_files.write("a.jsonl", twoGroups());
    const ProgramRun invalid = run({"limits", "a.jsonl", "--group", "--group-by", "("});
    EXPECT_EQ(invalid.exitCode, 2);
    EXPECT_NE(invalid.standardError.find("--group-by '(' is not a regular expression"), std::string::npos);
    const ProgramRun alone = run({"limits", "a.jsonl", "--group-by", "(.)"});
    EXPECT_EQ(alone.exitCode, 2);
    EXPECT_NE(alone.standardError.find("--group-by needs --group"), std::string::npos) << alone.standardError;
}

TEST_F(GroupedTraces, ColumnGroupIsOverlookedWithoutTheFlag)
{
    const QByteArray rows = tsvRows(simulatedTrace(300, {STRONG}), "a");
    m_files.write("plain.tsv", "id\trt\tintensity\n" + rows);
    m_files.write("twice.tsv", "group\tid\trt\tintensity\tgroup\nx\t" + QByteArray(rows).replace("\na", "\ny\ta"));
    EXPECT_EQ(run({"limits", "twice.tsv"}).standardOutput, run({"limits", "plain.tsv"}).standardOutput);
}

#ifdef ZAV_DRAWS_PICTURES
TEST_F(GroupedTraces, AGroupIsOnePicture)
{
    m_files.write("a.jsonl", twoGroups());
    const ProgramRun drawn = run({"limits", "a.jsonl", "--group", "--plot", "pictures"});
    EXPECT_EQ(drawn.exitCode, 0) << drawn.standardError;
    EXPECT_EQ(QDir(m_files.path("pictures")).entryList(QDir::Files),
              QStringList({"0001_P.svg", "0002_Q.svg", "0003_lone.svg"}));
    const QByteArray picture = m_files.read("pictures/0001_P.svg");
    for (const char *id : {"y3", "y4", "y5", "consensus, scaled to the traces"})
        EXPECT_TRUE(picture.contains(id)) << id;
    const ProgramRun full = run({"limits", "a.jsonl", "--group", "--plot", "a.svg"});
    EXPECT_EQ(full.exitCode, 1);
    EXPECT_NE(full.standardError.find("--plot a.svg holds one group and there are several"), std::string::npos)
        << full.standardError;
}
#endif

} // namespace
} // namespace zav
