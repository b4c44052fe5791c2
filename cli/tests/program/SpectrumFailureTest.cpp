// SPDX-License-Identifier: Apache-2.0
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

namespace zav {
namespace {

const QString MEASURED = QStringLiteral(ZAV_TEST_DATA_DIR "/LQSRPAAPPAPGPGQLTLR.mgf");
const QString MODELS = QStringLiteral(ZAV_MODELS);

/// A run that fails whole: nothing on standard output, the given lines on standard error.
void expectFailure(const QStringList &arguments, int exitCode, const std::string &standardError)
{
    const ProgramRun run = runZav(arguments);
    EXPECT_EQ(run.exitCode, exitCode);
    EXPECT_EQ(run.standardOutput, "");
    EXPECT_EQ(run.standardError, standardError);
}

/// A folder with the shipped networks, to be damaged.
class DamagedModels : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const QDir shipped(MODELS);
        for (const QString &file : shipped.entryList({"msms_charge*", "peptidoform_spectrum*"}))
            ASSERT_TRUE(QFile::copy(shipped.filePath(file), m_folder.filePath(file)));
    }

    QString network(int charge) const { return m_folder.filePath(QStringLiteral("msms_charge%1.pb").arg(charge)); }
    void removeNetwork(int charge) const { ASSERT_TRUE(QFile::remove(network(charge))); }
    void breakNetwork(int charge) const { writeFile(network(charge), "no graph"); }

    QTemporaryDir m_folder;
};

struct Unpredictable
{
    const char *peptide;
    const char *charge;
    const char *message;
};

class UnpredictablePrecursor : public ::testing::TestWithParam<Unpredictable>
{};

TEST_P(UnpredictablePrecursor, IsOneLineAndExitCodeOne)
{
    const Unpredictable &p = GetParam();
    expectFailure({"spectrum", p.peptide, p.charge}, 1, std::string("zav: ") + p.message + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    SpectrumFailure, UnpredictablePrecursor,
    ::testing::Values(
        Unpredictable{"PEPTIDEX", "2",
                      "PEPTIDEX/2: unknown residue 'X' at position 8; only the 20 standard residues are predicted"},
        Unpredictable{"PEPtIDE", "2",
                      "PEPtIDE/2: lower-case residue 't' at position 4, peptides are written in upper case"},
        Unpredictable{"PEPTM[16]IDE", "2", "PEPTM[16]IDE/2: no modification '16' at character 7"},
        Unpredictable{"PEPT*IDE", "2",
                      "PEPT*IDE/2: '*' at position 5 is not a residue; modifications are written as in AM[Oxidation]K"},
        Unpredictable{"PEPTIDE", "0", "PEPTIDE/0: charge 0 is not predicted, only 1 to 5"},
        Unpredictable{"PEPTIDE", "6", "PEPTIDE/6: charge 6 is not predicted, only 1 to 5; with --energy, 1 to 6"},
        Unpredictable{"AAAAAAAAAAAAAAAAAAAAAAAAAAAA", "1",
                      "AAAAAAAAAAAAAAAAAAAAAAAAAAAA/1: the peptide has 28 residues; charge 1 allows at most 27"}));

TEST_F(DamagedModels, MissingNetworkOfPeptidoformsFailsWhatNeedsIt)
{
    ASSERT_TRUE(QFile::remove(m_folder.filePath("peptidoform_spectrum.pb")));
    const QStringList models{"--models", m_folder.path()};
    expectFailure(QStringList{"spectrum", "AM[Oxidation]K", "2"} + models, 1,
                  "zav: no network peptidoform_spectrum.pb in " + m_folder.path().toStdString() + "\n");
    const ProgramRun list = runZav(QStringList{"spectrum", "--peptides", "-", "--no-isotopes"} + models,
                                   "PEPTIDEK\t2\nAM[Oxidation]K\t2\n");
    EXPECT_EQ(list.exitCode, 1);
    EXPECT_GT(linesOf(list.standardOutput).size(), 5);
    EXPECT_EQ(linesOf(list.standardError).first(), "zav: standard input:2: AM[Oxidation]K/2: no network "
                                                   "peptidoform_spectrum.pb in " +
                                                       m_folder.path());
}

TEST_F(DamagedModels, BrokenNetworkOfPeptidoformsIsNamed)
{
    writeFile(m_folder.filePath("peptidoform_spectrum.pb"), "no graph");
    const QStringList arguments{"spectrum", "AM[Oxidation]K", "2", "--models", m_folder.path()};
    expectFailure(arguments, 1,
                  "zav: cannot load peptidoform_spectrum.pb: the SHA-256 differs from the contract's "
                  "(--trust-networks loads it all the same)\n");
    expectFailure(arguments + QStringList{"--trust-networks"}, 1,
                  "zav: the networks are loaded unchecked\n"
                  "zav: cannot load peptidoform_spectrum.pb: not a usable network\n");
}

TEST(SpectrumFailure, EmptyPeptideIsSaid)
{
    const ProgramRun run = runZav({"spectrum", "--peptides", "-"}, "\t2\n");
    EXPECT_EQ(run.standardError, "zav: standard input:1: /2: the peptide is empty\n"
                                 "zav: 1 of 1 precursors could not be predicted\n");
}

TEST(SpectrumFailure, WrongUsageIsExitCodeTwo)
{
    expectFailure({"spectrum", "PEPTIDE"}, 2,
                  "zav: CHARGE is missing\nzav: 'zav spectrum --help' explains the usage\n");
    expectFailure({"spectrm"}, 2,
                  "zav: unknown command 'spectrm', did you mean 'spectrum'?\nzav: 'zav --help' explains the usage\n");
}

TEST(SpectrumFailure, InputIsNotOverwritten)
{
    QTemporaryDir folder;
    const QByteArray list = "PEPTIDEK\t2\n";
    writeFile(folder.filePath("list.tsv"), list);
    const auto refusal = [&folder](const QStringList &arguments) {
        const ProgramRun run = runZav(QStringList{"spectrum"} + arguments, {}, folder.path());
        EXPECT_EQ(run.exitCode, 2);
        return linesOf(run.standardError).first().toStdString();
    };
    EXPECT_EQ(refusal({"--peptides", "list.tsv", "-o", "./list.tsv"}), "zav: list.tsv would be overwritten");
    EXPECT_EQ(refusal({"PEPTIDEK", "2", "--against", "list.tsv", "-o", "list.tsv"}),
              "zav: list.tsv would be overwritten");
    QFile kept(folder.filePath("list.tsv"));
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), list);
}

TEST(SpectrumFailure, ListGoesOnPastEachPeptideThatFails)
{
    QTemporaryDir folder;
    writeFile(folder.filePath("list.tsv"), "PEPTIDEK\t2\nPEPTIDEX\t2\nSAMPLER\tmany\nSAMPLER\t9\nSAMPLER\t2\n");
    const ProgramRun run = runZav({"spectrum", "--peptides", "list.tsv", "--format", "mgf"}, {}, folder.path());
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(
        run.standardError,
        "zav: list.tsv:2: PEPTIDEX/2: unknown residue 'X' at position 8; only the 20 standard residues are predicted\n"
        "zav: list.tsv:3: SAMPLER: charge 'many' is not a whole number\n"
        "zav: list.tsv:4: SAMPLER/9: charge 9 is not predicted, only 1 to 5\n"
        "zav: 3 of 5 precursors could not be predicted\n");
    EXPECT_EQ(QString::fromStdString(run.standardOutput).count("TITLE="), 2);
}

TEST(SpectrumFailure, ListWithoutPeptidesIsSaidAndWritesNoFile)
{
    QTemporaryDir folder;
    writeFile(folder.filePath("list.tsv"), "peptide\tcharge\n");
    const ProgramRun run = runZav({"spectrum", "--peptides", "list.tsv", "-o", "out.tsv"}, {}, folder.path());
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.standardError, "zav: no peptides in list.tsv\n");
    EXPECT_FALSE(QFileInfo::exists(folder.filePath("out.tsv")));
}

TEST(SpectrumFailure, UnreadableFilesAreNamed)
{
    expectFailure({"spectrum", "--peptides", "nowhere.tsv"}, 1,
                  "zav: cannot read nowhere.tsv: No such file or directory\n");
    const ProgramRun run = runZav({"spectrum", "PEPTIDE", "2", "--against", "nowhere.mgf"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.standardOutput, "");
    EXPECT_EQ(linesOf(run.standardError).size(), 1);
    EXPECT_NE(run.standardError.find("nowhere.mgf"), std::string::npos);
}

TEST(SpectrumFailure, ScanThatIsNotThereIsNamed)
{
    const ProgramRun run = runZav({"spectrum", "PEPTIDE", "2", "--against", MEASURED, "--scan", "7"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(linesOf(run.standardError).size(), 1);
    EXPECT_NE(run.standardError.find("'7'"), std::string::npos);
}

TEST(SpectrumFailure, MissingScanOfOnePeptideIsToBeNamedByItsOption)
{
    QTemporaryDir folder;
    writeFile(folder.filePath("run.mgf"), "BEGIN IONS\n1 2\nEND IONS\nBEGIN IONS\n1 2\nEND IONS\n");
    const ProgramRun run = runZav({"spectrum", "PEPTIDE", "2", "--against", "run.mgf"}, {}, folder.path());
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.standardError, "zav: run.mgf: holds 2 MS2 spectra: choose one with --scan\n");
}

TEST(SpectrumFailure, FolderWithoutNetworksIsNamed)
{
    QTemporaryDir empty;
    expectFailure({"spectrum", "PEPTIDE", "2", "--models", empty.path()}, 1,
                  "zav: no networks (msms_charge1.pb to msms_charge5.pb) in " + empty.path().toStdString() + "\n");
    expectFailure({"spectrum", "PEPTIDE", "2", "--models", "nowhere"}, 1, "zav: no folder of networks at nowhere\n");
}

TEST_F(DamagedModels, MissingNetworkFailsItsChargeOnly)
{
    removeNetwork(1);
    removeNetwork(4);
    const ProgramRun run = runZav({"spectrum", "--peptides", "-", "--models", m_folder.path(), "--format", "mgf"},
                                  "PEPTIDEK\t2\nPEPTIDEK\t4\nPEPTIDEK\t5\n");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.standardError, "zav: standard input:2: PEPTIDEK/4: no network for charge 4 in " +
                                     m_folder.path().toStdString() +
                                     "\nzav: 1 of 3 precursors could not be predicted\n");
    EXPECT_EQ(QString::fromStdString(run.standardOutput).count("TITLE="), 2);
}

TEST_F(DamagedModels, BrokenNetworkFailsItsChargeOnly)
{
    breakNetwork(2);
    breakNetwork(3);
    const ProgramRun run = runZav({"spectrum", "--peptides", "-", "--models", m_folder.path(), "--format", "mgf"},
                                  "PEPTIDEK\t3\nPEPTIDEK\t2\nPEPTIDEK\t5\n");
    EXPECT_EQ(run.exitCode, 1);
    const QStringList lines = linesOf(run.standardError);
    ASSERT_EQ(lines.size(), 3) << run.standardError;
    EXPECT_TRUE(lines[0].startsWith("zav: standard input:1: PEPTIDEK/3: cannot load msms_charge3.pb: "));
    EXPECT_TRUE(lines[1].startsWith("zav: standard input:2: PEPTIDEK/2: cannot load msms_charge2.pb: "));
    EXPECT_EQ(QString::fromStdString(run.standardOutput).count("TITLE="), 1);
}

TEST_F(DamagedModels, NetworkOfAnotherChargeIsRefusedWithoutInternals)
{
    ASSERT_TRUE(QFile::remove(network(2)));
    ASSERT_TRUE(QFile::copy(network(3), network(2)));
    ASSERT_TRUE(QFile::remove(m_folder.filePath("msms_charge2.json")));
    ASSERT_TRUE(QFile::copy(m_folder.filePath("msms_charge3.json"), m_folder.filePath("msms_charge2.json")));
    for (const QStringList &options : {QStringList(), {"--no-isotopes"}}) {
        const ProgramRun run = runZav(QStringList{"spectrum", "PEPTIDEK", "2", "--models", m_folder.path()} + options);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.standardOutput, "");
        EXPECT_EQ(run.standardError, "zav: PEPTIDEK/2: msms_charge2.pb is not a network for charge 2\n");
    }
}

TEST_F(DamagedModels, VerboseShowsTheWholeTrail)
{
    breakNetwork(2);
    const QStringList arguments{"spectrum", "PEPTIDEK", "2", "--models", m_folder.path(), "--trust-networks"};
    const ProgramRun plain = runZav(arguments);
    EXPECT_EQ(linesOf(plain.standardError).size(), 2) << plain.standardError;
    EXPECT_EQ(plain.standardError.find("ml/src"), std::string::npos);

    const ProgramRun verbose = runZav(arguments + QStringList{"--verbose"});
    const size_t model = verbose.standardError.find("at ml/src/Model:");
    const size_t loading = verbose.standardError.find("at ml/src/MsMsFragmentationPredictomatic:");
    const size_t init = verbose.standardError.find("at ml/src/MsMsFragmentationPredictomatic:123 in ");
    EXPECT_NE(model, std::string::npos) << verbose.standardError;
    EXPECT_LT(model, loading);
    EXPECT_LT(loading, init);
    EXPECT_NE(init, std::string::npos);
}

TEST(SpectrumFailure, OutputThatCannotBeWrittenIsSaid)
{
    QTemporaryDir folder;
    const QString path = folder.filePath("nowhere/out.tsv");
    expectFailure({"spectrum", "PEPTIDE", "2", "-o", path}, 1,
                  "zav: cannot write " + path.toStdString() + ": No such file or directory\n");
}

TEST(SpectrumFailure, PictureThatCannotBeWrittenIsSaidOnOneLine)
{
    const ProgramRun run = runZav({"spectrum", "PEPTIDE", "2", "--plot", "nowhere/a.svg"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(linesOf(run.standardError).size(), 1) << run.standardError;
}

TEST(SpectrumFailure, FullDiskIsSaid)
{
    if (!QFileInfo::exists("/dev/full"))
        GTEST_SKIP() << "no such device on this system";
    expectFailure({"spectrum", "PEPTIDE", "2", "-o", "/dev/full"}, 1,
                  "zav: cannot write /dev/full: No space left on device\n");
}

TEST(SpectrumFailure, OlderOutputStaysWhenNothingIsPredicted)
{
    QTemporaryDir folder;
    writeFile(folder.filePath("out.tsv"), "old");
    EXPECT_EQ(runZav({"spectrum", "PEPTIDEX", "2", "-o", "out.tsv"}, {}, folder.path()).exitCode, 1);
    EXPECT_EQ(readFile(folder.filePath("out.tsv")).toStdString(), "old");
}

TEST(SpectrumFailure, ReaderThatGoesAwayEndsTheRunQuietly)
{
    QTemporaryDir folder;
    writeFile(folder.filePath("list.tsv"), QByteArray("SAMPLERPEPTIDEK\t2\n").repeated(3000));
    const ProgramRun run = runProgramAt(
        "/bin/sh",
        {"-c", QStringLiteral("'%1' spectrum --peptides list.tsv --no-isotopes | head -n 1").arg(ZAV_PROGRAM)}, {},
        folder.path());
    EXPECT_EQ(run.standardOutput, "mz\tintensity\tpeptide\tcharge\n");
    EXPECT_EQ(run.standardError, "");
}

} // namespace
} // namespace zav
