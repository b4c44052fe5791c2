// SPDX-License-Identifier: Apache-2.0
#include "ProgramRun.h"
#include "SimulatedTraces.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace zav {
namespace {

const QList<QPointF> TRACE = simulatedTrace(200, {{90, 5000, 5}, {110, 5000, 5}});

class ChromatogramPicture : public ::testing::TestWithParam<const char *>
{
protected:
    ProgramRun run(const QStringList &arguments) const
    {
        return runZav(QStringList{GetParam()} + arguments, {}, m_files.path(QString()));
    }

    QStringList filesIn(const QString &folder) const { return QDir(m_files.path(folder)).entryList(QDir::Files); }

    TemporaryFiles m_files;
};

INSTANTIATE_TEST_SUITE_P(Commands, ChromatogramPicture, ::testing::Values("limits", "split"));

TEST_P(ChromatogramPicture, OneTraceIsDrawnIntoAFile)
{
    m_files.write("trace.tsv", tsvFile(TRACE));
    for (const char *name : {"a.svg", "a.png", "a.pdf"}) {
        const ProgramRun drawn = run({"trace.tsv", "--plot", name});
        EXPECT_EQ(drawn.exitCode, 0) << drawn.standardError;
        EXPECT_GT(QFileInfo(m_files.path(name)).size(), 1000) << name;
        EXPECT_EQ(drawn.standardOutput, run({"trace.tsv"}).standardOutput);
    }
    EXPECT_TRUE(m_files.read("a.svg").contains("<svg"));
}

TEST_P(ChromatogramPicture, FolderGetsAPictureOfEachTraceUnderASafeName)
{
    m_files.write("traces.jsonl", jsonLine(TRACE, "SRM Q1=421.7 Q3=/../x:*?") + jsonLine(TRACE, "same") +
                                      jsonLine(TRACE, "SAME") + jsonLine(TRACE, "\xc3\xa4\xc3\xb6") +
                                      jsonLine(TRACE, QByteArray(300, 'y')));
    const ProgramRun drawn = run({"traces.jsonl", "--plot", "new/pictures", "--plot-format", "png", "--threads", "2"});
    EXPECT_EQ(drawn.exitCode, 0) << drawn.standardError;
    EXPECT_EQ(filesIn("new/pictures"), QStringList({"0001_SRM_Q1=421.7_Q3=_.._x_.png", "0002_same.png", "0003_SAME.png",
                                                    "0004__.png", "0005_" + QString(80, 'y') + ".png"}));
}

TEST_P(ChromatogramPicture, FolderWithAnEndingIsAFolderWhenItIsThere)
{
    m_files.write("trace.tsv", tsvFile(TRACE));
    QDir(m_files.path(QString())).mkdir("all.svg");
    EXPECT_EQ(run({"trace.tsv", "--plot", "all.svg"}).exitCode, 0);
    EXPECT_EQ(filesIn("all.svg"), QStringList({"0001_1.svg"}));
}

TEST_P(ChromatogramPicture, OneFileHasNoRoomForTwoTraces)
{
    m_files.write("traces.jsonl", jsonLine(TRACE, "a") + jsonLine(TRACE, "b"));
    const ProgramRun refused = run({"traces.jsonl", "--plot", "a.svg", "-o", "out.tsv"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.standardError,
              "zav: --plot a.svg holds one trace and there are several; give a folder to draw them all\n");
    EXPECT_EQ(filesIn(QString()), QStringList({"traces.jsonl"}));
}

TEST_P(ChromatogramPicture, FolderThatCannotBeMadeIsSaid)
{
    m_files.write("trace.tsv", tsvFile(TRACE));
    const ProgramRun refused = run({"trace.tsv", "--plot", "trace.tsv/pictures"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.standardError,
              "zav: cannot make the folder trace.tsv/pictures for the pictures: Not a directory\n");
}

TEST_P(ChromatogramPicture, TraceWithoutFindingsIsDrawnToo)
{
    m_files.write("flat.tsv", tsvFile(QList<QPointF>(3, {1, 0})));
    EXPECT_EQ(run({"flat.tsv", "--plot", "flat.svg"}).exitCode, 0);
    EXPECT_TRUE(QFileInfo::exists(m_files.path("flat.svg")));
}

} // namespace
} // namespace zav
