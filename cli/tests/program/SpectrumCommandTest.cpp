// SPDX-License-Identifier: Apache-2.0
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <QtCore/QFileInfo>
#include <QtCore/QMap>
#include <QtCore/QRegularExpression>
#include <QtCore/QSet>
#include <QtCore/QTemporaryDir>

namespace zav {
namespace {

const QString PEPTIDE = QStringLiteral("LQSRPAAPPAPGPGQLTLR");
const QString MEASURED = QStringLiteral(ZAV_TEST_DATA_DIR "/LQSRPAAPPAPGPGQLTLR.mgf");

// The program and pyteomics agree to the fifth decimal that is written, which may round either way.
constexpr double MZ_TOLERANCE = 1.5e-5;

/// The cells of a TSV text, header left out.
QList<QStringList> rows(const std::string &text)
{
    QList<QStringList> rows;
    for (const QString &line : linesOf(text).mid(1))
        rows.append(line.split(QLatin1Char('\t')));
    return rows;
}

/// m/z by ion name.
QMap<QString, double> ions(const std::string &tsv)
{
    QMap<QString, double> ions;
    for (const QStringList &row : rows(tsv))
        ions.insert(row.value(2), row.value(0).toDouble());
    return ions;
}

TEST(SpectrumCommand, PipedOutputIsTsvOrderedByMz)
{
    const ProgramRun run = runZav({"spectrum", PEPTIDE, "3"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardError, "");
    EXPECT_EQ(linesOf(run.standardOutput).first().toStdString(), "mz\tintensity");
    double previous = 0;
    for (const QStringList &row : rows(run.standardOutput)) {
        ASSERT_EQ(row.size(), 2);
        EXPECT_GE(row[0].toDouble(), previous);
        EXPECT_LE(row[0].toDouble(), 2000.0);
        EXPECT_GE(row[1].toDouble(), 0.025);
        previous = row[0].toDouble();
    }
    EXPECT_GT(previous, 0);
}

// m/z by pyteomics 4.7.5.
TEST(SpectrumCommand, NamedIonsStandAtTheirTheoreticalMz)
{
    const ProgramRun run = runZav({"spectrum", PEPTIDE, "3", "--annotate", "--format", "tsv"});
    EXPECT_EQ(run.exitCode, 0);
    const QMap<QString, double> found = ions(run.standardOutput);
    // The ions that the measured spectrum shows best, so that every good network predicts them.
    const QMap<QString, double> expected = {{"y1+", 175.11895},  {"b7+", 724.41005},  {"y7+", 784.46756},
                                            {"y7++", 392.73742}, {"y8+", 841.48903},  {"b10+", 989.55269},
                                            {"y9+", 938.54179},  {"y9++", 469.77453}, {"y9++ i1", 470.27621}};
    for (auto it = expected.cbegin(); it != expected.cend(); ++it)
        EXPECT_NEAR(found.value(it.key()), it.value(), MZ_TOLERANCE) << it.key().toStdString();
}

TEST(SpectrumCommand, BasePeakOfAPlainSpectrumIsOne)
{
    const ProgramRun run = runZav({"spectrum", PEPTIDE, "2", "--no-isotopes"});
    double highest = 0;
    for (const QStringList &row : rows(run.standardOutput))
        highest = std::max(highest, row[1].toDouble());
    EXPECT_NEAR(highest, 1.0, 1e-6);
}

TEST(SpectrumCommand, IsotopesOfIonsThatAreThemselvesTooLowAreNamedToo)
{
    const ProgramRun run = runZav({"spectrum", "AAAAEEEGGGKLLLPPPDDDVVVTTTSSSNNNQQQHHHIIIRRRKK", "4", "--annotate"});
    for (const QStringList &row : rows(run.standardOutput))
        EXPECT_NE(row.value(2).toStdString(), "") << row[0].toStdString();
}

TEST(SpectrumCommand, IonNamesChangeNoPeakAndEachIsGivenOnce)
{
    // y12-NH3+ i4 and y22++ i2 lie within 0.0001 m/z of each other.
    const QStringList precursor{"spectrum", "HDNTGRYKAEYYNHCNMFCHKCYHAMQNGYLDHCSVSD", "5"};
    const QList<QStringList> plain = rows(runZav(precursor).standardOutput);
    const QList<QStringList> named = rows(runZav(precursor + QStringList{"--annotate"}).standardOutput);
    ASSERT_EQ(named.size(), plain.size());
    QSet<QString> names;
    for (int i = 0; i < named.size(); ++i) {
        EXPECT_EQ(named[i].mid(0, 2), plain[i].mid(0, 2));
        EXPECT_FALSE(names.contains(named[i].value(2))) << named[i].value(2).toStdString();
        names.insert(named[i].value(2));
    }
}

TEST(SpectrumCommand, WithoutIsotopesOnlyMonoisotopicPeaksStay)
{
    const auto with = ions(runZav({"spectrum", PEPTIDE, "3", "--annotate"}).standardOutput);
    const auto without = ions(runZav({"spectrum", PEPTIDE, "3", "--annotate", "--no-isotopes"}).standardOutput);
    EXPECT_GT(with.size(), without.size());
    for (const QString &name : without.keys()) {
        EXPECT_FALSE(name.contains(QStringLiteral(" i"))) << name.toStdString();
        EXPECT_TRUE(with.contains(name)) << name.toStdString();
    }
}

TEST(SpectrumCommand, CysteineMassMovesExactlyTheIonsThatContainIt)
{
    const QString peptide = "LECVEPNCR";
    const QStringList common{"spectrum", peptide, "2", "--annotate", "--no-isotopes", "--cysteine"};
    const auto bare = ions(runZav(common + QStringList{"0"}).standardOutput);
    const auto heavy = ions(runZav(common + QStringList{"57.02146"}).standardOutput);
    EXPECT_EQ(bare.keys(), heavy.keys());
    QSet<qsizetype> counts;
    for (const QString &ion : bare.keys()) {
        const int number = QString(ion).remove(QRegularExpression("^[aby]|[-+].*$")).toInt();
        const QString residues = ion.startsWith('y') ? peptide.right(number) : peptide.left(number);
        const qsizetype cysteines = residues.count('C');
        EXPECT_NEAR(heavy[ion] - bare[ion], cysteines * 57.02146 / ion.count('+'), MZ_TOLERANCE) << ion.toStdString();
        counts.insert(cysteines);
    }
    EXPECT_EQ(counts, QSet<qsizetype>({0, 1, 2}));
}

TEST(SpectrumCommand, JsonHoldsTheSameNumbersAsTsv)
{
    const auto json =
        nlohmann::json::parse(runZav({"spectrum", PEPTIDE, "3", "--format", "json", "--annotate"}).standardOutput);
    const nlohmann::json &spectrum = json["spectra"].at(0);
    const QList<QStringList> tsv = rows(runZav({"spectrum", PEPTIDE, "3", "--annotate"}).standardOutput);
    ASSERT_EQ(spectrum["mz"].size(), size_t(tsv.size()));
    for (size_t i = 0; i < spectrum["mz"].size(); ++i) {
        EXPECT_NEAR(spectrum["mz"][i].get<double>(), tsv[int(i)][0].toDouble(), 1e-9);
        EXPECT_NEAR(spectrum["intensity"][i].get<double>(), tsv[int(i)][1].toDouble(), 1e-9);
    }
    EXPECT_NEAR(spectrum["precursor_mz"].get<double>(), 643.03392, MZ_TOLERANCE); // pyteomics 4.7.5
}

TEST(SpectrumCommand, MspIsScaledToTenThousandWithEveryPeakCounted)
{
    const QStringList lines = linesOf(runZav({"spectrum", PEPTIDE, "3", "--format", "msp"}).standardOutput);
    EXPECT_EQ(lines[0], "Name: " + PEPTIDE + "/3");
    EXPECT_EQ(lines[1].toStdString(), "MW: 1926.07993"); // pyteomics 4.7.5
    EXPECT_EQ(lines[2].toStdString(), "PrecursorMZ: 643.03392");
    EXPECT_EQ(lines[4].toStdString(), "Comment: Parent=643.03392 Mods=0");
    EXPECT_EQ(lines[5], QStringLiteral("Num peaks: %1").arg(lines.size() - 6));
    EXPECT_EQ(lines.filter(QRegularExpression("\t10000\\.0\t\"[by]\\d+(\\^[23])?/0\\.0ppm\"$")).size(), 1);
}

TEST(SpectrumCommand, MgfSaysThatItHasNoPlaceForIonNames)
{
    const ProgramRun run = runZav({"spectrum", PEPTIDE, "3", "--format", "mgf", "--annotate"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardError, "zav: MGF cannot hold ion names; --annotate has no effect\n");
    EXPECT_EQ(linesOf(run.standardOutput).filter(" 10000.0").size(), 1);
}

TEST(SpectrumCommand, OutputFileTakesTheFormatOfItsEnding)
{
    QTemporaryDir folder;
    const ProgramRun run = runZav({"spectrum", PEPTIDE, "3", "-o", "out.mgf"}, {}, folder.path());
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardOutput, "");
    EXPECT_TRUE(readFile(folder.filePath("out.mgf")).startsWith("BEGIN IONS\nTITLE=LQSRPAAPPAPGPGQLTLR/3\n"));
}

TEST(SpectrumCommand, ModifiedIonsStandAtTheirTheoreticalMz)
{
    const ProgramRun run = runZav(
        {"spectrum", "AC[Carbamidomethyl]DM[Oxidation]LVEEYK", "2", "--energy", "27", "--annotate", "--no-isotopes"});
    EXPECT_EQ(run.exitCode, 0) << run.standardError;
    EXPECT_EQ(run.standardError, "");
    const QMap<QString, double> found = ions(run.standardOutput);
    // Sums of the residues' masses of Matrix Science's table, of Unimod's and of water and the proton, to 6 digits.
    const QMap<QString, double> expected = {{"y1+", 147.112804},       {"y2+", 310.176133},  {"y3+", 439.218726},
                                            {"y4+", 568.261319},       {"y5+", 667.329733},  {"y6+", 780.413797},
                                            {"y7+", 927.449197},       {"y8+", 1042.476140}, {"b2+", 232.075039},
                                            {"y7-CH4OS+", 863.450912}, {"b3+", 347.101982}};
    int count = 0;
    for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
        if (!found.contains(it.key()))
            continue;
        ++count;
        EXPECT_NEAR(found.value(it.key()), it.value(), MZ_TOLERANCE) << it.key().toStdString();
    }
    EXPECT_GE(count, 6) << run.standardOutput;
}

TEST(SpectrumCommand, EnergyChangesTheSpectrumOfAPlainPeptide)
{
    const QStringList precursor{"spectrum", PEPTIDE, "3", "--annotate", "--no-isotopes"};
    const auto low = runZav(precursor + QStringList{"--energy", "22"});
    const auto high = runZav(precursor + QStringList{"--energy", "38"});
    EXPECT_EQ(low.exitCode, 0);
    EXPECT_NE(low.standardOutput, high.standardOutput);
    EXPECT_NEAR(ions(low.standardOutput).value("y7+"), 784.46756, MZ_TOLERANCE);
}

TEST(SpectrumCommand, CysteinesAreBlockedOnlyWithoutModifications)
{
    const QStringList options{"2", "--energy", "30", "--annotate", "--no-isotopes"};
    const auto run = [&](const char *peptide) { return runZav(QStringList{"spectrum", peptide} + options); };
    const ProgramRun plain = run("LECVEPNCR");
    EXPECT_EQ(plain.standardError, "");
    EXPECT_EQ(plain.standardOutput, run("LEC[Carbamidomethyl]VEPNC[Carbamidomethyl]R").standardOutput);
    const ProgramRun free = run("LEC[Carbamidomethyl]VEPNCR");
    EXPECT_EQ(free.exitCode, 0);
    EXPECT_EQ(free.standardError, "zav: cysteine without a modification is unknown to the network: m/z are right, "
                                  "intensities may be wrong\n");
    // y2: C 103.009185, R 156.101111, water and a proton.
    EXPECT_NEAR(ions(free.standardOutput).value("y2+", 278.12814), 278.12814, MZ_TOLERANCE);
}

TEST(SpectrumCommand, ModificationsThatTheNetworkHasNotSeenAreNotedOnce)
{
    const ProgramRun run =
        runZav({"spectrum", "--peptides", "-", "--no-isotopes"}, "[TMT6plex]-PEPTIDER\t2\n[TMT6plex]-SAMPLER\t2\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardError, "zav: modification TMT6plex at the N-terminus is unknown to the network: m/z are "
                                 "right, intensities may be wrong\n");
}

TEST(SpectrumCommand, ListHoldsModificationsAndEnergies)
{
    const QByteArray list = "peptide\tcharge\tenergy\nPEPTIDEK\t2\t\nM[UNIMOD:35]SAMPLER\t2\t27.5\nPEPTIDEK\t2\t35\n";
    const ProgramRun run = runZav({"spectrum", "--peptides", "-", "--no-isotopes"}, list);
    EXPECT_EQ(run.exitCode, 0) << run.standardError;
    EXPECT_EQ(linesOf(run.standardOutput).first().toStdString(), "mz\tintensity\tpeptide\tcharge\tenergy");
    QStringList order;
    QByteArray first;
    for (const QStringList &row : rows(run.standardOutput)) {
        order.append(row.mid(2).join('/'));
        if (order.last() == "PEPTIDEK/2/")
            first += (row[0] + '\t' + row[1] + '\n').toUtf8();
    }
    order.removeDuplicates();
    EXPECT_EQ(order, QStringList({"PEPTIDEK/2/", "M[Oxidation]SAMPLER/2/27.5", "PEPTIDEK/2/35"}));
    EXPECT_EQ(first.toStdString().insert(0, "mz\tintensity\n"),
              runZav({"spectrum", "PEPTIDEK", "2", "--no-isotopes"}).standardOutput)
        << "a plain peptide without energy is predicted as ever";
}

TEST(SpectrumCommand, ModifiedSpectraHaveIsotopes)
{
    const QStringList precursor{"spectrum", "AGS[Phospho]DALVEEYK", "2", "--annotate"};
    const auto with = ions(runZav(precursor).standardOutput);
    const auto without = ions(runZav(precursor + QStringList{"--no-isotopes"}).standardOutput);
    EXPECT_GT(with.size(), without.size());
    for (auto ion = with.cbegin(); ion != with.cend(); ++ion) {
        const QString monoisotopic = ion.key().section(' ', 0, 0);
        EXPECT_TRUE(without.contains(monoisotopic)) << ion.key().toStdString();
        if (ion.key().endsWith(" i1")) {
            EXPECT_NEAR(ion.value() - with[monoisotopic], 1.0033548 / monoisotopic.count('+'), 2 * MZ_TOLERANCE);
        }
    }
    EXPECT_FALSE(QStringList(without.keys()).filter("-H3PO4").isEmpty());
}

TEST(SpectrumCommand, FormatsCarryTheModifications)
{
    const QStringList precursor{"spectrum", "[Acetyl]-AC[Carbamidomethyl]DM[Oxidation]K", "2", "--no-isotopes",
                                "--format"};
    const QStringList msp = linesOf(runZav(precursor + QStringList{"msp"}).standardOutput);
    // A 71.037114, C 103.009185, D 115.026943, M 131.040485, K 128.094963,
    // water 18.010565; 42.010565, 57.021464, 15.994915.
    EXPECT_EQ(msp[0].toStdString(), "Name: ACDMK/2");
    EXPECT_EQ(msp[1].toStdString(), "MW: 681.24620");
    EXPECT_EQ(msp[4].section("Mods=", 1).toStdString(), "3/0,A,Acetyl/1,C,Carbamidomethyl/3,M,Oxidation");
    const QStringList mgf = linesOf(runZav(precursor + QStringList{"mgf"}).standardOutput);
    EXPECT_EQ(mgf[2].toStdString(), "PEPMASS=341.63038");
    const auto json = nlohmann::json::parse(runZav(precursor + QStringList{"json"}).standardOutput);
    EXPECT_EQ(json["spectra"][0]["peptide"], "[Acetyl]-AC[Carbamidomethyl]DM[Oxidation]K");
}

TEST(SpectrumCommand, ComparisonKnowsTheModifications)
{
    QTemporaryDir folder;
    const QStringList precursor{"spectrum", "AC[Carbamidomethyl]DM[Oxidation]LVEEYK", "2", "--energy", "27"};
    const QString mgf = folder.filePath("predicted.mgf");
    ASSERT_EQ(runZav(precursor + QStringList{"-o", mgf}).exitCode, 0);
    const ProgramRun same = runZav(precursor + QStringList{"--against", mgf, "-o", folder.filePath("out.tsv")});
    EXPECT_EQ(same.standardOutput.find("spectral angle 1.000, cosine 1.000"), 0u) << same.standardOutput;
}

TEST(SpectrumCommand, MeasuredSpectrumIsExplained)
{
    QTemporaryDir folder;
    const ProgramRun run = runZav({"spectrum", PEPTIDE, "3", "--against", MEASURED, "-o", folder.filePath("out.tsv")});
    EXPECT_EQ(run.exitCode, 0) << run.standardError;
    const QRegularExpression form("^spectral angle (0\\.\\d{3}), cosine (0\\.\\d{3}) over b and y ions\n(\\d+) of 299 "
                                  "observed peaks explained, (\\d+\\.\\d) % of the intensity\n$");
    const QRegularExpressionMatch match = form.match(QString::fromStdString(run.standardOutput));
    ASSERT_TRUE(match.hasMatch()) << run.standardOutput;
    EXPECT_GE(match.captured(2).toDouble(), 0.75); // two measurements of a precursor agree to about 0.9
    EXPECT_NEAR(match.captured(1).toDouble(), 1 - 2 * std::acos(match.captured(2).toDouble()) / M_PI, 2e-3);
    EXPECT_GT(match.captured(3).toInt(), 30);
}

TEST(SpectrumCommand, ComparisonStaysOutOfAPipedSpectrum)
{
    const ProgramRun run = runZav({"spectrum", PEPTIDE, "3", "--against", MEASURED});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(linesOf(run.standardOutput).first().toStdString(), "mz\tintensity");
    EXPECT_EQ(run.standardOutput.find("angle"), std::string::npos);
    EXPECT_EQ(run.standardError.find("spectral angle "), 0u);
}

TEST(SpectrumCommand, WrongPeptideIsExplainedFarLess)
{
    const ProgramRun run = runZav({"spectrum", "SAMPLERPEPTIDEK", "3", "--against", MEASURED});
    const double cosine = QString::fromStdString(run.standardError).section("cosine ", 1).left(5).toDouble();
    EXPECT_LT(cosine, 0.5);
}

TEST(SpectrumCommand, PeptideListKeepsItsOrderAndNamesEachRow)
{
    const QByteArray list = "peptide\tcharge\r\nPEPTIDEK\t2\r\nSAMPLER\t1\r\nPEPTIDEK\t3\r\n";
    const ProgramRun run = runZav({"spectrum", "--peptides", "-", "--no-isotopes"}, list);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.standardError, "");
    EXPECT_EQ(linesOf(run.standardOutput).first().toStdString(), "mz\tintensity\tpeptide\tcharge");
    QStringList order;
    for (const QStringList &row : rows(run.standardOutput))
        order.append(row[2] + "/" + row[3]);
    order.removeDuplicates();
    EXPECT_EQ(order, QStringList({"PEPTIDEK/2", "SAMPLER/1", "PEPTIDEK/3"}));
}

TEST(SpectrumCommand, ListGivesEachPeptideWhatItGetsAlone)
{
    const ProgramRun list = runZav({"spectrum", "--peptides", "-"}, "PEPTIDEK\t2\nSAMPLER\t2\n");
    const ProgramRun alone = runZav({"spectrum", "SAMPLER", "2"});
    QList<QStringList> inList;
    for (const QStringList &row : rows(list.standardOutput)) {
        if (row[2] == "SAMPLER")
            inList.append(row.mid(0, 2));
    }
    EXPECT_FALSE(inList.isEmpty());
    EXPECT_EQ(inList, rows(alone.standardOutput));
}

TEST(SpectrumCommand, ListLongerThanABlockIsPredictedWhole)
{
    const ProgramRun run = runZav({"spectrum", "--peptides", "-", "--no-isotopes", "--format", "mgf"},
                                  QByteArray("PEPTIDEK\t2\nSAMPLERPEPTIDEK\t3\n").repeated(400));
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(QString::fromStdString(run.standardOutput).count("TITLE=PEPTIDEK/2\n"), 400);
    EXPECT_EQ(QString::fromStdString(run.standardOutput).count("TITLE=SAMPLERPEPTIDEK/3\n"), 400);
}

TEST(SpectrumCommand, LongestPeptideOfEachChargeIsPredicted)
{
    QByteArray list;
    for (const auto &[charge, length] : QMap<int, int>{{1, 27}, {2, 43}, {3, 50}, {4, 52}, {5, 50}}.asKeyValueRange())
        list += QByteArray(length - 1, 'A') + "K\t" + QByteArray::number(charge) + '\n';
    const ProgramRun run = runZav({"spectrum", "--peptides", "-"}, list);
    EXPECT_EQ(run.exitCode, 0) << run.standardError;
}

TEST(SpectrumCommand, PictureIsDrawnOrSaidToBeImpossible)
{
    QTemporaryDir folder;
    const ProgramRun run =
        runZav({"spectrum", PEPTIDE, "3", "--against", MEASURED, "--plot", "mirror.svg"}, {}, folder.path());
    if (run.exitCode == 0) {
        EXPECT_TRUE(readFile(folder.filePath("mirror.svg")).contains("<svg"));
        return;
    }
    EXPECT_EQ(run.standardError, "zav: this build of zav cannot draw pictures\n");
    EXPECT_EQ(run.standardOutput, "");
}

TEST(SpectrumCommand, VersionIsPrinted)
{
    EXPECT_EQ(runZav({"--version"}).standardOutput, "zav " ZAV_VERSION "\n");
}

} // namespace
} // namespace zav
