// SPDX-License-Identifier: Apache-2.0
#include "ProgramRun.h"
#include "ReportText.h"
#include "SimulatedTraces.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>

#include <csignal>

namespace zav {
namespace {

using nlohmann::json;

/// In which either command finds something.
const QList<QPointF> TRACE = simulatedTrace(200, {{90, 5000, 5}, {110, 5000, 5}});

/// The same for both commands.
class Report : public ::testing::TestWithParam<const char *>
{
protected:
    ProgramRun run(const QStringList &arguments, const QByteArray &standardInput = {}) const
    {
        return runZav(QStringList{GetParam()} + arguments, standardInput, m_files.path(QString()));
    }

    ReportText reportOf(const QString &name) const { return ReportText(m_files.read(name)); }

    QStringList files() const { return QDir(m_files.path(QString())).entryList(QDir::Files | QDir::Hidden); }

    void expectWrongUsage(const QStringList &arguments, const std::string &message) const
    {
        const ProgramRun refused = run(arguments);
        EXPECT_EQ(refused.exitCode, 2);
        EXPECT_EQ(linesOf(refused.standardError).value(0).toStdString(), "zav: " + message);
    }

    TemporaryFiles m_files;
};

INSTANTIATE_TEST_SUITE_P(Commands, Report, ::testing::Values("limits", "split"));

/// The lines of a TSV output that a report's entries stand for.
QStringList linesIn(const ReportText &report)
{
    QStringList lines;
    for (const json &entry : report.entries) {
        for (const json &trace : entry.at("traces")) {
            for (const json &row : trace.value("rows", json::array())) {
                QStringList cells = {QString::fromStdString(trace.value("cell", trace.at("id").get<std::string>()))};
                if (report.heading.at("isGrouped"))
                    cells << QString::fromStdString(entry.at("group")) << QString::number(entry.at("traces").size());
                for (const json &value : row)
                    cells << QString::fromStdString(value);
                lines << cells.join('\t');
            }
        }
    }
    return lines;
}

void expectPoints(const QList<QPointF> &read, const QList<QPointF> &expected)
{
    ASSERT_EQ(read.size(), expected.size());
    for (qsizetype i = 0; i < read.size(); ++i) {
        EXPECT_NEAR(read[i].x(), expected[i].x(), 1e-4);
        EXPECT_NEAR(read[i].y(), expected[i].y(), 1e-3);
    }
}

TEST_P(Report, HoldsTheTracesAndWhatTheTableSays)
{
    const QList<QPointF> flat = QList<QPointF>(300, {1, 0});
    m_files.write("a.jsonl", jsonLine(TRACE, "one", "s") + jsonLine(flat, "flat", "s") + jsonLine(TRACE, "t\\tb", "s"));
    const ProgramRun both = run({"a.jsonl", "--report", "a.html", "-o", "a.tsv"});
    ASSERT_EQ(both.exitCode, 0) << both.standardError;
    const ReportText report = reportOf("a.html");
    EXPECT_EQ(report.heading.at("files"), json({"a.jsonl"}));
    ASSERT_EQ(report.entries.size(), 3);
    const QStringList lines = linesOf(m_files.read("a.tsv").toStdString());
    ASSERT_GT(lines.size(), 2);
    EXPECT_EQ(linesIn(report), lines.mid(1));
    EXPECT_EQ(report.entries[0].at("timeUnit"), "s");
    expectPoints(report.series(report.entries[0])[0], TRACE);
    expectPoints(report.series(report.entries[2])[0], TRACE);
    EXPECT_EQ(report.entries[1].at("traces")[0].at("remarks").size(), 1) << "why nothing was found";
    // The limits, or the splits, are those of the rows.
    const bool isLimits = GetParam() == std::string("limits");
    const json first = report.entries[0].at(isLimits ? "peaks" : "splits")[0];
    EXPECT_NEAR(first[0].get<double>(), lines[1].section('\t', 1, 1).toDouble(), 1e-5);
    EXPECT_NEAR(first[1].get<double>(), lines[1].section('\t', 2, 2).toDouble(), 1e-4);
    EXPECT_EQ(run({"a.jsonl"}).standardOutput, m_files.read("a.tsv").toStdString()) << "the table stays the same";
}

TEST_P(Report, GroupIsOneEntryWithAllItsTraces)
{
    const auto member = [](const QList<QPointF> &points, const QByteArray &id) {
        return "{\"group\": \"P\", " + jsonLine(points, id, "s").mid(1);
    };
    m_files.write("a.jsonl", member(TRACE, "y3") + jsonLine(TRACE, "alone", "s") + member(TRACE, "y4"));
    const ProgramRun grouped = run({"a.jsonl", "--group", "--report", "a.html", "-o", "a.tsv"});
    ASSERT_EQ(grouped.exitCode, 0) << grouped.standardError;
    const ReportText report = reportOf("a.html");
    EXPECT_EQ(report.heading.at("isGrouped"), true);
    ASSERT_EQ(report.entries.size(), 2);
    const json &group = report.entries[0];
    EXPECT_EQ(group.at("group"), "P");
    ASSERT_EQ(group.at("traces").size(), 2);
    EXPECT_EQ(group.at("traces")[1].at("id"), "y4");
    // The consensus of two equal traces, in their size, is the trace.
    const QList<QList<QPointF>> series = report.series(group);
    ASSERT_EQ(series.size(), 3);
    for (const QList<QPointF> &each : series)
        expectPoints(each, TRACE);
    EXPECT_EQ(report.series(report.entries[1]).size(), 1) << "a trace alone has no consensus of its own";
    EXPECT_EQ(linesIn(report), linesOf(m_files.read("a.tsv").toStdString()).mid(1));
}

TEST_P(Report, BrokenTracesAreThereWithTheirReason)
{
    m_files.write("a.jsonl",
                  "{\"id\": \"uneven\", \"rt\": [1, 2, 3], \"intensity\": [1, 2]}\n" + jsonLine(TRACE, "good"));
    const ProgramRun some = run({"a.jsonl", "--report", "a.html"});
    EXPECT_EQ(some.exitCode, 1);
    const ReportText report = reportOf("a.html");
    ASSERT_EQ(report.entries.size(), 2);
    const std::string problem = report.entries[0].at("traces")[0].at("problem");
    EXPECT_NE(some.standardError.find("zav: " + problem + '\n'), std::string::npos) << problem;
    EXPECT_FALSE(report.entries[1].at("traces")[0].contains("problem"));
}

TEST_P(Report, IsTheSameWhateverTheThreads)
{
    QByteArray lines;
    for (int i = 0; i < 40; ++i)
        lines += jsonLine(simulatedTrace(200 + i, {{80.0 + i, 900.0 * (i % 5 + 1), 4}}), QByteArray::number(i));
    m_files.write("a.jsonl", lines);
    EXPECT_EQ(run({"a.jsonl", "--report", "a.html", "--threads", "1"}).exitCode, 0);
    EXPECT_EQ(run({"a.jsonl", "--report", "b.html", "--threads", "4"}).exitCode, 0);
    EXPECT_EQ(reportOf("a.html").entries.size(), 40);
    EXPECT_TRUE(m_files.read("a.html") == m_files.read("b.html"));
}

TEST_P(Report, GoesToStandardOutputWhenTheTableDoesNot)
{
    const ProgramRun piped = run({"-", "--report", "-", "-o", "a.tsv"}, tsvFile(TRACE));
    EXPECT_EQ(piped.exitCode, 0) << piped.standardError;
    const ReportText report(QByteArray::fromStdString(piped.standardOutput));
    EXPECT_EQ(report.entries.size(), 1);
    EXPECT_EQ(report.heading.at("files"), json({"standard input"}));
    EXPECT_EQ(files(), QStringList({"a.tsv"}));
    expectWrongUsage({"a.tsv", "--report", "-"}, "--report - needs -o FILE: both would go to standard output");
    expectWrongUsage({"a.tsv", "--report", "-", "-o", "-"},
                     "--report - needs -o FILE: both would go to standard output");
}

TEST_P(Report, NoFileIsWrittenTwice)
{
    m_files.write("trace.tsv", tsvFile(TRACE));
    m_files.write("targets.tsv", "mz\n500\n");
    expectWrongUsage({"trace.tsv", "--report", m_files.path("trace.tsv")}, "trace.tsv would be overwritten");
    expectWrongUsage({"a.mzML", "--targets", "targets.tsv", "--report", "targets.tsv"},
                     "targets.tsv would be overwritten");
    expectWrongUsage({"trace.tsv", "--report", "a", "-o", "./a"}, "a is named for two outputs");
    expectWrongUsage({"trace.tsv", "--report", "a.svg", "--plot", m_files.path("a.svg")},
                     "a.svg is named for two outputs");
    EXPECT_EQ(files(), QStringList({"targets.tsv", "trace.tsv"}));
    EXPECT_EQ(run({"trace.tsv", "--report", "/dev/null", "-o", "/dev/null"}).exitCode, 0) << "a device is no file";
}

TEST_P(Report, OlderReportStaysWhenAFileIsBroken)
{
    m_files.write("good.tsv", tsvFile(TRACE));
    m_files.write("bad.tsv", "time\tcounts\n1\t2\n");
    m_files.write("a.html", "old");
    EXPECT_EQ(run({"good.tsv", "bad.tsv", "--report", "a.html", "-o", "out.tsv"}).exitCode, 1);
    EXPECT_EQ(m_files.read("a.html"), "old");
    EXPECT_EQ(files(), QStringList({"a.html", "bad.tsv", "good.tsv"}));
}

TEST_P(Report, FileWithoutTracesLeavesNoReport)
{
    m_files.write("a.jsonl", "");
    EXPECT_EQ(run({"a.jsonl", "--report", "a.html"}).exitCode, 1);
    EXPECT_EQ(files(), QStringList({"a.jsonl"}));
}

TEST_P(Report, ThatCannotBeWrittenIsSaid)
{
    const ProgramRun nowhere = run({"-", "--report", "nowhere/a.html", "-o", "out.tsv"}, tsvFile(TRACE));
    EXPECT_EQ(nowhere.exitCode, 1);
    EXPECT_NE(nowhere.standardError.find("zav: cannot write nowhere/a.html: No such file or directory\n"),
              std::string::npos)
        << nowhere.standardError;
    EXPECT_EQ(files(), QStringList());
    if (!QFileInfo::exists("/dev/full"))
        GTEST_SKIP() << "no such device on this system";
    const ProgramRun full = run({"-", "--report", "/dev/full", "-o", "out.tsv"}, tsvFile(TRACE));
    EXPECT_EQ(full.exitCode, 1);
    EXPECT_NE(full.standardError.find("zav: cannot write /dev/full: No space left on device\n"), std::string::npos);
    EXPECT_EQ(files(), QStringList());
}

TEST_P(Report, InterruptLeavesNone)
{
    const QByteArray flat = jsonLine(QList<QPointF>(10, {1, 0}), "flat");
    m_files.write("traces.jsonl", flat.repeated(5000));
    QProcess process;
    process.setWorkingDirectory(m_files.path(QString()));
    process.start(ZAV_PROGRAM, {GetParam(), "traces.jsonl", "--report", "a.html", "-o", "out.tsv"});
    // The first of the traces is done: thousands are left.
    process.setReadChannel(QProcess::StandardError);
    ASSERT_TRUE(process.waitForReadyRead(60000));
    ASSERT_EQ(kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 130);
    EXPECT_EQ(files(), QStringList({"traces.jsonl"}));
}

#ifdef ZAV_DRAWS_PICTURES
TEST_P(Report, GoesWithPicturesAndTable)
{
    m_files.write("a.jsonl", jsonLine(TRACE, "a") + jsonLine(TRACE, "b"));
    const ProgramRun all = run({"a.jsonl", "--report", "a.html", "--plot", "pictures", "-o", "a.json"});
    EXPECT_EQ(all.exitCode, 0) << all.standardError;
    EXPECT_EQ(files(), QStringList({"a.html", "a.json", "a.jsonl"}));
    EXPECT_EQ(QDir(m_files.path("pictures")).entryList(QDir::Files), QStringList({"0001_a.svg", "0002_b.svg"}));
}
#endif

TEST(LimitsReport, FilesAndUnitsAreThoseOfEachTrace)
{
    const TemporaryFiles files;
    files.write("a.jsonl", jsonLine(TRACE, "a", "s"));
    files.write("b.jsonl", jsonLine(TRACE, "b", "min"));
    const ProgramRun run =
        runZav({"limits", "a.jsonl", "b.jsonl", "--report", "a.html", "-o", "a.json"}, {}, files.path(QString()));
    ASSERT_EQ(run.exitCode, 0) << run.standardError;
    const ReportText report(files.read("a.html"));
    EXPECT_EQ(report.heading.at("files"), json({"a.jsonl", "b.jsonl"}));
    const json traces = json::parse(files.read("a.json").toStdString()).at("traces");
    ASSERT_EQ(report.entries.size(), 2);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(report.entries[i].at("file"), i);
        EXPECT_EQ(report.entries[i].at("timeUnit"), traces[i].at("time_unit"));
        ASSERT_FALSE(report.entries[i].at("peaks").empty());
        EXPECT_EQ(report.entries[i].at("peaks")[0][0], traces[i].at("peaks")[0].at("start"));
        EXPECT_EQ(report.entries[i].at("peaks")[0][1], traces[i].at("peaks")[0].at("end"));
        EXPECT_EQ(report.entries[i].at("peaks")[0][2], traces[i].at("peaks")[0].at("apex"));
    }
}

} // namespace
} // namespace zav
