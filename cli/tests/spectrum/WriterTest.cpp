// SPDX-License-Identifier: Apache-2.0
#include "PeptideMasses.h"
#include "SpectrumWriter.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace zav {
namespace {

// ACDEFGHK with 57.02146 Da on its C, 2+; masses by pyteomics 4.7.5.
PredictedSpectrum example()
{
    PredictedSpectrum spectrum;
    spectrum.precursor = {QStringLiteral("ACDEFGHK"), 2};
    spectrum.peptidoform = withCysteines(spectrum.precursor.peptide, 57.02146);
    spectrum.precursorMz = 482.20308;
    spectrum.cysteineMass = 57.02146;
    spectrum.peaks = {{437.67925, 0.05, u'y', 7, 2, QStringLiteral("-H2O"), 0},
                      {617.30419, 1.0, u'y', 5, 1, {}, 0},
                      {618.3075448, 0.33, u'y', 5, 1, {}, 1}};
    FragmentPeak unknown;
    unknown.mz = 700.5;
    unknown.intensity = 0.1;
    spectrum.peaks.append(unknown);
    return spectrum;
}

// The same with its cysteine oxidised instead, at an energy.
PredictedSpectrum modifiedExample()
{
    PredictedSpectrum spectrum = example();
    spectrum.precursor = {QStringLiteral("AC[+47.9847]DEFGHK"), 2, 27.5};
    spectrum.peptidoform = Peptidoform::fromProForma(QStringLiteral("AC[+47.9847]DEFGHK")).value();
    return spectrum;
}

std::string document(OutputFormat format, const WriterOptions &options, const QList<PredictedSpectrum> &spectra)
{
    const auto writer = makeSpectrumWriter(format, options);
    QByteArray text = writer->opening();
    for (int i = 0; i < spectra.size(); ++i)
        text += writer->spectrum(spectra[i], i == 0);
    return (text + writer->closing()).toStdString();
}

TEST(TsvWriter, HeaderAndOnePeakALine)
{
    EXPECT_EQ(document(OutputFormat::Tsv, {}, {example()}), "mz\tintensity\n"
                                                            "437.67925\t0.050000\n"
                                                            "617.30419\t1.000000\n"
                                                            "618.30754\t0.330000\n"
                                                            "700.50000\t0.100000\n");
}

TEST(TsvWriter, IonNamesAndSeveralSpectraAddColumns)
{
    const WriterOptions options{true, true};
    EXPECT_EQ(document(OutputFormat::Tsv, options, {example()}), "mz\tintensity\tion\tpeptide\tcharge\n"
                                                                 "437.67925\t0.050000\ty7-H2O++\tACDEFGHK\t2\n"
                                                                 "617.30419\t1.000000\ty5+\tACDEFGHK\t2\n"
                                                                 "618.30754\t0.330000\ty5+ i1\tACDEFGHK\t2\n"
                                                                 "700.50000\t0.100000\t\tACDEFGHK\t2\n");
}

TEST(TsvWriter, EnergiesAddAColumnAndModifiedPeptidesStandInProForma)
{
    const WriterOptions options{false, true, true};
    PredictedSpectrum plain = example();
    plain.peaks = plain.peaks.mid(0, 1);
    PredictedSpectrum modified = modifiedExample();
    modified.peaks = plain.peaks;
    EXPECT_EQ(document(OutputFormat::Tsv, options, {plain, modified}),
              "mz\tintensity\tpeptide\tcharge\tenergy\n"
              "437.67925\t0.050000\tACDEFGHK\t2\t\n"
              "437.67925\t0.050000\tAC[+47.9847]DEFGHK\t2\t27.5\n");
}

TEST(MspWriter, WritesWhatLibraryReadersExpect)
{
    EXPECT_EQ(document(OutputFormat::Msp, {}, {example()}), "Name: ACDEFGHK/2\n"
                                                            "MW: 962.39161\n"
                                                            "PrecursorMZ: 482.20308\n"
                                                            "Charge: 2\n"
                                                            "Comment: Parent=482.20308 Mods=1/1,C,Carbamidomethyl\n"
                                                            "Num peaks: 4\n"
                                                            "437.67925\t500.0\t\"y7-H2O^2/0.0ppm\"\n"
                                                            "617.30419\t10000.0\t\"y5/0.0ppm\"\n"
                                                            "618.30754\t3300.0\t\"y5+i/0.0ppm\"\n"
                                                            "700.50000\t1000.0\t\"?\"\n"
                                                            "\n");
}

std::string modifications(const QString &peptide, double cysteineMass)
{
    PredictedSpectrum spectrum = example();
    spectrum.precursor.peptide = peptide;
    spectrum.peptidoform = withCysteines(peptide, cysteineMass);
    spectrum.cysteineMass = cysteineMass;
    const QString text = QString::fromStdString(document(OutputFormat::Msp, {}, {spectrum}));
    return text.section(QStringLiteral("Mods="), 1).section(QLatin1Char('\n'), 0, 0).toStdString();
}

TEST(MspWriter, EveryModifiedCysteineIsListedFromPositionZero)
{
    EXPECT_EQ(modifications(QStringLiteral("CPEPCK"), 57.021464), "2/0,C,Carbamidomethyl/4,C,Carbamidomethyl");
    EXPECT_EQ(modifications(QStringLiteral("PEPTIDEK"), 57.021464), "0");
    EXPECT_EQ(modifications(QStringLiteral("PECK"), 0.0), "0");
}

TEST(MspWriter, OtherCysteineMassesAreNamedOrGivenAsMass)
{
    EXPECT_EQ(modifications(QStringLiteral("PECK"), 45.98772), "1/2,C,Methylthio");
    EXPECT_EQ(modifications(QStringLiteral("PECK"), 12.5), "1/2,C,+12.50000");
    EXPECT_EQ(modifications(QStringLiteral("PECK"), -2.01565), "1/2,C,-2.01565");
}

TEST(MgfWriter, PeptideMassIsTheMzAndPeaksHaveTwoColumns)
{
    EXPECT_EQ(document(OutputFormat::Mgf, {true, false}, {example()}), "BEGIN IONS\n"
                                                                       "TITLE=ACDEFGHK/2\n"
                                                                       "PEPMASS=482.20308\n"
                                                                       "CHARGE=2+\n"
                                                                       "437.67925 500.0\n"
                                                                       "617.30419 10000.0\n"
                                                                       "618.30754 3300.0\n"
                                                                       "700.50000 1000.0\n"
                                                                       "END IONS\n"
                                                                       "\n");
}

TEST(JsonWriter, SeveralSpectraAreOneDocument)
{
    const auto json = nlohmann::json::parse(document(OutputFormat::Json, {true, true}, {example(), example()}));
    ASSERT_EQ(json["spectra"].size(), 2u);
    const nlohmann::json &spectrum = json["spectra"][1];
    EXPECT_EQ(spectrum["peptide"], "ACDEFGHK");
    EXPECT_EQ(spectrum["charge"], 2);
    EXPECT_EQ(spectrum["precursor_mz"], 482.20308);
    EXPECT_EQ(spectrum["cysteine_mass"], 57.02146);
    EXPECT_EQ(spectrum["mz"], nlohmann::json({437.67925, 617.30419, 618.30754, 700.5}));
    EXPECT_EQ(spectrum["intensity"], nlohmann::json({0.05, 1.0, 0.33, 0.1}));
    EXPECT_EQ(spectrum["ion"], nlohmann::json({"y7-H2O++", "y5+", "y5+ i1", nullptr}));
}

TEST(JsonWriter, ModifiedPeptideStandsInProFormaWithItsEnergy)
{
    const auto json = nlohmann::json::parse(document(OutputFormat::Json, {}, {modifiedExample()}));
    const nlohmann::json &spectrum = json["spectra"][0];
    EXPECT_EQ(spectrum["peptide"], "AC[+47.9847]DEFGHK");
    EXPECT_EQ(spectrum["collision_energy"], 27.5);
    EXPECT_FALSE(spectrum.contains("cysteine_mass"));
}

TEST(JsonWriter, WithoutIonNamesThereIsNoIonField)
{
    const auto json = nlohmann::json::parse(document(OutputFormat::Json, {}, {example()}));
    EXPECT_FALSE(json["spectra"][0].contains("ion"));
}

TEST(JsonWriter, SpectrumWithoutPeaksHasEmptyLists)
{
    PredictedSpectrum empty = example();
    empty.peaks.clear();
    const auto json = nlohmann::json::parse(document(OutputFormat::Json, {true, false}, {empty}));
    EXPECT_EQ(json["spectra"][0]["mz"], nlohmann::json::array());
    EXPECT_EQ(json["spectra"][0]["ion"], nlohmann::json::array());
}

TEST(TableWriter, NamesThePrecursorAndDrawsABarForEachPeak)
{
    EXPECT_EQ(document(OutputFormat::Table, {}, {example()}),
              "ACDEFGHK  charge 2+  precursor m/z 482.20308  4 peaks\n"
              "        m/z  intensity  ion\n"
              "  437.67925     0.0500  y7-H2O++       ##\n"
              "  617.30419     1.0000  y5+            ##############################\n"
              "  618.30754     0.3300  y5+ i1         ##########\n"
              "  700.50000     0.1000                 ###\n");
}

TEST(TableWriter, NamesModificationsAndEnergy)
{
    EXPECT_EQ(QString::fromStdString(document(OutputFormat::Table, {}, {modifiedExample()})).section(u'\n', 0, 0),
              "AC[+47.9847]DEFGHK  charge 2+  energy 27.5  precursor m/z 482.20308  4 peaks");
}

} // namespace
} // namespace zav
