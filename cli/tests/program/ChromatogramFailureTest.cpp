// SPDX-License-Identifier: Apache-2.0
#include "ProgramRun.h"
#include "SimulatedTraces.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>

#include <csignal>

namespace zav {
namespace {

/// In which either command finds something.
const QList<QPointF> TRACE = simulatedTrace(200, {{90, 5000, 5}, {110, 5000, 5}});

/// The same for both commands.
class ChromatogramFailure : public ::testing::TestWithParam<const char *>
{
protected:
    ProgramRun run(const QStringList &arguments, const QByteArray &standardInput = {}) const
    {
        return runZav(QStringList{GetParam()} + arguments, standardInput, m_files.path(QString()));
    }

    /// A run that ends with one line on standard error that holds `words`, and leaves no `out.tsv`.
    void expectFailure(const QStringList &arguments, const QStringList &words) const
    {
        const ProgramRun failed = run(arguments + QStringList{"-o", "out.tsv"});
        EXPECT_EQ(failed.exitCode, 1);
        EXPECT_EQ(failed.standardOutput, "");
        EXPECT_EQ(linesOf(failed.standardError).size(), 1) << failed.standardError;
        for (const QString &word : words)
            EXPECT_TRUE(QString::fromStdString(failed.standardError).contains(word))
                << failed.standardError << word.toStdString();
        EXPECT_EQ(failed.standardError.find("/src"), std::string::npos) << failed.standardError;
        EXPECT_EQ(QDir(m_files.path(QString())).entryList({"out*"}), QStringList());
    }

    void expectWrongUsage(const QStringList &arguments, const std::string &message) const
    {
        const ProgramRun refused = run(arguments);
        const std::string command = GetParam();
        EXPECT_EQ(refused.exitCode, 2);
        EXPECT_EQ(refused.standardOutput, "");
        EXPECT_EQ(refused.standardError,
                  "zav: " + message + "\nzav: 'zav " + command + " --help' explains the usage\n");
    }

    TemporaryFiles m_files;
};

INSTANTIATE_TEST_SUITE_P(Commands, ChromatogramFailure, ::testing::Values("limits", "split"));

TEST_P(ChromatogramFailure, InputIsNotOverwritten)
{
    m_files.write("trace.tsv", tsvFile(TRACE));
    m_files.write("trace.svg", tsvFile(TRACE));
    m_files.write("targets.tsv", "mz\n500\n");
    expectWrongUsage({"trace.tsv", "-o", "./trace.tsv"}, "trace.tsv would be overwritten");
    expectWrongUsage({"trace.svg", "--plot", m_files.path("trace.svg")}, "trace.svg would be overwritten");
    expectWrongUsage({"run.mzML", "--targets", "targets.tsv", "-o", "targets.tsv"}, "targets.tsv would be overwritten");
    EXPECT_EQ(m_files.read("trace.tsv"), tsvFile(TRACE));
}

TEST_P(ChromatogramFailure, MissingFileIsNamed)
{
    expectFailure({"nowhere.tsv"}, {"nowhere.tsv"});
    expectFailure({"nowhere.mzML"}, {"nowhere.mzML"});
}

TEST_P(ChromatogramFailure, UnknownEndingIsNamed)
{
    m_files.write("trace.docx", tsvFile(TRACE));
    expectFailure({"trace.docx"}, {"trace.docx"});
}

TEST_P(ChromatogramFailure, BrokenFileAmongOthersEndsTheRunWithoutOutput)
{
    m_files.write("good.tsv", tsvFile(TRACE));
    m_files.write("bad.tsv", "time\tcounts\n1\t2\n");
    expectFailure({"good.tsv", "bad.tsv"}, {"bad.tsv"});
}

TEST_P(ChromatogramFailure, OlderOutputStaysWhenAFileIsBroken)
{
    m_files.write("bad.tsv", "rt\tintensity\n1\tmany\n");
    m_files.write("out.tsv", "old");
    EXPECT_EQ(run({"bad.tsv", "-o", "out.tsv"}).exitCode, 1);
    EXPECT_EQ(m_files.read("out.tsv").toStdString(), "old");
}

TEST_P(ChromatogramFailure, BrokenTraceIsNamedOnceAndTheOthersAreWritten)
{
    m_files.write("traces.jsonl", jsonLine(TRACE, "good") +
                                      "{\"id\": \"uneven\", \"rt\": [1, 2, 3], \"intensity\": [1, 2]}\n" +
                                      jsonLine(TRACE, "also good"));
    const ProgramRun some = run({"traces.jsonl", "--format", "json"});
    EXPECT_EQ(some.exitCode, 1);
    const QString messages = QString::fromStdString(some.standardError);
    EXPECT_EQ(messages.count("zav: traces.jsonl, line 2: "), 1) << some.standardError;
    EXPECT_EQ(messages.count("traces.jsonl"), 1) << some.standardError;
    EXPECT_TRUE(linesOf(some.standardError).last().endsWith(", 1 failed"));
    EXPECT_NE(some.standardOutput.find("\"good\""), std::string::npos);
    EXPECT_NE(some.standardOutput.find("\"also good\""), std::string::npos);
    EXPECT_EQ(some.standardOutput.find("uneven"), std::string::npos);
}

TEST_P(ChromatogramFailure, NothingIsExtractedFromText)
{
    m_files.write("trace.tsv", tsvFile(TRACE));
    expectFailure({"trace.tsv", "--mz", "500"}, {"trace.tsv"});
}

TEST_P(ChromatogramFailure, FolderWithoutTheNetworkIsNamed)
{
    m_files.write("trace.tsv", tsvFile(TRACE));
    QDir(m_files.path(QString())).mkdir("empty");
    const QString network = GetParam() == std::string("limits") ? "xic_limits.pb" : "xic_split.pb";
    expectFailure({"trace.tsv", "--models", "empty"}, {"no network " + network + " in empty"});
    expectFailure({"trace.tsv", "--models", "nowhere"}, {"no folder of networks at nowhere"});
}

TEST_P(ChromatogramFailure, BrokenNetworkIsSaidOnceAndInFullOnRequest)
{
    m_files.write("traces.jsonl", jsonLine(TRACE, "a") + jsonLine(TRACE, "b"));
    QDir(m_files.path(QString())).mkdir("broken");
    const QString network = GetParam() == std::string("limits") ? "xic_limits.pb" : "xic_split.pb";
    m_files.write("broken/" + network, "no graph");
    expectFailure({"traces.jsonl", "--models", "broken"}, {"cannot load " + network});
    const ProgramRun verbose = run({"traces.jsonl", "--models", "broken", "--trust-networks", "--verbose"});
    EXPECT_NE(verbose.standardError.find("at ml/src/Model:"), std::string::npos) << verbose.standardError;
}

TEST_P(ChromatogramFailure, TraceThatRunsBackwardsIsSaidOrSearched)
{
    QList<QPointF> backwards = TRACE;
    std::reverse(backwards.begin(), backwards.end());
    m_files.write("backwards.tsv", tsvFile(backwards));
    const ProgramRun outcome = run({"backwards.tsv"});
    if (GetParam() == std::string("limits")) {
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_NE(outcome.standardError.find("zav: backwards.tsv: 1: Start is greater than end\n"), std::string::npos)
            << outcome.standardError;
    } else {
        EXPECT_EQ(outcome.exitCode, 0) << outcome.standardError;
    }
}

TEST_P(ChromatogramFailure, OutputThatCannotBeWrittenIsSaid)
{
    const ProgramRun outcome = run({"-", "-o", "nowhere/out.tsv"}, tsvFile(TRACE));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.standardError.find("zav: cannot write nowhere/out.tsv: No such file or directory\n"),
              std::string::npos)
        << outcome.standardError;
}

TEST_P(ChromatogramFailure, FullDiskIsSaid)
{
    if (!QFileInfo::exists("/dev/full"))
        GTEST_SKIP() << "no such device on this system";
    const ProgramRun outcome = run({"-", "-o", "/dev/full"}, tsvFile(TRACE));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.standardError.find("zav: cannot write /dev/full: No space left on device\n"), std::string::npos);
}

TEST_P(ChromatogramFailure, InterruptLeavesNoOutput)
{
    const QByteArray flat = jsonLine(QList<QPointF>(10, {1, 0}), "flat");
    m_files.write("traces.jsonl", flat.repeated(5000));
    QProcess process;
    process.setWorkingDirectory(m_files.path(QString()));
    process.start(ZAV_PROGRAM, {GetParam(), "traces.jsonl", "-o", "out.tsv"});
    // The first of the traces is done: thousands are left.
    process.setReadChannel(QProcess::StandardError);
    ASSERT_TRUE(process.waitForReadyRead(60000));
    ASSERT_EQ(kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 130);
    EXPECT_TRUE(process.readAllStandardError().endsWith("zav: interrupted\n"));
    EXPECT_EQ(QDir(m_files.path(QString())).entryList(QDir::Files | QDir::Hidden), QStringList({"traces.jsonl"}));
}

TEST_P(ChromatogramFailure, ReaderThatGoesAwayEndsTheRunQuietly)
{
    QByteArray file;
    for (int i = 0; i < 20; ++i)
        file += jsonLine(TRACE, QByteArray(20000, 'x') + QByteArray::number(i));
    m_files.write("traces.jsonl", file);
    const ProgramRun outcome = runProgramAt(
        "/bin/sh",
        {"-c",
         QStringLiteral("'%1' %2 traces.jsonl --format json 2>messages | head -c 10").arg(ZAV_PROGRAM, GetParam())},
        {}, m_files.path(QString()));
    EXPECT_EQ(outcome.standardOutput, "{\"generato");
    EXPECT_FALSE(m_files.read("messages").contains("cannot write"));
}

TEST_P(ChromatogramFailure, WrongUsageIsExitCodeTwo)
{
    expectWrongUsage({}, "FILE is missing");
    expectWrongUsage({"-", "-"}, "standard input can be read only once");
    expectWrongUsage({"a.mzML", "--mz", "500", "--targets", "t.tsv"}, "--mz and --targets cannot be used together");
    expectWrongUsage({"a.mzML", "--mz", "-1"}, "--mz must be above 0");
    expectWrongUsage({"a.mzML", "--rt", "1-2"}, "--rt needs --mz");
    expectWrongUsage({"a.mzML", "--mz", "500", "--rt", "2-1"}, "--rt '2-1' is not a time range such as 12.5-14");
    expectWrongUsage({"a.mzML", "--mz", "500", "--rt", "two"}, "--rt 'two' is not a time range such as 12.5-14");
    expectWrongUsage({"a.mzML", "--ppm", "5"}, "--ppm needs --mz or --targets");
    expectWrongUsage({"a.mzML", "--mz", "500", "--ppm", "0"}, "--ppm must be above 0 and at most 100000");
    expectWrongUsage({"a.mzML", "--format", "msp"}, "--format 'msp' is not one of tsv, json, table");
    expectWrongUsage({"a.mzML", "--threads", "0"}, "--threads is 0, must be within 1 to 1024");
    expectWrongUsage({"a.mzML", "--max-point-count", "200"}, "--max-point-count is 200, must be greater than 200");
    expectWrongUsage({"a.mzML", "--max-point-count", "2000000"},
                     "--max-point-count is 2000000, must be 1048576 or less");
    expectWrongUsage({"a.mzML", "--probability-tolerance", "2"}, "--probability-tolerance is 2, must be within 0 to 1");
    expectWrongUsage({"a.mzML", "--smoothing-pass-count", "-1"}, "--smoothing-pass-count is -1, must be 0 or more");
    expectWrongUsage({"a.mzML", "--gaussian-filter-size", "0"}, "--gaussian-filter-size is 0, must be 1 or more");
    expectWrongUsage({"a.mzML", "--plot-format", "svg"}, "--plot-format needs --plot with a folder");
    expectWrongUsage({"a.mzML", "--plot", "a.svg", "--plot-format", "svg"}, "--plot-format needs --plot with a folder");
    expectWrongUsage({"a.mzML", "--plot", "pictures", "--plot-format", "gif"},
                     "--plot-format 'gif' is not one of svg, png, pdf");
}

TEST(LimitsFailure, WrongUsageOfItsOwnOptionsIsExitCodeTwo)
{
    const auto refused = [](const QStringList &options) {
        const ProgramRun run = runZav(QStringList{"limits", "a.mzML"} + options);
        EXPECT_EQ(run.exitCode, 2);
        return linesOf(run.standardError).value(0).toStdString();
    };
    EXPECT_EQ(refused({"--method", "guess"}), "zav: --method 'guess' is neither network nor walk");
    EXPECT_EQ(refused({"--method", "walk", "--hint", "5"}), "zav: --hint needs --method network");
    EXPECT_EQ(refused({"--hint", "-3"}), "zav: --hint must be above -1");
    EXPECT_EQ(refused({"--best", "0"}), "zav: --best must be 1 or more");
    EXPECT_EQ(refused({"--best", "-2"}), "zav: --best must be 1 or more");
    EXPECT_EQ(refused({"--dbscan-epsilon", "0"}), "zav: --dbscan-epsilon is 0, must be greater than 0");
    EXPECT_EQ(refused({"--dbscan-min-points", "0"}), "zav: --dbscan-min-points is 0, must be 1 or more");
    EXPECT_EQ(refused({"--min-point-count", "-1"}), "zav: --min-point-count is -1, must be 0 or more");
    EXPECT_EQ(refused({"--limit-threshold", "1"}), "zav: --limit-threshold is 1, must be 0 or more and less than 1");
}

} // namespace
} // namespace zav
