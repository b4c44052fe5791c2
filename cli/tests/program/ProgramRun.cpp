// SPDX-License-Identifier: Apache-2.0
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QProcess>

#include <memory>

namespace zav {

namespace {

constexpr int TIMEOUT_MS = 120000;

/// QProcess wants an application object.
class ApplicationEnvironment : public ::testing::Environment
{
public:
    void SetUp() override { m_application = std::make_unique<QCoreApplication>(m_argc, m_argv); }
    void TearDown() override { m_application.reset(); }

private:
    int m_argc = 1;
    char m_name[6] = "tests";
    char *m_argv[2] = {m_name, nullptr};
    std::unique_ptr<QCoreApplication> m_application;
};

const auto *const environment = ::testing::AddGlobalTestEnvironment(new ApplicationEnvironment);

} // namespace

ProgramRun runZav(const QStringList &arguments, const QByteArray &standardInput, const QString &folder)
{
    return runProgramAt(QStringLiteral(ZAV_PROGRAM), arguments, standardInput, folder);
}

ProgramRun runProgramAt(const QString &program, const QStringList &arguments, const QByteArray &standardInput,
                        const QString &folder)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    process.write(standardInput);
    process.closeWriteChannel();
    ProgramRun run;
    if (process.waitForFinished(TIMEOUT_MS) && process.exitStatus() == QProcess::NormalExit)
        run.exitCode = process.exitCode();
    run.standardOutput = process.readAllStandardOutput().toStdString();
    run.standardError = process.readAllStandardError().toStdString();
    return run;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(bytes), bytes.size());
}

QStringList linesOf(const std::string &text)
{
    return QString::fromStdString(text).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

} // namespace zav
