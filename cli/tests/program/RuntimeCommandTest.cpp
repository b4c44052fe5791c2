// SPDX-License-Identifier: Apache-2.0
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>

#include <csignal>

namespace zav {
namespace {

const QString REAL_RUNTIME = QStringLiteral(ZAV_REAL_RUNTIME);
const QString VERSION_NAME = QStringLiteral("tensorflow-2.21.0");
constexpr int TIMEOUT_MS = 60000;

/// The program with a library that was built without a folder of the runtime, in an environment of a test's own.
class RuntimeCommand : public ::testing::Test
{
protected:
    void SetUp() override
    {
        for (const char *folder : {"lib", "home", "cache", "system", "wheels", "bin"})
            ASSERT_TRUE(QDir(m_folder.path()).mkpath(folder));
        ASSERT_TRUE(QFile::copy(QStringLiteral(ZAV_PLAIN_LIBRARY), path("lib/libzav_ml.so." ZAV_SOVERSION)));
        set("HOME", path("home"));
        set("XDG_CACHE_HOME", path("cache"));
        set("LD_LIBRARY_PATH", path("lib"));
        set("PATH", path("bin") + ":/usr/bin:/bin");
        set("TF_CPP_MIN_LOG_LEVEL", "3");
    }

    QString path(const QString &name) const { return m_folder.filePath(name); }

    void set(const QString &variable, const QString &value) { m_variables[variable] = value; }

    /// The arguments of `env` for a run of the program.
    QStringList command(const QStringList &arguments) const
    {
        QStringList all{"-i"};
        for (auto each = m_variables.begin(); each != m_variables.end(); ++each)
            all.append(each.key() + '=' + each.value());
        return all + QStringList{ZAV_PROGRAM} + arguments;
    }

    ProgramRun run(const QStringList &arguments) const { return runProgramAt("/usr/bin/env", command(arguments)); }

    void linkRuntimeAs(const QString &name) const
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path(name)).path()));
        ASSERT_TRUE(QFile::link(REAL_RUNTIME, path(name)));
    }

    /// Puts a program into the first folder of PATH.
    void writeScript(const QString &name, const QByteArray &text) const
    {
        writeFile(path("bin/" + name), "#!/bin/sh\n" + text);
        QFile::setPermissions(path("bin/" + name), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    void expectFound(const QString &file, const QString &how) const
    {
        const ProgramRun found = run({"runtime"});
        EXPECT_EQ(found.exitCode, 0) << found.standardError;
        EXPECT_EQ(found.standardError, "");
        const QStringList lines = linesOf(found.standardOutput);
        ASSERT_EQ(lines.size(), 3) << found.standardOutput;
        EXPECT_EQ(lines[0], "TensorFlow  2.21.0");
        EXPECT_EQ(lines[1], "file        " + file);
        EXPECT_TRUE(lines[2].startsWith("found by    " + how + ": ")) << found.standardOutput;
    }

    void expectNothingInstalled() const
    {
        EXPECT_EQ(QDir(path("cache/zav")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                  QStringList{VERSION_NAME + ".lock"});
    }

    void expectRefused(const ProgramRun &run, const char *reason) const
    {
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.standardOutput, "");
        EXPECT_NE(run.standardError.find(reason), std::string::npos) << run.standardError;
        EXPECT_TRUE(linesOf(run.standardError).last().startsWith("zav: ")) << run.standardError;
    }

    QMap<QString, QString> m_variables;
    QTemporaryDir m_folder;
};

TEST_F(RuntimeCommand, WithoutOneTheErrorNamesTheCommandThatInstallsIt)
{
    const ProgramRun missing = run({"runtime"});
    expectRefused(missing, "'zav runtime install'");
    EXPECT_EQ(linesOf(missing.standardError).size(), 1) << missing.standardError;
}

TEST_F(RuntimeCommand, APredictionWithoutOneNamesTheCommandThatInstallsIt)
{
    const ProgramRun missing = run({"spectrum", "PEPTIDEK", "2"});
    expectRefused(missing, "'zav runtime install'");
    EXPECT_EQ(linesOf(missing.standardError).size(), 1) << missing.standardError;
}

TEST_F(RuntimeCommand, TheOneOfTheBuildIsFound)
{
    const ProgramRun found = runZav({"runtime"});
    EXPECT_EQ(found.exitCode, 0) << found.standardError;
    EXPECT_NE(found.standardOutput.find(REAL_RUNTIME.toStdString() + "/libtensorflow.so.2\n"), std::string::npos);
    EXPECT_NE(found.standardOutput.find("found by    build: "), std::string::npos) << found.standardOutput;
}

TEST_F(RuntimeCommand, TheOneOfTheCacheIsFound)
{
    linkRuntimeAs("cache/zav/" + VERSION_NAME);
    expectFound(path("cache/zav/" + VERSION_NAME + "/libtensorflow.so.2"), "cache");
    const ProgramRun predicted = run({"spectrum", "PEPTIDEK", "2"});
    EXPECT_EQ(predicted.exitCode, 0) << predicted.standardError;
    EXPECT_EQ(predicted.standardOutput, runZav({"spectrum", "PEPTIDEK", "2"}).standardOutput);
}

TEST_F(RuntimeCommand, TheCacheIsInTheHomeFolderWhereNothingElseIsSaid)
{
    linkRuntimeAs("home/.cache/zav/" + VERSION_NAME);
    for (const char *notAbsolute : {"", "cache"}) {
        set("XDG_CACHE_HOME", notAbsolute);
        expectFound(path("home/.cache/zav/" + VERSION_NAME + "/libtensorflow.so.2"), "cache");
    }
}

TEST_F(RuntimeCommand, TheOneOfTheSystemComesBeforeThatOfTheCache)
{
    linkRuntimeAs("cache/zav/" + VERSION_NAME);
    linkRuntimeAs("elsewhere");
    set("LD_LIBRARY_PATH", path("lib") + ':' + path("elsewhere"));
    expectFound(path("elsewhere/libtensorflow.so.2"), "system");
}

TEST_F(RuntimeCommand, WhereThatOfTheSystemCannotBeOpenedTheCacheServes)
{
    linkRuntimeAs("cache/zav/" + VERSION_NAME);
    writeFile(path("system/libtensorflow.so.2"), "no library");
    set("LD_LIBRARY_PATH", path("lib") + ':' + path("system"));
    expectFound(path("cache/zav/" + VERSION_NAME + "/libtensorflow.so.2"), "cache");
}

TEST_F(RuntimeCommand, TheOneBesideTheLibraryComesFirst)
{
    linkRuntimeAs("cache/zav/" + VERSION_NAME);
    linkRuntimeAs("elsewhere");
    linkRuntimeAs("lib/zav");
    set("LD_LIBRARY_PATH", path("lib") + ':' + path("elsewhere"));
    expectFound(path("lib/zav/libtensorflow.so.2"), "setting");
}

TEST_F(RuntimeCommand, InstallLeavesTheOneThatIsThere)
{
    linkRuntimeAs("cache/zav/" + VERSION_NAME);
    const ProgramRun there = run({"runtime", "install"});
    EXPECT_EQ(there.exitCode, 0) << there.standardError;
    EXPECT_EQ(there.standardError, "zav: the TensorFlow 2.21.0 runtime is already in " +
                                       path("cache/zav/" + VERSION_NAME).toStdString() + "\n");
    EXPECT_FALSE(QFileInfo::exists(path("cache/zav/" + VERSION_NAME + ".lock")));
}

TEST_F(RuntimeCommand, InstallRefusesAWheelOfAnotherSum)
{
    // A wheel that pip takes, of the version that is asked for.
    const ProgramRun made = runProgramAt("/usr/bin/python3", {"-c", R"(
import platform, sys, zipfile
name = "tensorflow_cpu" if platform.machine() == "x86_64" else "tensorflow"
info = f"{name}-2.21.0.dist-info/"
with zipfile.ZipFile(f"{sys.argv[1]}/{name}-2.21.0-cp311-none-any.whl", "w") as wheel:
    wheel.writestr("tensorflow/libtensorflow_cc.so.2", "another library")
    wheel.writestr(info + "METADATA", f"Metadata-Version: 2.1\nName: {name.replace('_', '-')}\nVersion: 2.21.0\n")
    wheel.writestr(info + "WHEEL", "Wheel-Version: 1.0\nGenerator: a test\nRoot-Is-Purelib: true\nTag: cp311-none-any\n")
    wheel.writestr(info + "RECORD", "")
)",
                                                              path("wheels")});
    ASSERT_EQ(made.exitCode, 0) << made.standardError;
    set("PIP_NO_INDEX", "1");
    set("PIP_FIND_LINKS", path("wheels"));
    expectRefused(run({"runtime", "install"}), "does not have the expected SHA-256; nothing was installed");
    expectNothingInstalled();
}

TEST_F(RuntimeCommand, InstallSaysThatPipFoundNoWheel)
{
    set("PIP_NO_INDEX", "1");
    expectRefused(run({"runtime", "install"}), "pip could not fetch tensorflow");
    expectNothingInstalled();
}

TEST_F(RuntimeCommand, InstallSaysThatPipIsMissing)
{
    writeScript("python3", "exit 1\n");
    expectRefused(run({"runtime", "install"}), "pip for python3 is missing");
    EXPECT_FALSE(QFileInfo::exists(path("cache/zav")));
}

TEST_F(RuntimeCommand, InstallWithoutAPlaceForTheCacheFails)
{
    set("HOME", "");
    set("XDG_CACHE_HOME", "");
    expectRefused(run({"runtime", "install"}), "neither HOME nor XDG_CACHE_HOME is set");
}

TEST_F(RuntimeCommand, AnInstallationThatIsInterruptedLeavesNothing)
{
    // A download that never ends; what it was killed by tells that the signal reached it too.
    writeScript("python3", "case \"$*\" in *download*)\n"
                           "    trap 'echo ended >>\"$HOME/log\"; exit 1' TERM\n"
                           "    echo started >>\"$HOME/log\"\n"
                           "    while :; do sleep 0.05; done ;;\n"
                           "esac\n");
    // What an installation left that was killed.
    ASSERT_TRUE(QDir(path("cache")).mkpath("zav/" + VERSION_NAME + ".abcdef/runtime"));
    for (const auto &[signal, code] : {std::pair(SIGTERM, 143), std::pair(SIGINT, 130), std::pair(SIGHUP, 129)}) {
        QFile::remove(path("home/log"));
        QProcess process;
        process.start("/usr/bin/env", command({"runtime", "install"}));
        QElapsedTimer timer;
        for (timer.start(); !QFileInfo::exists(path("home/log")) && timer.elapsed() < TIMEOUT_MS;)
            QThread::msleep(10);
        ::kill(pid_t(process.processId()), signal);
        ASSERT_TRUE(process.waitForFinished(TIMEOUT_MS));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(process.exitCode(), code);
        EXPECT_EQ(readFile(path("home/log")), "started\nended\n");
        expectNothingInstalled();
    }
}

} // namespace
} // namespace zav
