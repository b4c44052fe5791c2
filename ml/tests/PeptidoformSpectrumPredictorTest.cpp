// SPDX-License-Identifier: Apache-2.0
//
// What the predictor of peptidoforms feeds its network, refuses and warns of.
#include "MessageRecorder.h"
#include "PeptidoformSpectrumTest.h"

#include <cmath>
#include <limits>
#include <random>

namespace zav {
namespace {

using PeptidoformSpectrumPrediction = PeptidoformSpectrumTest;
using Spectra = QList<QList<FragmentPeak>>;

constexpr double UNKNOWN_ENERGY = std::numeric_limits<double>::quiet_NaN();

const Spectra MARK{{FragmentPeak{}}, {}, {}, {}}; // what `out` holds before a call

/// A network of three-residue peptides whose y1 is 1 and whose y2 tells one of the values that it is fed.
GraphDefBuilder tellingNetwork(int value, float offset, float scale)
{
    PeptidoformNetwork network(3);
    network.setBias(1, QStringLiteral("y+1"), 1.0F);
    network.setBias(0, QStringLiteral("y+1"), offset);
    network.setPrecursorWeight(value, 0, QStringLiteral("y+1"), scale);
    return network.graph();
}

double y2Of(const QList<FragmentPeak> &peaks)
{
    return intensitiesByIon(peaks).value(QStringLiteral("y2+1"), UNKNOWN_ENERGY);
}

TEST_F(PeptidoformSpectrumPrediction, FeedsTheCharge)
{
    load(tellingNetwork(1, 0.0F, 0.125F));
    for (int charge = 1; charge <= 6; ++charge)
        EXPECT_EQ(y2Of(spectrum({peptidoform("GAK"), charge})), charge / 8.0);
}

TEST_F(PeptidoformSpectrumPrediction, FeedsTheEnergyInTensFromThirty)
{
    load(tellingNetwork(2, 0.5F, 0.125F));
    for (const auto &[energy, value] :
         {std::pair{20.0, -1.0}, std::pair{30.0, 0.0}, std::pair{40.0, 1.0}, std::pair{27.5, -0.25},
          std::pair{UNKNOWN_ENERGY, 0.0}, std::pair{10.0, -2.0}, std::pair{60.0, 3.0}})
        EXPECT_EQ(y2Of(spectrum({peptidoform("GAK"), 2, energy})), 0.5 + 0.125 * value) << energy;
}

TEST_F(PeptidoformSpectrumPrediction, FeedsEachPeptidoformOnceForItsNeighbours)
{
    load(tellingNetwork(0, 0.125F, 0.125F));
    const Peptidoform plain = peptidoform("GAK");
    const Peptidoform modified = peptidoform("GAK[Acetyl]");
    Spectra out;
    ASSERT_FALSE(
        predictor.predict({{plain, 2}, {plain, 3}, {plain, 3, 25.0}, {modified, 2}, {modified, 3}, {plain, 2}}, &out)
            .hasError());
    std::vector<double> numbers;
    for (const QList<FragmentPeak> &peaks : out)
        numbers.push_back(y2Of(peaks) * 8 - 1);
    EXPECT_EQ(numbers, (std::vector<double>{0, 0, 0, 1, 1, 2}));
}

TEST_F(PeptidoformSpectrumPrediction, FeedsTheRowsOfThePeptidoform)
{
    // y2 tells the letter of the first residue, b1 the oxygens of the second one's modification.
    PeptidoformNetwork network(3);
    network.setBias(1, QStringLiteral("y+1"), 1.0F);
    network.setPeptidoformWeight(0, 0, 0, QStringLiteral("y+1"), 1.0F / 32);
    network.setPeptidoformWeight(1, 4, 0, QStringLiteral("b+1"), 1.0F / 8);
    load(network.graph());
    Spectra out;
    ASSERT_FALSE(
        predictor
            .predict({{peptidoform("GAK"), 2}, {peptidoform("DS[Phospho]R"), 2}, {peptidoform("RM[Oxidation]K"), 1}},
                     &out)
            .hasError());
    EXPECT_EQ(y2Of(out.at(0)), 13.0 / 32);
    EXPECT_TRUE(std::isnan(y2Of(out.at(1)))) << "1 / 32 is too weak";
    EXPECT_EQ(y2Of(out.at(2)), 20.0 / 32);
    EXPECT_EQ(intensitiesByIon(out.at(1)).value(QStringLiteral("b1+1")), 3.0 / 8);
    EXPECT_EQ(intensitiesByIon(out.at(2)).value(QStringLiteral("b1+1")), 1.0 / 8);
}

TEST_F(PeptidoformSpectrumPrediction, KeepsTheOrderOfPrecursorsOfMixedPeptides)
{
    load(tellingNetwork(1, 0.0F, 0.125F));
    QList<PeptidoformPrecursor> precursors;
    std::mt19937 generator(1);
    for (int i = 0; i < 3000; ++i)
        precursors.append({peptidoform(generator() % 2 == 0 ? "GAK" : "SAR"), static_cast<int>(1 + generator() % 6)});
    Spectra out;
    ASSERT_FALSE(predictor.predict(precursors, &out).hasError());
    ASSERT_EQ(out.size(), precursors.size());
    for (qsizetype i = 0; i < out.size(); ++i) {
        EXPECT_EQ(y2Of(out.at(i)), precursors.at(i).charge / 8.0) << i;
        const double y1 = precursors.at(i).peptidoform.sequence().endsWith(u'K') ? 147.112804 : 175.118952;
        EXPECT_NEAR(out.at(i).first().mz, y1, 1e-5) << i;
    }
}

TEST_F(PeptidoformSpectrumPrediction, RefusesEnergiesOutOfRange)
{
    loadLevelNetwork(3);
    for (const double energy : {9.99, 60.01, -30.0, 0.0, std::numeric_limits<double>::infinity()}) {
        Spectra out = MARK;
        const Error error = predictor.predict({{peptidoform("GAK"), 2, 30.0}, {peptidoform("GAR"), 2, energy}}, &out);
        EXPECT_EQ(error.code(), InvalidInput);
        EXPECT_EQ(error.message(), QStringLiteral("The collision energy of GAR is %1, not 10 to 60").arg(energy));
        EXPECT_EQ(out.size(), MARK.size());
    }
}

TEST_F(PeptidoformSpectrumPrediction, NamesThePrecursorsThatItCannotRead)
{
    loadLevelNetwork(3);
    Spectra out;
    Modification endless;
    endless.name = QStringLiteral("endless");
    endless.mass = std::numeric_limits<double>::infinity();
    const Error outcome = predictor.predict({{peptidoform("GAK"), 0},
                                             {Peptidoform(QString(53, u'G')), 2},
                                             {peptidoform("GAK"), 2},
                                             {Peptidoform(QStringLiteral("GXK")), 2},
                                             {peptidoform("GAK[Acetyl]"), 7},
                                             {Peptidoform(QStringLiteral("K")), 2},
                                             {Peptidoform(), 2},
                                             {Peptidoform(QStringLiteral("GAK"), {{2, endless}}), 2}},
                                            &out);
    EXPECT_FALSE(outcome.hasError());
    const QStringList warnings = outcome.warnings();
    ASSERT_EQ(warnings.size(), 7);
    EXPECT_EQ(warnings.at(0), QStringLiteral("GAK has precursor charge 0, not 1 to 6: not predicted"));
    EXPECT_TRUE(warnings.at(1).startsWith(QString(53, u'G') + QStringLiteral(" has 53 residues")));
    EXPECT_TRUE(warnings.at(2).startsWith(QStringLiteral("GXK has the residue X")));
    EXPECT_EQ(warnings.at(3), QStringLiteral("GAK[Acetyl] has precursor charge 7, not 1 to 6: not predicted"));
    EXPECT_TRUE(warnings.at(4).startsWith(QStringLiteral("K has 1 residues")));
    EXPECT_TRUE(warnings.at(6).endsWith(QStringLiteral(" has a mass that is not finite: not predicted")));
    ASSERT_EQ(out.size(), 8);
    for (qsizetype i = 0; i < out.size(); ++i)
        EXPECT_EQ(out.at(i).isEmpty(), i != 2) << i;
}

TEST_F(PeptidoformSpectrumPrediction, NamesEachPrecursorOfAPeptidoformThatItCannotRead)
{
    loadLevelNetwork(3);
    Spectra out;
    const Peptidoform odd(QStringLiteral("GXK"));
    EXPECT_EQ(predictor.predict({{odd, 2}, {odd, 3}}, &out).warnings().size(), 2);
    EXPECT_EQ(out.size(), 2);
}

TEST_F(PeptidoformSpectrumPrediction, NamesWhatNoTrainingSpectrumHeldOnce)
{
    loadLevelNetwork(3);
    Spectra out;
    const Error outcome = predictor.predict({{peptidoform("[TMT6plex]-GAK[TMT6plex]"), 2},
                                             {peptidoform("[TMT6plex]-GSK[TMT6plex]"), 2},
                                             {peptidoform("[Acetyl]-GM[Oxidation]K[Acetyl]"), 2},
                                             {peptidoform("GC[Carbamidomethyl]K"), 2},
                                             {peptidoform("GAK[+42.5]"), 2},
                                             {peptidoform("GCK"), 2},
                                             {peptidoform("CCK"), 2}},
                                            &out);
    EXPECT_FALSE(outcome.hasError());
    EXPECT_EQ(outcome.warnings(),
              (QStringList{QStringLiteral("Modification TMT6plex at the N-terminus is unknown to the network"),
                           QStringLiteral("Modification TMT6plex at K is unknown to the network"),
                           QStringLiteral("Modification +42.5 at K is unknown to the network"),
                           QStringLiteral("Cysteine without a modification is unknown to the network")}));
    for (const QList<FragmentPeak> &peaks : out)
        EXPECT_FALSE(peaks.isEmpty());
}

TEST_F(PeptidoformSpectrumPrediction, OfNothingIsEmpty)
{
    loadLevelNetwork(3);
    Spectra out = MARK;
    EXPECT_FALSE(predictor.predict({}, &out).hasError());
    EXPECT_TRUE(out.isEmpty());
}

TEST_F(PeptidoformSpectrumPrediction, WithoutANetworkFails)
{
    EXPECT_FALSE(predictor.isInit());
    Spectra out = MARK;
    const Error error = predictor.predict({{peptidoform("GAK"), 2}}, &out);
    EXPECT_EQ(error.code(), Failure);
    EXPECT_EQ(error.message(), QStringLiteral("No network is loaded"));
    EXPECT_EQ(out.size(), MARK.size());
}

TEST_F(PeptidoformSpectrumPrediction, KeepsItsNetworkWhenAnotherCannotBeLoaded)
{
    loadLevelNetwork(3);
    const MessageRecorder log;
    EXPECT_EQ(predictor.init(QStringLiteral("missing.pb")).code(), Failure);
    EXPECT_TRUE(predictor.isInit());
    EXPECT_FALSE(ions("GAK", 1).isEmpty());
}

TEST_F(PeptidoformSpectrumPrediction, RefusesToPredictIntoNothing)
{
    loadLevelNetwork(3);
    EXPECT_EQ(predictor.predict({{peptidoform("GAK"), 2}}, nullptr).code(), InvalidInput);
}

TEST_F(PeptidoformSpectrumPrediction, ReportsAMissingOperation)
{
    GraphDefBuilder graph;
    graph.noOp("init").placeholder("peptidoforms", {{-1, 52, 13}});
    load(graph);
    const MessageRecorder log;
    Spectra out = MARK;
    const Error error = predictor.predict({{peptidoform("GAK"), 2}}, &out);
    EXPECT_EQ(error.code(), Failure);
    EXPECT_EQ(log.criticalTexts(), QStringList{QStringLiteral("No operation named precursors exists")});
    EXPECT_EQ(error.trail().last().sourceFile, QStringLiteral("ml/src/PeptidoformSpectrumPredictor"));
    EXPECT_EQ(out.size(), MARK.size());
}

TEST_F(PeptidoformSpectrumPrediction, RefusesAnOutputOfAnotherSize)
{
    loadLevelNetwork(4);
    Spectra out = MARK;
    const Error error = predictor.predict({{peptidoform("GAK"), 2}}, &out);
    EXPECT_EQ(error.code(), Failure);
    EXPECT_TRUE(error.trail().first().functionSignature.contains(QStringLiteral("ErrorUtils::equal")));
    EXPECT_EQ(out.size(), MARK.size());
}

} // namespace
} // namespace zav
