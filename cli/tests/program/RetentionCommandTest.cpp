// SPDX-License-Identifier: Apache-2.0
#include "ProgramRun.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

#include <QtCore/QFileInfo>
#include <QtCore/QMap>

#include <cmath>

namespace zav {
namespace {

struct Anchor
{
    const char *peptide;
    double irt;
};

// Escher et al., Proteomics 12, 1111 (2012).
constexpr Anchor ANCHORS[] = {{"LGGNEQVTR", -24.92},    {"GAGSSEPVTGLDAK", 0.0},  {"VEATFGVDESNAK", 12.39},
                              {"YILAGVENSK", 19.79},    {"TPVISGGPYEYR", 28.71},  {"TPVITGAPYEYR", 33.38},
                              {"DGLDAASYYAPVR", 42.26}, {"ADVTPADFSEWSK", 54.62}, {"GTFIIDPGGVIR", 70.52},
                              {"GTFIIDPAAVIR", 87.23},  {"LFLQFGAQGSPFLK", 100.0}};

/// The anchors as observed on a gradient of 30 + 0.25 x iRT minutes.
QByteArray observedAnchors()
{
    QByteArray text = "peptide\trt\n";
    for (const Anchor &anchor : ANCHORS)
        text += QByteArray(anchor.peptide) + '\t' + QByteArray::number(30 + 0.25 * anchor.irt) + '\n';
    return text;
}

struct RetentionCommand : testing::Test
{
    TemporaryFiles files;

    ProgramRun run(const QStringList &arguments, const QByteArray &list = "PEPTIDEK\n") const
    {
        return runZav(QStringList{"retention", "--peptides", "-"} + arguments, list, files.path(QString()));
    }

    /// The numbers of a column by peptide.
    static QMap<QString, double> column(const std::string &table, int index)
    {
        QMap<QString, double> numbers;
        for (const QString &line : linesOf(table).mid(1))
            numbers[line.section(u'\t', 0, 0)] = line.section(u'\t', index, index).toDouble();
        return numbers;
    }
};

TEST_F(RetentionCommand, WritesTheTimeOfEachPeptideInOrder)
{
    const ProgramRun outcome = run({}, "LFLQFGAQGSPFLK\nGAGSSEPVTGLDAK\n\n# comment\nYILAGVENSK\n");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.standardError, "");
    const QStringList lines = linesOf(outcome.standardOutput);
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[0], "peptide\tirt");
    EXPECT_EQ(lines[1].section(u'\t', 0, 0), "LFLQFGAQGSPFLK");
    EXPECT_EQ(lines[2].section(u'\t', 0, 0), "GAGSSEPVTGLDAK");
    EXPECT_EQ(lines[3].section(u'\t', 0, 0), "YILAGVENSK");
    const QMap<QString, double> irts = column(outcome.standardOutput, 1);
    EXPECT_LT(irts["GAGSSEPVTGLDAK"], irts["YILAGVENSK"]);
    EXPECT_LT(irts["YILAGVENSK"], irts["LFLQFGAQGSPFLK"]);
    EXPECT_EQ(lines[1].section(u'.', 1).size(), 3) << "three decimals";
}

TEST_F(RetentionCommand, ReadsTheColumnOfATable)
{
    const ProgramRun named = run({}, "charge\tPeptide\n2\tYILAGVENSK\n");
    const ProgramRun sequence = run({}, "sequence\tcharge\nYILAGVENSK\t2\n");
    const ProgramRun first = run({}, "YILAGVENSK\t2\n");
    EXPECT_EQ(named.exitCode, 0) << named.standardError;
    EXPECT_EQ(named.standardOutput, first.standardOutput);
    EXPECT_EQ(sequence.standardOutput, first.standardOutput);
}

TEST_F(RetentionCommand, BlocksTheCysteinesOfPlainPeptidesOnly)
{
    const ProgramRun outcome =
        run({}, "LVECSGTFR\nLVEC[Carbamidomethyl]SGTFR\nLVECSGTFM[Oxidation]R\nLVEC[UNIMOD:4]SGTFM[Oxidation]R\n");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.standardError, "zav: Cysteine without a modification is unknown to the network\n");
    const QMap<QString, double> irts = column(outcome.standardOutput, 1);
    ASSERT_EQ(irts.size(), 4);
    EXPECT_EQ(irts["LVECSGTFR"], irts["LVEC[Carbamidomethyl]SGTFR"]);
    EXPECT_NE(irts["LVECSGTFM[Oxidation]R"], irts["LVEC[UNIMOD:4]SGTFM[Oxidation]R"]);
}

TEST_F(RetentionCommand, NamesModificationsOutsideTrainingOnce)
{
    QByteArray list;
    for (int i = 0; i < 9000; ++i) // more than one block
        list += "K[TMT6plex]PEPTIDE\n";
    const ProgramRun outcome = run({}, list);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.standardError, "zav: Modification TMT6plex at K is unknown to the network\n");
    EXPECT_EQ(linesOf(outcome.standardOutput).size(), 9001);
}

TEST_F(RetentionCommand, GoesOnPastEachPeptideThatFails)
{
    files.write("list.tsv", "PEPTIDEK\nPEPTIDEX\nPEPTIDe\nK\nSAMPLER\n");
    const ProgramRun outcome =
        runZav({"retention", "--peptides", "list.tsv", "-o", "times.tsv"}, {}, files.path(QString()));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.standardOutput, "");
    const QStringList messages = linesOf(outcome.standardError);
    ASSERT_EQ(messages.size(), 4) << outcome.standardError;
    const QString all = messages.join(u'\n');
    EXPECT_TRUE(all.contains("zav: list.tsv:2: PEPTIDEX has the residue X, which is not one of the 20 standard ones: "
                             "not predicted"))
        << outcome.standardError;
    EXPECT_TRUE(all.contains("zav: list.tsv:3: PEPTIDe: ")) << outcome.standardError;
    EXPECT_TRUE(all.contains("zav: list.tsv:4: K has 1 residues, not 2 to 52: not predicted")) << outcome.standardError;
    EXPECT_EQ(messages.last(), "zav: 3 of 5 peptides could not be predicted");
    EXPECT_EQ(column(files.read("times.tsv").toStdString(), 1).keys(), QStringList({"PEPTIDEK", "SAMPLER"}));
}

TEST_F(RetentionCommand, CalibratesToObservedTimes)
{
    files.write("observed.tsv", observedAnchors());
    const ProgramRun outcome = run({"--calibrate", "observed.tsv"}, "GAGSSEPVTGLDAK\nLFLQFGAQGSPFLK\n");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.standardError;
    EXPECT_EQ(linesOf(outcome.standardError).size(), 1);
    EXPECT_EQ(outcome.standardError.rfind("zav: calibrated with 11 pairs, ", 0), 0U) << outcome.standardError;
    EXPECT_EQ(linesOf(outcome.standardOutput).first(), "peptide\tirt\trt");
    const QMap<QString, double> times = column(outcome.standardOutput, 2);
    EXPECT_NEAR(times["GAGSSEPVTGLDAK"], 30, 2.5);
    EXPECT_NEAR(times["LFLQFGAQGSPFLK"], 55, 2.5);
    EXPECT_EQ(column(outcome.standardOutput, 1), column(run({}, "GAGSSEPVTGLDAK\nLFLQFGAQGSPFLK\n").standardOutput, 1));
}

TEST_F(RetentionCommand, SaysWhatIsWrongWithObservedTimes)
{
    files.write("few.tsv", "peptide\trt\nPEPTIDEK\t1\n");
    EXPECT_EQ(run({"--calibrate", "few.tsv"}).standardError,
              "zav: cannot calibrate with few.tsv: A calibration needs 10 pairs that can be predicted, not 1\n");
    files.write("falling.tsv", observedAnchors().replace('\t', "\t-").replace("\t-rt", "\trt").replace("--", "-"));
    const ProgramRun falling = run({"--calibrate", "falling.tsv"});
    EXPECT_EQ(falling.exitCode, 1);
    EXPECT_EQ(falling.standardError,
              "zav: cannot calibrate with falling.tsv: The times do not rise with the predicted ones\n");
    EXPECT_EQ(falling.standardOutput, "");
    EXPECT_EQ(run({"--calibrate", "nowhere.tsv"}).standardError,
              "zav: cannot read nowhere.tsv: No such file or directory\n");
    files.write("foreign.tsv", "peptide\trt\n_PEPTIDEK_\t1\n_SAMPLER_\t2\n");
    EXPECT_EQ(run({"--calibrate", "foreign.tsv"}).standardError,
              "zav: cannot calibrate with foreign.tsv: A calibration needs 10 pairs that can be predicted, not 0; rows "
              "that cannot be read: 2, the first is foreign.tsv:2: _PEPTIDEK_: unexpected '_' at character 1\n");
    files.write("odd.tsv", observedAnchors() + "PEPTIDe\t4\nPEPTIDEX\t5\n");
    const ProgramRun odd = run({"--calibrate", "odd.tsv"});
    EXPECT_EQ(odd.exitCode, 0) << odd.standardError;
    ASSERT_EQ(linesOf(odd.standardError).size(), 3) << odd.standardError;
    EXPECT_TRUE(linesOf(odd.standardError)[0].startsWith("zav: odd.tsv:13: PEPTIDe: "));
    EXPECT_TRUE(linesOf(odd.standardError)[1].startsWith("zav: PEPTIDEX has the residue X"));
}

TEST_F(RetentionCommand, DrawsTheCalibration)
{
    files.write("observed.tsv", observedAnchors());
    const ProgramRun outcome = run({"--calibrate", "observed.tsv", "--plot", "calibration.svg"});
#ifdef ZAV_DRAWS_PICTURES
    EXPECT_EQ(outcome.exitCode, 0) << outcome.standardError;
    const QByteArray picture = files.read("calibration.svg");
    EXPECT_TRUE(picture.contains("11 pairs, "));
    EXPECT_TRUE(picture.contains("observed.tsv"));
#else
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.standardError, "zav: this build of zav cannot draw pictures\n");
#endif
}

TEST_F(RetentionCommand, NamesAMissingListOrNetwork)
{
    EXPECT_EQ(runZav({"retention", "--peptides", "nowhere.tsv"}).standardError,
              "zav: cannot read nowhere.tsv: No such file or directory\n");
    EXPECT_EQ(run({}, "peptide\n").standardError, "zav: no peptides in standard input\n");
    const ProgramRun outcome = run({"--models", "."});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.standardError, "zav: no network retention_time.pb in .\n");
    files.write("retention_time.pb", "no graph");
    EXPECT_EQ(run({"--models", "."}).standardError.rfind("zav: cannot load retention_time.pb: ", 0), 0U);
}

TEST_F(RetentionCommand, WritesNoFileWhenNothingIsPredicted)
{
    EXPECT_EQ(run({"-o", "times.tsv"}, "PEPTIDEX\n").exitCode, 1);
    EXPECT_FALSE(QFileInfo::exists(files.path("times.tsv")));
}

TEST_F(RetentionCommand, LeavesItsInputsAsTheyAre)
{
    const QByteArray observed = observedAnchors();
    files.write("observed.tsv", observed);
    files.write("observed.svg", observed);
    const auto refusal = [this](const QStringList &arguments) {
        const ProgramRun outcome = runZav(QStringList{"retention"} + arguments, {}, files.path(QString()));
        EXPECT_EQ(outcome.exitCode, 2);
        return linesOf(outcome.standardError).first().toStdString();
    };
    EXPECT_EQ(refusal({"--peptides", "observed.tsv", "-o", "./observed.tsv"}),
              "zav: observed.tsv would be overwritten");
    EXPECT_EQ(refusal({"--peptides", "-", "--calibrate", "observed.tsv", "-o", files.path("observed.tsv")}),
              "zav: observed.tsv would be overwritten");
    EXPECT_EQ(refusal({"--peptides", "-", "--calibrate", "observed.svg", "--plot", "observed.svg"}),
              "zav: observed.svg would be overwritten");
    EXPECT_EQ(files.read("observed.tsv"), observed);
}

TEST_F(RetentionCommand, RefusesArgumentsThatContradictEachOther)
{
    const auto refusal = [](const QStringList &arguments) {
        const ProgramRun outcome = runZav(QStringList{"retention"} + arguments);
        EXPECT_EQ(outcome.exitCode, 2);
        return linesOf(outcome.standardError).first().toStdString();
    };
    EXPECT_EQ(refusal({}), "zav: --peptides is missing");
    EXPECT_EQ(refusal({"--peptides", "-", "--calibrate", "-"}),
              "zav: --peptides and --calibrate cannot both be standard input");
    EXPECT_EQ(refusal({"--peptides", "-", "--plot", "a.svg"}), "zav: --plot needs --calibrate");
    EXPECT_EQ(refusal({"--peptides", "-", "--calibrate", "a.tsv", "--plot", "a.txt"}),
              "zav: --plot draws a file ending in .svg, .png or .pdf, not 'a.txt'");
}

} // namespace
} // namespace zav
