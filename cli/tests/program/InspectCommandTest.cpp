// SPDX-License-Identifier: Apache-2.0
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>

namespace zav {
namespace {

const QString MODELS = QStringLiteral(ZAV_MODELS);

class InspectedCopy : public ::testing::Test
{
protected:
    void SetUp() override
    {
        for (const QString &file : QStringList{"msms_charge2.pb", "msms_charge2.json"})
            ASSERT_TRUE(QFile::copy(QDir(MODELS).filePath(file), m_folder.filePath(file)));
    }

    ProgramRun inspect(const QStringList &options = {}) const
    {
        return runZav(QStringList{"inspect", m_folder.path()} + options);
    }

    QTemporaryDir m_folder;
};

/// The cells of a table row: columns are at least two blanks apart.
QStringList cells(const QString &line)
{
    return line.split(QRegularExpression(" {2,}"));
}

TEST(InspectCommand, ShippedNetworksHoldTheirContractsAndRun)
{
    const ProgramRun run = runZav({"inspect", MODELS});
    EXPECT_EQ(run.exitCode, 0) << run.standardError;
    EXPECT_EQ(run.standardError, "");
    int fragmentation = 0;
    for (const QString &line : linesOf(run.standardOutput).mid(1)) {
        EXPECT_TRUE(line.endsWith("  holds    runs")) << line.toStdString();
        fragmentation += line.contains("msms_fragmentation");
    }
    EXPECT_EQ(fragmentation, 5);
}

TEST(InspectCommand, TableSaysWhatTheContractSays)
{
    const QStringList lines = linesOf(runZav({"inspect", MODELS}).standardOutput);
    EXPECT_EQ(cells(lines[0]),
              QStringList({"network", "kind", "charge", "input", "output", "held-out figures", "SHA-256", "trial"}));
    const QStringList row = cells(lines[3]);
    EXPECT_EQ(row.mid(0, 5), QStringList({"msms_charge3", "msms_fragmentation", "3", "n x 50 x 21", "n x 515"}));
    EXPECT_TRUE(QRegularExpression("^angle 0\\.\\d{3}, Pearson 0\\.\\d{3}, \\d+ spectra$").match(row[5]).hasMatch());
}

TEST(InspectCommand, InstalledNetworksAreTheDefault)
{
    EXPECT_EQ(runZav({"inspect"}).standardOutput, runZav({"inspect", MODELS}).standardOutput);
}

TEST_F(InspectedCopy, ChangedGraphNoLongerHoldsItsHash)
{
    QByteArray graph = readFile(m_folder.filePath("msms_charge2.pb"));
    writeFile(m_folder.filePath("msms_charge2.pb"), graph + QByteArray("\x22\x00", 2)); // an empty versions record
    const ProgramRun run = inspect();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.standardError, "zav: msms_charge2: the SHA-256 differs from the contract's\n");
    EXPECT_TRUE(linesOf(run.standardOutput)[1].endsWith("  fails    not tried")) << run.standardOutput;
}

TEST_F(InspectedCopy, ChangedGraphThatIsTrustedIsTried)
{
    const QByteArray graph = readFile(m_folder.filePath("msms_charge2.pb"));
    writeFile(m_folder.filePath("msms_charge2.pb"), graph + QByteArray("\x22\x00", 2));
    const ProgramRun run = inspect({"--trust-networks"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.standardError, "zav: the networks are loaded unchecked\n"
                                 "zav: msms_charge2: the SHA-256 differs from the contract's\n");
    EXPECT_TRUE(linesOf(run.standardOutput)[1].endsWith("  fails    runs")) << run.standardOutput;
}

TEST_F(InspectedCopy, BrokenGraphThatIsTrustedFailsBothChecksOnOneLineEach)
{
    writeFile(m_folder.filePath("msms_charge2.pb"), "no graph");
    const ProgramRun run = inspect({"--trust-networks"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(linesOf(run.standardOutput)[1].endsWith("  fails    fails"));
    ASSERT_EQ(linesOf(run.standardError).size(), 3) << run.standardError;
    EXPECT_TRUE(linesOf(run.standardError)[2].startsWith("zav: msms_charge2: cannot load msms_charge2.pb: "));
    EXPECT_EQ(run.standardError.find("ml/src"), std::string::npos);
    EXPECT_NE(inspect({"--trust-networks", "--verbose"}).standardError.find("at ml/src/Model:"), std::string::npos);
}

TEST_F(InspectedCopy, GraphWithoutAContractIsListed)
{
    ASSERT_TRUE(QFile::remove(m_folder.filePath("msms_charge2.json")));
    const ProgramRun run = inspect();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(cells(linesOf(run.standardOutput)[1]), QStringList({"msms_charge2", "no contract"}));
    EXPECT_EQ(linesOf(run.standardError).size(), 1);
}

TEST_F(InspectedCopy, ContractWithoutAGraphIsListed)
{
    ASSERT_TRUE(QFile::remove(m_folder.filePath("msms_charge2.pb")));
    const ProgramRun run = inspect();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.standardError.find("msms_charge2.pb: No such file or directory"), std::string::npos);
    EXPECT_TRUE(linesOf(run.standardOutput)[1].endsWith("  fails    not tried")) << run.standardOutput;
}

TEST_F(InspectedCopy, ContractThatIsNoJsonIsSaid)
{
    for (const QByteArray &text : {QByteArray("{"), QByteArray("[]"), QByteArray("{\"kind\": 7}"), QByteArray()}) {
        writeFile(m_folder.filePath("msms_charge2.json"), text);
        const ProgramRun run = inspect();
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_NE(run.standardError.find("msms_charge2.json is not the contract of a network\n"), std::string::npos);
    }
}

TEST_F(InspectedCopy, ContractOfAStrangeKindOrChargeCannotBeTried)
{
    const QByteArray contract = readFile(m_folder.filePath("msms_charge2.json"));
    writeFile(m_folder.filePath("msms_charge2.json"), QByteArray(contract).replace("msms_fragmentation", "tea_leaves"));
    EXPECT_EQ(inspect().standardError, "zav: msms_charge2: this kind of network cannot be tested\n");
    writeFile(m_folder.filePath("msms_charge2.json"), QByteArray(contract).replace("\"charge\": 2", "\"charge\": 12"));
    EXPECT_EQ(inspect().standardError, "zav: msms_charge2: its charge is not 1 to 5\n");
}

TEST(InspectCommand, FolderWithoutNetworksIsNamed)
{
    QTemporaryDir empty;
    const ProgramRun run = runZav({"inspect", empty.path()});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.standardError, "zav: no networks in " + empty.path().toStdString() + "\n");
    EXPECT_EQ(runZav({"inspect", "nowhere"}).standardError, "zav: no folder of networks at nowhere\n");
}

} // namespace
} // namespace zav
