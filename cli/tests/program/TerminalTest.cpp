// SPDX-License-Identifier: Apache-2.0
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <QtCore/QByteArray>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace zav {
namespace {

/// A terminal on which a program writes and nobody types.
class PseudoTerminal
{
public:
    PseudoTerminal() : m_ours(posix_openpt(O_RDWR | O_NOCTTY))
    {
        if (m_ours >= 0 && grantpt(m_ours) == 0 && unlockpt(m_ours) == 0)
            m_theirs = open(ptsname(m_ours), O_RDWR | O_NOCTTY);
    }

    ~PseudoTerminal()
    {
        close(m_theirs);
        close(m_ours);
    }

    PseudoTerminal(const PseudoTerminal &) = delete;
    PseudoTerminal &operator=(const PseudoTerminal &) = delete;

    bool isOpen() const { return m_theirs >= 0; }
    int descriptor() const { return m_theirs; }

    /// What has been written since the last call.
    std::string read() const
    {
        std::string text;
        pollfd ready{m_ours, POLLIN, 0};
        char bytes[4096];
        while (poll(&ready, 1, 50) > 0 && (ready.revents & POLLIN)) {
            const ssize_t count = ::read(m_ours, bytes, sizeof bytes);
            if (count <= 0)
                break;
            text.append(bytes, size_t(count));
        }
        return text;
    }

private:
    int m_ours = -1;
    int m_theirs = -1;
};

/// Runs the program with one of its streams on a terminal; returns what that terminal showed.
std::string runOnTerminal(const QStringList &arguments, int stream, QProcess &process)
{
    PseudoTerminal terminal;
    EXPECT_TRUE(terminal.isOpen());
    const int descriptor = terminal.descriptor();
    process.setChildProcessModifier([descriptor, stream] { dup2(descriptor, stream); });
    process.start(ZAV_PROGRAM, arguments);
    process.closeWriteChannel();
    std::string shown;
    for (int i = 0; i < 1200 && process.state() != QProcess::NotRunning; ++i) {
        process.waitForFinished(50);
        shown += terminal.read();
    }
    return shown + terminal.read();
}

TEST(Terminal, SpectrumIsATableForAPerson)
{
    QProcess process;
    const std::string shown = runOnTerminal({"spectrum", "PEPTIDEK", "2"}, STDOUT_FILENO, process);
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(shown.find("PEPTIDEK  charge 2+  precursor m/z 464.73474  "), 0u) << shown;
    EXPECT_NE(shown.find("\r\n  147.11280     0."), std::string::npos) << shown;
}

TEST(Terminal, FormatThatIsAskedForIsGivenThereToo)
{
    QProcess process;
    const std::string shown = runOnTerminal({"spectrum", "PEPTIDEK", "2", "--format", "tsv"}, STDOUT_FILENO, process);
    EXPECT_EQ(shown.find("mz\tintensity\r\n"), 0u) << shown;
}

TEST(Terminal, LongWorkShowsItsProgressAndClearsIt)
{
    QTemporaryDir folder;
    writeFile(folder.filePath("list.tsv"), QByteArray("SAMPLERPEPTIDEK\t2\n").repeated(6000) + "PEPTIDEX\t2\n");
    QProcess process;
    const std::string shown =
        runOnTerminal({"spectrum", "--peptides", folder.filePath("list.tsv"), "-o", folder.filePath("out.tsv")},
                      STDERR_FILENO, process);
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_NE(shown.find("] "), std::string::npos);
    EXPECT_NE(shown.find(" of 6001 peptides, "), std::string::npos) << shown.substr(0, 400);
    const std::string last = "\r\033[Kzav: " + folder.filePath("list.tsv").toStdString() + ":6001: PEPTIDEX/2: ";
    EXPECT_NE(shown.find(last), std::string::npos) << shown.substr(shown.size() > 400 ? shown.size() - 400 : 0);
}

TEST(StandardOutput, DiskThatIsFullIsAFailureWhateverIsShown)
{
    if (!QFileInfo::exists(QStringLiteral("/dev/full")))
        GTEST_SKIP() << "no such device on this system";
    for (const char *words : {"--help", "--version", "spectrum --help", "runtime", "inspect"}) {
        QProcess process;
        process.setStandardOutputFile(QStringLiteral("/dev/full"));
        process.start(ZAV_PROGRAM, QString::fromUtf8(words).split(QLatin1Char(' ')));
        ASSERT_TRUE(process.waitForFinished(60'000)) << words;
        EXPECT_EQ(process.exitCode(), 1) << words;
        EXPECT_EQ(process.readAllStandardError().toStdString(),
                  "zav: cannot finish writing standard output: No space left on device\n")
            << words;
    }
}

TEST(Terminal, ShortWorkShowsNoProgress)
{
    QTemporaryDir folder;
    QProcess process;
    EXPECT_EQ(runOnTerminal({"spectrum", "PEPTIDEK", "2", "-o", folder.filePath("out.tsv")}, STDERR_FILENO, process),
              "");
}

} // namespace
} // namespace zav
