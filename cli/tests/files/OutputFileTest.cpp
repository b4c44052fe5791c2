// SPDX-License-Identifier: Apache-2.0
#include "OutputFile.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <csignal>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

#ifdef Q_OS_LINUX
namespace {

int goodSyncs = 0; // calls of fsync that still succeed
int syncError = 0; // what the later ones fail with, once each; 0: they succeed too
int syncCount = 0; // calls so far

} // namespace

// Stands in for the function of the system, which cannot be made to fail.
extern "C" int fsync(int descriptor)
{
    ++syncCount;
    if (syncError == 0 || goodSyncs-- > 0)
        return static_cast<int>(syscall(SYS_fsync, descriptor));
    errno = syncError;
    if (syncError == EINTR)
        syncError = 0;
    return -1;
}
#endif

namespace zav {
namespace {

class OutputFileTest : public ::testing::Test
{
protected:
    QString path(const char *name) const { return m_folder.filePath(QString::fromUtf8(name)); }
    QStringList files() const { return QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden); }

    static void put(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    static std::string contents(const QString &path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll().toStdString();
    }

    QTemporaryDir m_folder;
};

TEST_F(OutputFileTest, AppearsUnderItsNameOnlyWhenItIsCommitted)
{
    OutputFile output(path("a.tsv"));
    ASSERT_FALSE(output.open().hasError());
    ASSERT_FALSE(output.write(QByteArray(1 << 20, 'x')).hasError());
    EXPECT_FALSE(QFileInfo::exists(path("a.tsv")));
    ASSERT_FALSE(output.commit().hasError());
    EXPECT_EQ(contents(path("a.tsv")), std::string(1 << 20, 'x'));
}

TEST_F(OutputFileTest, LeavesTheOlderFileWhenItIsNotCommitted)
{
    put(path("a.tsv"), "old");
    {
        OutputFile output(path("a.tsv"));
        ASSERT_FALSE(output.open().hasError());
        ASSERT_FALSE(output.write("new").hasError());
    }
    EXPECT_EQ(contents(path("a.tsv")), "old");
    EXPECT_EQ(files(), QStringList({"a.tsv"}));
}

TEST_F(OutputFileTest, ReplacesTheOlderFileWhenItIsCommitted)
{
    put(path("a.tsv"), "a longer old file");
    OutputFile output(path("a.tsv"));
    ASSERT_FALSE(output.open().hasError());
    ASSERT_FALSE(output.write("new").hasError());
    ASSERT_FALSE(output.commit().hasError());
    EXPECT_EQ(contents(path("a.tsv")), "new");
    EXPECT_EQ(files(), QStringList({"a.tsv"}));
}

TEST_F(OutputFileTest, MissingFolderIsSaid)
{
    OutputFile output(path("nowhere/a.tsv"));
    const Error error = output.open();
    EXPECT_EQ(error.message(), QStringLiteral("cannot write %1: No such file or directory").arg(path("nowhere/a.tsv")));
}

TEST_F(OutputFileTest, FolderInPlaceOfAFileIsRefused)
{
    OutputFile output(m_folder.path());
    EXPECT_TRUE(output.open().hasError());
}

#ifdef Q_OS_UNIX
TEST_F(OutputFileTest, FileThatCannotGrowIsSaidAndLeavesTheOlderOne)
{
    put(path("a.tsv"), "old");
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small{4096, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);

    // Little enough to be written last of all.
    OutputFile output(path("a.tsv"));
    Error error = output.open();
    if (!error.hasError())
        error = output.write(QByteArray(9000, 'x'));
    if (!error.hasError())
        error = output.commit();

    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(error.message().toStdString(), "cannot write " + path("a.tsv").toStdString() + ": File too large");
    EXPECT_EQ(contents(path("a.tsv")), "old");
}
#endif

#ifdef Q_OS_LINUX
/// Lets calls of fsync fail as long as it lives.
class FailingSync
{
public:
    FailingSync(int goodOnes, int error)
    {
        goodSyncs = goodOnes;
        syncError = error;
        syncCount = 0;
    }
    ~FailingSync() { syncError = 0; }
    Q_DISABLE_COPY_MOVE(FailingSync)
};

TEST_F(OutputFileTest, FileThatTheDiskDoesNotTakeIsSaidAndLeavesTheOlderOne)
{
    put(path("a.tsv"), "old");
    const FailingSync failing(0, EIO);
    {
        OutputFile output(path("a.tsv"));
        ASSERT_FALSE(output.open().hasError());
        ASSERT_FALSE(output.write("new").hasError());
        EXPECT_EQ(output.commit().message().toStdString(),
                  "cannot finish writing " + path("a.tsv").toStdString() + ": Input/output error");
    }
    EXPECT_EQ(contents(path("a.tsv")), "old");
    EXPECT_EQ(files(), QStringList{"a.tsv"});
}

TEST_F(OutputFileTest, FolderThatTheDiskDoesNotTakeIsSaid)
{
    const FailingSync failing(1, ENOSPC);
    OutputFile output(path("a.tsv"));
    ASSERT_FALSE(output.open().hasError());
    ASSERT_FALSE(output.write("new").hasError());
    EXPECT_EQ(output.commit().message().toStdString(),
              "cannot finish writing " + path("a.tsv").toStdString() + ": No space left on device");
    EXPECT_EQ(contents(path("a.tsv")), "new");
}

TEST_F(OutputFileTest, FileAndFolderAreWaitedForAgainAfterASignal)
{
    for (int before = 0; before < 2; ++before) {
        const FailingSync failing(before, EINTR);
        OutputFile output(path("a.tsv"));
        ASSERT_FALSE(output.open().hasError());
        ASSERT_FALSE(output.commit().hasError());
        EXPECT_EQ(syncCount, 3);
    }
}

TEST_F(OutputFileTest, FileSystemThatCannotWaitIsNoFailure)
{
    const FailingSync failing(0, EINVAL);
    OutputFile output(path("a.tsv"));
    ASSERT_FALSE(output.open().hasError());
    ASSERT_FALSE(output.commit().hasError());
}

TEST_F(OutputFileTest, FolderOfAnUnfinishedFileThatTheDiskDoesNotTakeIsSaid)
{
    UnfinishedFile file;
    ASSERT_FALSE(file.create(path("a.db")).hasError());
    const FailingSync failing(0, EIO);
    EXPECT_EQ(file.commit().message().toStdString(),
              "cannot write " + path("a.db").toStdString() + ": Input/output error");
    EXPECT_EQ(files(), QStringList{"a.db"});
}
#endif

TEST_F(OutputFileTest, UnfinishedFileGetsItsNameOnlyWhenItIsCommitted)
{
    put(path("a.db"), "old");
    {
        UnfinishedFile abandoned;
        ASSERT_FALSE(abandoned.create(path("a.db")).hasError());
        put(abandoned.temporaryPath(), "half");
        EXPECT_EQ(files().size(), 2);
    }
    EXPECT_EQ(contents(path("a.db")), "old");
    EXPECT_EQ(files(), QStringList{"a.db"});
    UnfinishedFile finished;
    ASSERT_FALSE(finished.create(path("a.db")).hasError());
    put(finished.temporaryPath(), "new");
    ASSERT_FALSE(finished.commit().hasError());
    EXPECT_EQ(contents(path("a.db")), "new");
    EXPECT_EQ(files(), QStringList{"a.db"});
}

TEST_F(OutputFileTest, UnfinishedFileGoesWhereALinkPoints)
{
    put(path("target.db"), "old");
    ASSERT_TRUE(QFile::link(path("target.db"), path("link.db")));
    UnfinishedFile file;
    ASSERT_FALSE(file.create(path("link.db")).hasError());
    put(file.temporaryPath(), "new");
    ASSERT_FALSE(file.commit().hasError());
    EXPECT_TRUE(QFileInfo(path("link.db")).isSymLink());
    EXPECT_EQ(contents(path("target.db")), "new");
}

TEST_F(OutputFileTest, RegularFilesAreThoseThatAreAndThoseToBeMade)
{
    put(path("a.tsv"), "old");
    EXPECT_TRUE(isRegularFile(path("a.tsv")));
    EXPECT_TRUE(isRegularFile(path("new.tsv")));
    EXPECT_FALSE(isRegularFile(m_folder.path()));
    EXPECT_FALSE(isRegularFile("-"));
    EXPECT_FALSE(isRegularFile("/dev/null"));
}

TEST(OutputFile, DeviceIsWrittenAndNotReplaced)
{
    if (!QFileInfo::exists(QStringLiteral("/dev/full")))
        GTEST_SKIP() << "no such device on this system";
    OutputFile output(QStringLiteral("/dev/full"));
    ASSERT_FALSE(output.open().hasError());
    ASSERT_FALSE(output.write("something").hasError());
    EXPECT_EQ(output.commit().message().toStdString(), "cannot write /dev/full: No space left on device");
    EXPECT_FALSE(QFileInfo(QStringLiteral("/dev/full")).isFile());
}

TEST(OutputFile, NoPathAndDashAreStandardOutput)
{
    EXPECT_EQ(OutputFile(QString()).name().toStdString(), "standard output");
    EXPECT_EQ(OutputFile(QStringLiteral("-")).name().toStdString(), "standard output");
}

} // namespace
} // namespace zav
