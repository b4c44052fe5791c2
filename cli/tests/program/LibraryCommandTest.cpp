// SPDX-License-Identifier: Apache-2.0
#include "LibraryRun.h"

#include <QtCore/QDir>
#include <QtCore/QMap>
#include <QtCore/QProcess>
#include <QtCore/QThread>

#include <csignal>

namespace zav {
namespace {

// Cut by hand, without missed cleavages. GGGGGGK: 488.23 Da, below 300 m/z at 2+ and 3+. The X makes a peptide that
// is skipped. Both proteins have LVNELTEFAK.
constexpr char PROTEINS[] = ">sp|P11111|ONE_TEST One OS=Test GN=ONE\nMAGICPEPTIDEKSAMPLEPEPTIDERLVNELTEFAK\n"
                            ">sp|P22222|TWO_TEST Two OS=Test GN=TWO\nLVNELTEFAKXPEPTIDEKGGGGGGK\n"
                            ">plain\nAAAAAAAAAAAAAAAAAAAAAAAAAAAAK\n";
const QString LONGEST = QString(28, QLatin1Char('A')) + QLatin1Char('K'); // 29 residues, 2135.14 Da

class LibraryCommand : public LibraryRun
{
protected:
    void SetUp() override { m_files.write("p.fasta", PROTEINS); }
};

TEST_F(LibraryCommand, HoldsEveryPeptideAtEachChargeInTheOrderOfTheirSequences)
{
    const ProgramRun made = run({"p.fasta", "-o", "lib.tsv", "--missed-cleavages", "0"});
    EXPECT_EQ(made.standardOutput, "");
    EXPECT_EQ(made.standardError, "zav: 5 peptides, 5 peptidoforms, 8 precursors\n"
                                  "zav: 3 proteins, 5 peptides, 0 decoys; 8 precursors written\n"
                                  "zav: left out: 1 peptides with non-standard residues, 2 precursors outside 300 to "
                                  "1800 m/z\n");
    EXPECT_EQ(column("lib.tsv", "TransitionGroupId"),
              (QStringList{LONGEST + "_2", LONGEST + "_3", "LVNELTEFAK_2", "LVNELTEFAK_3", "MAGICPEPTIDEK_2",
                           "MAGICPEPTIDEK_3", "SAMPLEPEPTIDER_2", "SAMPLEPEPTIDER_3"}));
    EXPECT_EQ(column("lib.tsv", "ProteinId"), (QStringList{"plain", "P11111;P22222", "P11111"}));
    EXPECT_EQ(column("lib.tsv", "Genes"), (QStringList{"", "ONE;TWO", "ONE"}));
    EXPECT_EQ(column("lib.tsv", "Decoy"), QStringList{"0"});
    EXPECT_EQ(fileNames(), (QStringList{"lib.tsv", "lib.tsv.json", "p.fasta"}));
}

// m/z by pyteomics 4.7.5: LVNELTEFAK 2+ is 582.318971, its y8 951.478188.
TEST_F(LibraryCommand, PrecursorsAndFragmentsStandAtTheirMz)
{
    run({"p.fasta", "-o", "lib.tsv", "--missed-cleavages", "0", "--charges", "2"});
    const QByteArray text = m_files.read("lib.tsv");
    EXPECT_TRUE(text.contains("\n582.31897\t951.47819\t")) << text.left(900).toStdString();
}

TEST_F(LibraryCommand, ListsWhatItSkips)
{
    const QByteArray tooLong = QByteArray(52, 'A') + 'K'; // one residue more than the network takes, 3837.9 Da
    m_files.write("long.fasta", PROTEINS + QByteArray(">long\n") + tooLong + '\n');
    const ProgramRun made = run({"long.fasta", "-o", "lib.tsv", "--missed-cleavages", "0", "--max-length", "60",
                                 "--charges", "3,4", "--variable", "Methyl@K", "--skipped", "skipped.tsv"});
    EXPECT_NE(made.standardError.find("4 precursors too long for the network"), std::string::npos)
        << made.standardError;
    EXPECT_EQ(made.standardError.find("not predicted"), std::string::npos) << made.standardError;
    const QStringList lines = linesOf(m_files.read("skipped.tsv").toStdString());
    ASSERT_EQ(lines.size(), 4); // each charge once, whatever the number of peptidoforms
    EXPECT_EQ(lines[0], "protein\tpeptide\tcharge\treason");
    EXPECT_TRUE(lines[1].startsWith("P22222\tXPEPTIDEK\t\t")) << lines[1].toStdString();
    EXPECT_EQ(lines[2],
              "long\t" + QString::fromLatin1(tooLong) + "\t3\t53 residues, more than the 52 that are predicted");
}

// m/z by hand from the masses of Unimod: MAGICPEPTIDEK with carbamidomethyl has 2+ at 723.84580; oxidation adds
// 15.994915 / 2.
TEST_F(LibraryCommand, VariableModificationsStandBesideThePlainPeptide)
{
    const ProgramRun made =
        run({"p.fasta", "-o", "lib.tsv", "--missed-cleavages", "0", "--charges", "2", "--variable", "Oxidation@M"});
    EXPECT_NE(made.standardError.find("5 peptides, 7 peptidoforms, "), std::string::npos) << made.standardError;
    const QByteArray text = m_files.read("lib.tsv");
    EXPECT_TRUE(text.contains("\tMAGIC(UniMod:4)PEPTIDEK\t"));
    EXPECT_TRUE(text.contains("\tM(UniMod:35)AGIC(UniMod:4)PEPTIDEK\t"));
    QMap<QString, double> precursors;
    const QStringList modified = everyCell("lib.tsv", "ModifiedPeptideSequence");
    const QStringList mz = everyCell("lib.tsv", "PrecursorMz");
    for (qsizetype i = 0; i < modified.size(); ++i)
        precursors[modified[i]] = mz[i].toDouble();
    EXPECT_NEAR(precursors["M(UniMod:35)AGIC(UniMod:4)PEPTIDEK"] - precursors["MAGIC(UniMod:4)PEPTIDEK"], 7.9974575,
                2e-5);
}

TEST_F(LibraryCommand, HoldsTheRetentionTimesThatTheProgramPredicts)
{
    run({"p.fasta", "-o", "lib.tsv", "--missed-cleavages", "0"});
    m_files.write("list.txt", "LVNELTEFAK\nSAMPLEPEPTIDER\n");
    const ProgramRun predicted = runZav({"retention", "--peptides", "list.txt"}, {}, m_files.path(QString()));
    QMap<QString, double> irt;
    for (const QString &line : linesOf(predicted.standardOutput).mid(1))
        irt[line.section('\t', 0, 0)] = line.section('\t', 1, 1).toDouble();
    ASSERT_EQ(irt.size(), 2);
    const QStringList peptides = everyCell("lib.tsv", "PeptideSequence");
    const QStringList times = everyCell("lib.tsv", "NormalizedRetentionTime");
    for (qsizetype i = 0; i < peptides.size(); ++i) {
        if (irt.contains(peptides[i])) {
            EXPECT_NEAR(times[i].toDouble(), irt[peptides[i]], 0.02) << peptides[i].toStdString();
        }
    }
}

TEST_F(LibraryCommand, RetentionTimesAreFittedToARunOrLeftOut)
{
    // A gradient of 2 min + iRT / 5, told by peptides whose iRT the program predicts.
    const QStringList known = {"LGGNEQVTR",    "GAGSSEPVTGLDAK", "VEATFGVDESNAK",  "YILAGVENSK",
                               "TPVISGGPYEYR", "TPVITGAPYEYR",   "DGLDAASYYAPVR",  "ADVTPADFSEWSK",
                               "GTFIIDPGGVIR", "GTFIIDPAAVIR",   "LFLQFGAQGSPFLK", "SAMPLEPEPTIDER"};
    m_files.write("list.txt", known.join('\n').toLatin1());
    const ProgramRun predicted = runZav({"retention", "--peptides", "list.txt"}, {}, m_files.path(QString()));
    QByteArray observed = "peptide\trt\n";
    for (const QString &line : linesOf(predicted.standardOutput).mid(1))
        observed += QStringLiteral("%1\t%2\n")
                        .arg(line.section('\t', 0, 0))
                        .arg(2 + line.section('\t', 1, 1).toDouble() / 5)
                        .toLatin1();
    m_files.write("run.tsv", observed);
    run({"p.fasta", "-o", "irt.tsv", "--missed-cleavages", "0"});
    const ProgramRun fitted = run({"p.fasta", "-o", "min.tsv", "--missed-cleavages", "0", "--calibrate", "run.tsv"});
    EXPECT_NE(fitted.standardError.find("calibrated with 12 pairs"), std::string::npos) << fitted.standardError;
    const QStringList irt = everyCell("irt.tsv", "NormalizedRetentionTime");
    const QStringList minutes = everyCell("min.tsv", "NormalizedRetentionTime");
    ASSERT_EQ(irt.size(), minutes.size());
    for (qsizetype i = 0; i < irt.size(); ++i)
        EXPECT_NEAR(minutes[i].toDouble(), 2 + irt[i].toDouble() / 5, 2.5); // a mixture of outputs, so not the same

    run({"p.fasta", "-o", "none.msp", "--missed-cleavages", "0", "--no-retention-times"});
    run({"p.fasta", "-o", "some.msp", "--missed-cleavages", "0"});
    EXPECT_NE(m_files.read("none.msp"), m_files.read("some.msp"));
}

TEST_F(LibraryCommand, TimesThatCannotBeFittedAreToldBeforeTheProteinsAreRead)
{
    m_files.write("few.tsv", "peptide\trt\nPEPTIDEK\t1\n");
    m_files.write("broken.fasta", "no protein\n");
    EXPECT_EQ(run({"broken.fasta", "-o", "lib.tsv", "--calibrate", "few.tsv"}, 1).standardError,
              "zav: cannot calibrate with few.tsv: A calibration needs 10 pairs that can be predicted, not 1\n");
    EXPECT_EQ(fileNames(), (QStringList{"broken.fasta", "few.tsv", "p.fasta"}));
}

TEST_F(LibraryCommand, EnergyChangesTheSpectraAndStandsInTheManifest)
{
    const QByteArray usual = library("a.tsv", {"p.fasta", "--charges", "2"});
    const QByteArray same = library("b.tsv", {"p.fasta", "--charges", "2", "--energy", "30"});
    const QByteArray higher = library("c.tsv", {"p.fasta", "--charges", "2", "--energy", "38.5"});
    EXPECT_EQ(same, usual); // 30 is what the network predicts by itself
    EXPECT_NE(higher, usual);
    EXPECT_TRUE(m_files.read("c.tsv.json").contains("\"collision_energy\": 38.5"));
}

TEST_F(LibraryCommand, WhatTheNetworksHaveNotSeenIsSaidOnce)
{
    const ProgramRun made = run({"p.fasta", "-o", "lib.tsv", "--missed-cleavages", "0", "--fixed", "TMT6plex@N-term",
                                 "--fixed", "Carbamidomethyl@C"});
    const QString told = QString::fromStdString(made.standardError);
    EXPECT_EQ(told.count("TMT6plex"), 1) << made.standardError;
}

TEST_F(LibraryCommand, TakesAListOfPeptides)
{
    m_files.write("list.txt", "SAMPLEPEPTIDER\nLVNELTEFAK\nSAMPLEPEPTIDER\n");
    run({"--peptides", "list.txt", "-o", "lib.tsv", "--charges", "2"});
    EXPECT_EQ(column("lib.tsv", "TransitionGroupId"), (QStringList{"LVNELTEFAK_2", "SAMPLEPEPTIDER_2"}));
}

TEST_F(LibraryCommand, WritesToStandardOutputWithoutAManifest)
{
    const QByteArray expected = library("lib.tsv", {"p.fasta"});
    const ProgramRun piped = run({"p.fasta", "-o", "-", "--format", "tsv"});
    EXPECT_EQ(piped.standardOutput, expected.toStdString());
    EXPECT_EQ(fileNames(), (QStringList{"lib.tsv", "lib.tsv.json", "p.fasta"}));
}

TEST_F(LibraryCommand, WritesToADeviceWithoutAManifest)
{
    const bool wasThere = QFileInfo::exists(QStringLiteral("/dev/null.json"));
    run({"p.fasta", "-o", "/dev/null", "--format", "tsv"});
    EXPECT_EQ(QFileInfo::exists(QStringLiteral("/dev/null.json")), wasThere);
}

TEST_F(LibraryCommand, FiltersPeaks)
{
    run({"p.fasta", "-o", "lib.tsv", "--missed-cleavages", "0", "--charges", "2", "--top", "3", "--no-losses",
         "--min-ion-number", "3"});
    const QStringList rows = linesOf(m_files.read("lib.tsv").toStdString()).mid(1);
    EXPECT_EQ(rows.size(), 4 * 3);
    EXPECT_EQ(column("lib.tsv", "FragmentLossType"), QStringList{"noloss"});
    for (const QString &number : column("lib.tsv", "FragmentSeriesNumber"))
        EXPECT_GE(number.toInt(), 3);
    EXPECT_TRUE(column("lib.tsv", "LibraryIntensity").contains("1.000000"));
}

TEST_F(LibraryCommand, BasePeakOfATsvIsOneOfItsRows)
{
    run({"p.fasta", "-o", "lib.tsv", "--charges", "2,3", "--isotopes"});
    QMap<QString, double> highest;
    for (const QString &row : linesOf(m_files.read("lib.tsv").toStdString()).mid(1)) {
        const QStringList cells = row.split(QLatin1Char('\t'));
        highest[cells[11]] = std::max(highest[cells[11]], cells[2].toDouble());
    }
    EXPECT_GT(highest.size(), 7);
    for (const double intensity : highest)
        EXPECT_EQ(intensity, 1.0);
}

TEST_F(LibraryCommand, DecoysStandAmongTheTargets)
{
    run({"p.fasta", "-o", "lib.tsv", "--missed-cleavages", "0", "--charges", "2", "--decoys", "reversed"});
    // All residues but the last reversed; the long one and GGGGGGK are their own reversal.
    EXPECT_EQ(column("lib.tsv", "TransitionGroupId"),
              (QStringList{LONGEST + "_2", "DECOY_AFETLENVLK_2", "DECOY_EDITPEPCIGAMK_2", "DECOY_EDITPEPELPMASR_2",
                           "LVNELTEFAK_2", "MAGICPEPTIDEK_2", "SAMPLEPEPTIDER_2"}));
    EXPECT_TRUE(column("lib.tsv", "ProteinId").contains("DECOY_P11111;DECOY_P22222"));
}

TEST_F(LibraryCommand, CysteineMassMovesPrecursorAndFragments)
{
    const QByteArray modified = library("a.tsv", {"p.fasta", "--charges", "2"});
    const QByteArray plain = library("b.tsv", {"p.fasta", "--charges", "2", "--cysteine", "0"});
    EXPECT_TRUE(modified.contains("MAGIC(UniMod:4)PEPTIDEK"));
    EXPECT_FALSE(plain.contains("UniMod"));
    EXPECT_NE(modified, plain);
}

TEST_F(LibraryCommand, FixedModificationOfCysteineIsChosenByNameOrByMass)
{
    const QByteArray usual = library("a.tsv", {"p.fasta", "--charges", "2"});
    EXPECT_EQ(library("b.tsv", {"p.fasta", "--charges", "2", "--fixed", "carbamidomethyl@C"}), usual);
    EXPECT_EQ(m_files.read("b.tsv.json"), m_files.read("a.tsv.json"));
    EXPECT_EQ(library("c.tsv", {"p.fasta", "--charges", "2", "--fixed", "none"}),
              library("d.tsv", {"p.fasta", "--charges", "2", "--cysteine", "0"}));
    const QByteArray other = library("e.tsv", {"p.fasta", "--charges", "2", "--fixed", "UNIMOD:24@C"});
    EXPECT_TRUE(other.contains("MAGIC(UniMod:24)PEPTIDEK"));
}

TEST_F(LibraryCommand, ManifestNamesTheModifications)
{
    library("a.tsv", {"p.fasta"});
    const QByteArray manifest = m_files.read("a.tsv.json").simplified();
    EXPECT_TRUE(manifest.contains(R"("modifications": { "fixed": [ "Carbamidomethyl@C" ], "variable": [] })"))
        << manifest.toStdString();
    EXPECT_NE(run({"p.fasta", "-o", "a.tsv", "--resume"}).standardError.find("is complete"), std::string::npos);
    EXPECT_EQ(run({"p.fasta", "-o", "a.tsv", "--resume", "--fixed", "none"}).standardError.find("is complete"),
              std::string::npos);
}

TEST_F(LibraryCommand, ListMayNameAModifiedPeptide)
{
    m_files.write("list.txt", "MAGIC[Carbamidomethyl]PEPTIDEK\nMAGICPEPTIDEK\n");
    run({"--peptides", "list.txt", "-o", "lib.tsv", "--charges", "2"});
    EXPECT_EQ(column("lib.tsv", "TransitionGroupId"), QStringList{"MAGICPEPTIDEK_2"});
}

TEST_F(LibraryCommand, IsTheSameToTheByteWhateverThreadsAndMemory)
{
    m_files.write("many.fasta", randomProteins(25, 300));
    const QStringList arguments = {"many.fasta", "--decoys", "shuffled"};
    const QByteArray one = library("1.msp", arguments + QStringList{"--threads", "1"});
    EXPECT_GT(one.size(), 1000000);
    for (const char *threads : {"2", "5"})
        EXPECT_TRUE(library("n.msp", arguments + QStringList{"--threads", threads}) == one) << threads;
    EXPECT_TRUE(library("m.msp", arguments + QStringList{"--low-memory"}) == one);
    EXPECT_EQ(m_files.read("m.msp.json"), m_files.read("1.msp.json"));
}

TEST_F(LibraryCommand, ResumeSkipsWhatIsCompleteAndNothingElse)
{
    const QStringList arguments = {"p.fasta", "-o", "lib.tsv", "--resume"};
    run(arguments);
    const QByteArray first = m_files.read("lib.tsv");
    EXPECT_EQ(run(arguments).standardError, "zav: lib.tsv is complete\n");

    const auto isRemade = [&](const QStringList &more = {}) {
        return run(arguments + more).standardError.find("is complete") == std::string::npos;
    };
    m_files.write("lib.tsv", first + "x");
    EXPECT_TRUE(isRemade()) << "damaged";
    EXPECT_EQ(m_files.read("lib.tsv"), first);
    EXPECT_TRUE(isRemade({"--top", "5"})) << "another setting";
    EXPECT_TRUE(isRemade()) << "the setting before";
    EXPECT_TRUE(isRemade({"--shard", "1/2"})) << "a shard";
    EXPECT_TRUE(isRemade()) << "the whole";
    QFile::remove(m_files.path("lib.tsv.json"));
    EXPECT_TRUE(isRemade()) << "no manifest";
    QFile::remove(m_files.path("lib.tsv"));
    EXPECT_TRUE(isRemade()) << "no library";
    m_files.write("p.fasta", QByteArray(PROTEINS) + ">more\nPEPTIDEPEPTIDEK\n");
    EXPECT_TRUE(isRemade()) << "another input";
    EXPECT_FALSE(isRemade({"--threads", "1", "--low-memory"})) << "other means";
}

TEST_F(LibraryCommand, WithoutResumeTheLibraryIsMadeAgain)
{
    run({"p.fasta", "-o", "lib.tsv"});
    EXPECT_NE(run({"p.fasta", "-o", "lib.tsv"}).standardError.find("precursors written"), std::string::npos);
}

TEST_F(LibraryCommand, NothingToWriteIsAFailureAndKeepsTheOlderFile)
{
    m_files.write("lib.tsv", "older");
    const ProgramRun failed = run({"p.fasta", "-o", "lib.tsv", "--max-precursor-mz", "300"}, 1);
    EXPECT_NE(failed.standardError.find("no precursor is left"), std::string::npos);
    EXPECT_EQ(m_files.read("lib.tsv"), "older");
    EXPECT_EQ(fileNames(), (QStringList{"lib.tsv", "p.fasta"}));
}

TEST_F(LibraryCommand, AnEmptyListIsSaidToHoldNoPeptide)
{
    m_files.write("none.txt", "peptide\n");
    const ProgramRun failed = run({"--peptides", "none.txt", "-o", "lib.tsv"}, 1);
    EXPECT_EQ(linesOf(failed.standardError).last(), "zav: no peptide of 7 to 30 residues in none.txt");
}

TEST_F(LibraryCommand, TheTableOfACalibrationIsNotOverwritten)
{
    m_files.write("run.tsv", "peptide\trt\n");
    EXPECT_EQ(linesOf(run({"p.fasta", "-o", "run.tsv", "--calibrate", "run.tsv"}, 2).standardError).first(),
              "zav: run.tsv would be overwritten");
    EXPECT_EQ(
        linesOf(run({"p.fasta", "-o", "lib.tsv", "--calibrate", "run.tsv", "--skipped", "run.tsv"}, 2).standardError)
            .first(),
        "zav: run.tsv would be overwritten");
    EXPECT_EQ(m_files.read("run.tsv"), "peptide\trt\n");
}

TEST_F(LibraryCommand, InputsThatCannotBeReadAreNamed)
{
    EXPECT_NE(run({"none.fasta", "-o", "lib.tsv"}, 1).standardError.find("none.fasta"), std::string::npos);
    m_files.write("bad.fasta", "PEPTIDE without a header\n");
    EXPECT_NE(run({"bad.fasta", "-o", "lib.tsv"}, 1).standardError.find("bad.fasta"), std::string::npos);
    EXPECT_NE(run({"p.fasta", "-o", "lib.tsv", "--models", "nowhere"}, 1).standardError.find("nowhere"),
              std::string::npos);
    EXPECT_EQ(fileNames(), (QStringList{"bad.fasta", "p.fasta"}));
}

TEST_F(LibraryCommand, OutputsThatCannotBeWrittenAreNamed)
{
    EXPECT_NE(run({"p.fasta", "-o", "no/folder/lib.tsv"}, 1).standardError.find("no/folder/lib.tsv"),
              std::string::npos);
    EXPECT_NE(run({"p.fasta", "-o", "lib.tsv", "--skipped", "no/skipped.tsv"}, 1).standardError.find("no/skipped.tsv"),
              std::string::npos);
    EXPECT_EQ(fileNames(), QStringList{"p.fasta"});
}

TEST_F(LibraryCommand, RefusesWhatContradictsTheManual)
{
    const QList<QStringList> wrong = {
        {"-o", "lib.tsv"},
        {"p.fasta"},
        {"p.fasta", "--peptides", "p.fasta", "-o", "lib.tsv"},
        {"p.fasta", "-o", "lib.xyz"},
        {"p.fasta", "-o", "lib.tsv", "--format", "xyz"},
        {"p.fasta", "-o", "p.fasta", "--format", "tsv"},
        {"p.fasta", "-o", "-", "--format", "dlib"},
        {"p.fasta", "-o", "-", "--format", "tsv", "--resume"},
        {"-", "-o", "lib.tsv", "--resume"},
        {"p.fasta", "-o", "lib.tsv", "--enzyme", "scissors"},
        {"p.fasta", "-o", "lib.tsv", "--cleavage-pattern", "[KR]"},
        {"p.fasta", "-o", "lib.tsv", "--missed-cleavages", "-1"},
        {"p.fasta", "-o", "lib.tsv", "--min-length", "9", "--max-length", "8"},
        {"p.fasta", "-o", "lib.tsv", "--charges", "7"},
        {"p.fasta", "-o", "lib.tsv", "--energy", "9"},
        {"p.fasta", "-o", "lib.tsv", "--energy", "nan"},
        {"p.fasta", "-o", "lib.tsv", "--calibrate", "run.tsv", "--no-retention-times"},
        {"p.fasta", "-o", "lib.tsv", "--calibrate", "-"},
        {"p.fasta", "-o", "lib.tsv", "--decoys", "mirrored"},
        {"p.fasta", "-o", "lib.tsv", "--shard", "5/4"},
        {"p.fasta", "-o", "lib.tsv", "--threads", "-1"},
        {"p.fasta", "-o", "lib.tsv", "--min-precursor-mz", "500", "--max-precursor-mz", "400"},
        {"p.fasta", "-o", "lib.tsv", "--cysteine", "nan"},
        {"p.fasta", "-o", "lib.tsv", "--cysteine", "0", "--fixed", "none"},
        {"p.fasta", "-o", "lib.tsv", "--fixed", "none", "--fixed", "Methyl@K"},
        {"p.fasta", "-o", "lib.tsv", "--variable", "Foo@M"},
        {"p.fasta", "-o", "lib.tsv", "--variable", "Carbamidomethyl@C"},
        {"p.fasta", "-o", "lib.tsv", "--max-variable", "11"},
        {"p.fasta", "-o", "lib.tsv", "--top", "-1"},
        {"p.fasta", "-o", "lib.tsv", "--min-intensity", "1.5"},
        {"p.fasta", "-o", "lib.tsv", "--min-ion-number", "0"},
        {"p.fasta", "-o", "lib.tsv", "--unheard-of"}};
    for (const QStringList &arguments : wrong)
        EXPECT_NE(run(arguments, 2).standardError.find("zav library --help"), std::string::npos);
    EXPECT_EQ(fileNames(), QStringList{"p.fasta"});
}

TEST_F(LibraryCommand, TheTaskOfASlurmArrayMakesItsShard)
{
    qputenv("SLURM_ARRAY_TASK_ID", "1");
    qputenv("SLURM_ARRAY_TASK_COUNT", "2");
    qputenv("SLURM_ARRAY_TASK_MIN", "0");
    const ProgramRun made = run({"p.fasta", "-o", "lib.{shard}.tsv", "--missed-cleavages", "0"});
    const ProgramRun whole = run({"p.fasta", "-o", "all.tsv", "--shard", "1/1"});
    for (const char *variable : {"SLURM_ARRAY_TASK_ID", "SLURM_ARRAY_TASK_COUNT", "SLURM_ARRAY_TASK_MIN"})
        qunsetenv(variable);
    EXPECT_EQ(made.standardError.substr(0, 15), "zav: shard 2/2\n");
    // Five peptides: the second half begins with the third.
    EXPECT_EQ(column("lib.2-of-2.tsv", "PeptideSequence"),
              (QStringList{"LVNELTEFAK", "MAGICPEPTIDEK", "SAMPLEPEPTIDER"}));
    EXPECT_EQ(whole.standardError.find("shard"), std::string::npos);
}

/// Whether a process has a file of the folder open beside what it reads. Such a file may have no name as yet.
bool writesTo(const QString &folder, qint64 process)
{
    const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(process));
    for (const QFileInfo &link : descriptors.entryInfoList(QDir::Files | QDir::System | QDir::Hidden)) {
        const QString target = link.symLinkTarget();
        if (target.startsWith(QDir(folder).canonicalPath()) && !target.endsWith(QLatin1String(".fasta")))
            return true;
    }
    return false;
}

/// Ends a run while it works, and returns its exit code.
int interrupted(const QString &folder, const QString &name, int signal)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setChildProcessModifier([] { std::signal(SIGINT, SIG_DFL); });
    process.start(QStringLiteral(ZAV_PROGRAM), {"library", "big.fasta", "-o", name, "--skipped", "skipped.tsv"});
    EXPECT_TRUE(process.waitForStarted());
    for (int i = 0; i < 3000 && !writesTo(folder, process.processId()); ++i)
        QThread::msleep(10);
    QThread::msleep(500);
    ::kill(pid_t(process.processId()), signal);
    return process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

TEST_F(LibraryCommand, AnInterruptLeavesNothingBehind)
{
    m_files.write("big.fasta", randomProteins(4000, 400));
    EXPECT_EQ(interrupted(m_files.path(QString()), "lib.tsv", SIGTERM), 143);
    EXPECT_EQ(fileNames(), (QStringList{"big.fasta", "p.fasta"}));
    EXPECT_EQ(interrupted(m_files.path(QString()), "lib.tsv", SIGINT), 130);
    EXPECT_EQ(fileNames(), (QStringList{"big.fasta", "p.fasta"}));
    EXPECT_EQ(interrupted(m_files.path(QString()), "lib.dlib", SIGTERM), 143);
    EXPECT_EQ(fileNames(), (QStringList{"big.fasta", "p.fasta"}));
}

} // namespace
} // namespace zav
