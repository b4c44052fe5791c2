// SPDX-License-Identifier: Apache-2.0
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>

namespace zav {
namespace {

/// The program as a package holds it, in a prefix that was moved after the installation.
class InstalledProgram : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_folder = new QTemporaryDir;
        for (const char *component : {"Runtime", "Libraries"}) {
            const ProgramRun install = runProgramAt(ZAV_CMAKE, {"--install", ZAV_BUILD_DIR, "--prefix",
                                                                s_folder->filePath("first"), "--component", component});
            ASSERT_EQ(install.exitCode, 0) << install.standardOutput << install.standardError;
        }
        ASSERT_TRUE(QDir(s_folder->path()).rename("first", "moved"));
    }

    static void TearDownTestSuite()
    {
        delete s_folder;
        s_folder = nullptr;
    }

    static ProgramRun run(const QStringList &arguments)
    {
        return runProgramAt(s_folder->filePath("moved/" ZAV_BINDIR "/zav"), arguments);
    }

    static QTemporaryDir *s_folder;
};

QTemporaryDir *InstalledProgram::s_folder = nullptr;

TEST_F(InstalledProgram, FindsItsLibrariesAndNetworks)
{
    const ProgramRun installed = run({"spectrum", "PEPTIDEK", "2"});
    EXPECT_EQ(installed.exitCode, 0) << installed.standardError;
    EXPECT_EQ(installed.standardOutput, runZav({"spectrum", "PEPTIDEK", "2"}).standardOutput);
}

/// A file in the place where the installed library looks for the runtime first.
class UnusableRuntime : public InstalledProgram
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(QDir().mkpath(m_folder));
        writeFile(m_folder + "/libtensorflow.so.2", "no library");
    }
    void TearDown() override { QDir(m_folder).removeRecursively(); }

    const QString m_folder = s_folder->filePath("moved/" ZAV_LIBDIR "/zav");
};

TEST_F(UnusableRuntime, IsOneLineThatNamesTheFile)
{
    const ProgramRun failed = run({"spectrum", "PEPTIDEK", "2"});
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_EQ(failed.standardOutput, "");
    EXPECT_EQ(linesOf(failed.standardError).size(), 1) << failed.standardError;
    EXPECT_NE(failed.standardError.find("libtensorflow.so.2"), std::string::npos) << failed.standardError;
    EXPECT_EQ(failed.standardError.find("ml/src"), std::string::npos);
}

TEST_F(UnusableRuntime, IsSaidOnceForAListOfSeveralCharges)
{
    writeFile(s_folder->filePath("list.tsv"), "PEPTIDEK\t1\nPEPTIDEK\t2\nSAMPLER\t3\n");
    const ProgramRun failed = run({"spectrum", "--peptides", s_folder->filePath("list.tsv")});
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_EQ(linesOf(failed.standardError).size(), 1) << failed.standardError;
}

TEST_F(UnusableRuntime, FailsEveryTrialOfAnInspection)
{
    const ProgramRun failed = run({"inspect"});
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_NE(failed.standardOutput.find("  holds    fails\n"), std::string::npos) << failed.standardOutput;
}

} // namespace
} // namespace zav
