// SPDX-License-Identifier: Apache-2.0
#include "FragmentationInspector.h"
#include "FragmentationTest.h"
#include "MessageRecorder.h"
#include "NaiveSpectrum.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zav {
namespace {

using FragmentationPrediction = FragmentationTest;

// The library and the reference take water, ammonia and the proton to six or more digits, fifty residues to 1e-8 each.
constexpr double MZ_TOLERANCE = 3e-6;

const QList<QPointF> MARK{{1.0, 2.0}}; // what `out` holds before a call

std::vector<float> allSlots(int charge, float intensity)
{
    return std::vector<float>(FragmentationContract::of(charge).slotCount, intensity);
}

/// The intensity at an m/z; NaN when there is no peak.
double intensityAt(const QList<QPointF> &spectrum, double mz)
{
    for (const QPointF &point : spectrum) {
        if (std::abs(point.x() - mz) < MZ_TOLERANCE)
            return point.y();
    }
    return std::numeric_limits<double>::quiet_NaN();
}

TEST_F(FragmentationPrediction, FeedsOneRowPerResidueAndFillersBehind)
{
    // Slot i of the y series tells the column of row i, slot i of the b series that of row 42 - i.
    LinearNetwork network(2);
    for (int row = 0; row < 43; ++row) {
        for (int column = 0; column < 21; ++column) {
            network.setWeight(row, column, row, static_cast<float>(column + 1));
            network.setWeight(row, column, 43 + 42 - row, static_cast<float>(column + 1));
        }
    }
    load(2, network.graph());
    QList<QPointF> spectrum;
    ASSERT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDE"), 2, &spectrum).hasError());
    const std::vector<double> mzs = naive::fragmentMzs(QStringLiteral("PEPTIDE"), 2, 57.02146);
    const std::vector<int> columns{15, 2, 15, 4, 5, 1, 2};
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(intensityAt(spectrum, mzs[i]), columns[i] + 1.0) << "row " << i;
        EXPECT_EQ(intensityAt(spectrum, mzs[43 + i]), 1.0) << "row " << 42 - i << ", a filler";
    }
}

TEST_F(FragmentationPrediction, PairsEverySlotWithItsIon)
{
    for (int charge = 1; charge <= 5; ++charge) {
        SCOPED_TRACE(charge);
        std::vector<float> intensities;
        for (int slot = 0; slot < FragmentationContract::of(charge).slotCount; ++slot)
            intensities.push_back(static_cast<float>(slot + 1));
        load(charge, constantNetwork(charge, intensities));
        QList<QPointF> spectrum;
        ASSERT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("WASH"), charge, &spectrum).hasError());
        const std::vector<double> mzs = naive::fragmentMzs(QStringLiteral("WASH"), charge, 57.02146);
        ASSERT_EQ(mzs.size(), intensities.size());
        for (std::size_t slot = 0; slot < mzs.size(); ++slot) {
            const auto isSlot = [&](const QPointF &point) {
                return std::abs(point.x() - mzs[slot]) < MZ_TOLERANCE && point.y() == intensities[slot];
            };
            EXPECT_EQ(std::count_if(spectrum.cbegin(), spectrum.cend(), isSlot), mzs[slot] < 0.0 ? 0 : 1) << slot;
        }
    }
}

TEST_F(FragmentationPrediction, TakesThePeptideWithTheNextChargesLimit)
{
    const QString peptide(28, u'G');
    load(1, constantNetwork(1, allSlots(1, 1.0F)));
    load(2, constantNetwork(2, allSlots(2, 1.0F)));
    QList<QPointF> out = MARK;
    const Error error = predictor.predictMsMsFragmentation(peptide, 1, &out);
    EXPECT_FALSE(error.hasError());
    EXPECT_FALSE(error.hasWarnings());
    EXPECT_EQ(out, MARK);
    EXPECT_FALSE(predictor.predictMsMsFragmentation(peptide, 2, &out).hasError());
    EXPECT_GT(out.size(), 28);
    EXPECT_FALSE(predictor.predictMsMsFragmentation(peptide.left(27), 1, &out).hasError());
    EXPECT_NE(out, MARK) << "the limit itself is allowed";
}

TEST_F(FragmentationPrediction, OfAChargeOutOfRangeLeavesOutAsItWas)
{
    ASSERT_FALSE(files.init(&predictor).hasError());
    for (const int charge : {0, 6, -1}) {
        QList<QPointF> out = MARK;
        EXPECT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDE"), charge, &out).hasError());
        EXPECT_EQ(out, MARK);
    }
}

TEST_F(FragmentationPrediction, OfTooLongAPeptideNeedsNoNetwork)
{
    QList<QPointF> out = MARK;
    EXPECT_FALSE(predictor.predictMsMsFragmentation(QString(53, u'G'), 4, &out).hasError());
    EXPECT_EQ(out, MARK);
}

TEST_F(FragmentationPrediction, WithoutANetworkFails)
{
    for (int charge = 1; charge <= 5; ++charge) {
        QList<QPointF> out = MARK;
        const Error error = predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDE"), charge, &out);
        EXPECT_EQ(error.code(), Failure);
        EXPECT_EQ(error.message(), QStringLiteral("No network is loaded for precursor charge %1").arg(charge));
        ASSERT_EQ(error.trail().size(), 1);
        EXPECT_EQ(error.trail().first().sourceFile, QStringLiteral("ml/src/MsMsFragmentationPredictomatic"));
        EXPECT_EQ(out, MARK);
    }
}

TEST_F(FragmentationPrediction, OfNoResiduesAtAChargeOutOfRangeFails)
{
    QList<QPointF> out = MARK;
    EXPECT_EQ(predictor.predictMsMsFragmentation(QString(), 0, &out).code(), Failure);
    EXPECT_EQ(out, MARK);
}

TEST_F(FragmentationPrediction, AfterAPartialInitServesTheLoadedChargesOnly)
{
    const MessageRecorder log;
    const QString missing = QStringLiteral("missing.pb");
    EXPECT_TRUE(predictor.init(files.path(1), files.path(2), missing, missing, missing).hasError());
    QList<QPointF> out = MARK;
    EXPECT_EQ(predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDE"), 3, &out).code(), Failure);
    EXPECT_EQ(out, MARK);
    EXPECT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDE"), 2, &out).hasError());
}

TEST_F(FragmentationPrediction, RefusesToPredictIntoNothing)
{
    ASSERT_FALSE(files.init(&predictor).hasError());
    EXPECT_EQ(predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDE"), 2, nullptr).code(), InvalidInput);
    EXPECT_FALSE(predictor.predictMsMsFragmentation(QString(44, u'G'), 2, nullptr).hasError()) << "nothing to write";
}

TEST_F(FragmentationPrediction, NamesAMissingInput)
{
    GraphDefBuilder graph;
    graph.noOp("init").constant(FragmentationContract::OUTPUT, {1, 359}, allSlots(2, 1.0F));
    load(2, graph);
    const MessageRecorder log;
    QList<QPointF> out = MARK;
    const Error error = predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDE"), 2, &out);
    EXPECT_EQ(error.code(), Failure);
    EXPECT_EQ(lastPlacesOf(error, 1),
              QStringList{QStringLiteral("MsMsFragmentationPredictomatic::predictMsMsFragmentation 213")});
    EXPECT_EQ(log.criticalTexts(), QStringList{QStringLiteral("No operation named import/conv1d_1_input exists")});
    EXPECT_EQ(out, MARK);
}

TEST_F(FragmentationPrediction, NamesAMissingOutput)
{
    GraphDefBuilder graph;
    graph.noOp("init").placeholder(FragmentationContract::INPUT, {{-1, 43, 21}});
    load(2, graph);
    const MessageRecorder log;
    QList<QPointF> out = MARK;
    const Error error = predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDE"), 2, &out);
    EXPECT_EQ(lastPlacesOf(error, 1),
              QStringList{QStringLiteral("MsMsFragmentationPredictomatic::predictMsMsFragmentation 215")});
    EXPECT_EQ(log.criticalTexts(), QStringList{QStringLiteral("No operation named import/dense_3/BiasAdd exists")});
    EXPECT_EQ(out, MARK);
}

TEST_F(FragmentationPrediction, BindsTheInputBeforeTheOutput)
{
    GraphDefBuilder graph;
    load(2, graph.noOp("init"));
    const MessageRecorder log;
    QList<QPointF> out = MARK;
    const Error error = predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDE"), 2, &out);
    EXPECT_EQ(lastPlacesOf(error, 1),
              QStringList{QStringLiteral("MsMsFragmentationPredictomatic::predictMsMsFragmentation 213")});
    EXPECT_EQ(log.criticalTexts(), QStringList{QStringLiteral("No operation named import/conv1d_1_input exists")});
    EXPECT_EQ(out, MARK);
}

TEST_F(FragmentationPrediction, RefusesAnOutputOfAnotherType)
{
    GraphDefBuilder graph;
    graph.noOp("init")
        .placeholder(FragmentationContract::INPUT, {{-1, 43, 21}})
        .cast(FragmentationContract::OUTPUT, FragmentationContract::INPUT, GraphDefBuilder::FLOAT,
              GraphDefBuilder::INT32);
    load(2, graph);
    const MessageRecorder log;
    QList<QPointF> out = MARK;
    const Error error = predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDE"), 2, &out);
    EXPECT_EQ(lastPlacesOf(error, 1),
              QStringList{QStringLiteral("MsMsFragmentationPredictomatic::predictMsMsFragmentation 221")});
    EXPECT_EQ(out, MARK);
}

TEST_F(FragmentationPrediction, ReportsAnInputThatDoesNotTakeThePeptide)
{
    GraphDefBuilder graph;
    graph.noOp("init")
        .placeholder(FragmentationContract::INPUT, {{1, 40, 21}})
        .identity(FragmentationContract::OUTPUT, FragmentationContract::INPUT);
    load(2, graph);
    const MessageRecorder log;
    QList<QPointF> out = MARK;
    const Error error = predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDE"), 2, &out);
    EXPECT_EQ(error.code(), Failure);
    EXPECT_TRUE(error.trail().first().sourceFile == QStringLiteral("ml/src/Tensor")) << "told where it happened";
    EXPECT_TRUE(error.trail().last().functionSignature.contains(QStringLiteral("predictMsMsFragmentation")));
    EXPECT_EQ(error.trail().last().sourceFile, QStringLiteral("ml/src/MsMsFragmentationPredictomatic"));
    EXPECT_GT(error.trail().last().line, 0);
    EXPECT_EQ(log.criticalTexts(),
              QStringList{QStringLiteral("Expected and provided number of elements do not match")});
    EXPECT_EQ(out, MARK);
}

TEST_F(FragmentationPrediction, ReportsARunThatFails)
{
    GraphDefBuilder graph;
    graph.noOp("init")
        .placeholder(FragmentationContract::INPUT, {{-1, 43, 21}})
        .reshape(FragmentationContract::OUTPUT, FragmentationContract::INPUT, {-1, 5});
    load(2, graph);
    const MessageRecorder log;
    QList<QPointF> out = MARK;
    const Error error = predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDE"), 2, &out);
    EXPECT_EQ(error.code(), Failure);
    EXPECT_TRUE(placesOf(error).join(QLatin1Char(' ')).contains(QStringLiteral("Model::run"))) << placesOf(error);
    EXPECT_TRUE(error.trail().last().functionSignature.contains(QStringLiteral("predictMsMsFragmentation")));
    EXPECT_EQ(error.trail().last().sourceFile, QStringLiteral("ml/src/MsMsFragmentationPredictomatic"));
    EXPECT_GT(error.trail().last().line, 0);
    EXPECT_EQ(out, MARK);
}

TEST_F(FragmentationPrediction, RefusesAnOutputOfAnotherSize)
{
    load(1, constantNetwork(1, std::vector<float>(176, 1.0F)));
    QList<QPointF> out = MARK;
    const Error error = predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDE"), 1, &out);
    EXPECT_EQ(error.code(), Failure);
    ASSERT_EQ(error.trail().size(), 3);
    EXPECT_EQ(lastPlacesOf(error, 2),
              (QStringList{QStringLiteral("MsMsFragmentationPredictomatic::buildPoints 256"),
                           QStringLiteral("MsMsFragmentationPredictomatic::predictMsMsFragmentation 230")}));
    for (const CaughtAt &place : error.trail().mid(1))
        EXPECT_EQ(place.sourceFile, QStringLiteral("ml/src/MsMsFragmentationPredictomatic"));
    EXPECT_EQ(out, MARK);
}

TEST_F(FragmentationPrediction, FailsWhereAFragmentHasNoMassOfAPeptide)
{
    ASSERT_FALSE(files.init(&predictor).hasError()); // zero intensities: the weakest fragment is weighed too
    for (const double mass : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e6}) {
        predictor.setCysteineFixedMass(mass);
        QList<QPointF> out = MARK;
        const Error error = predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDEC"), 2, &out);
        EXPECT_EQ(error.code(), InvalidInput);
        EXPECT_EQ(lastPlacesOf(error, 3),
                  (QStringList{QStringLiteral("MsMsFragmentationPredictomatic::addIsotopesToFragments 440"),
                               QStringLiteral("MsMsFragmentationPredictomatic::buildPoints 274"),
                               QStringLiteral("MsMsFragmentationPredictomatic::predictMsMsFragmentation 230")}));
        EXPECT_EQ(out, MARK);
    }
}

TEST_F(FragmentationPrediction, TakesAnUnknownResidueAtTheFirstEnd)
{
    load(1, constantNetwork(1, allSlots(1, 1.0F)));
    QList<QPointF> spectrum;
    ASSERT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("UG"), 1, &spectrum).hasError());
    // b1 of nothing is a proton without isotopes. The b ions less water or ammonia, and a1, have negative m/z.
    ASSERT_GE(spectrum.size(), 2);
    EXPECT_EQ(spectrum.at(0), QPointF(1.00727646677, 1.0));
    EXPECT_NEAR(spectrum.at(1).x(), 57.021464 + 1.00727646677 - 27.994915, MZ_TOLERANCE) << "a2";
    const auto isMonoisotopic = [](const QPointF &point) { return point.y() == 1.0; };
    EXPECT_EQ(std::count_if(spectrum.cbegin(), spectrum.cend(), isMonoisotopic), 1 + 4 + 6)
        << "b1; y1, y2, b2 and a2; the y ions and b2 less water, and less ammonia";
}

TEST_F(FragmentationPrediction, TakesUnknownResiduesAtBothEnds)
{
    for (int charge = 1; charge <= 5; ++charge) {
        load(charge, LinearNetwork::random(charge, 3).graph());
        for (const QString &peptide :
             {QStringLiteral("UPEPTIDEK"), QStringLiteral("PEPTIDEx"), QStringLiteral("pep")}) {
            QList<QPointF> out = MARK;
            const Error error = predictor.predictMsMsFragmentation(peptide, charge, &out);
            EXPECT_FALSE(error.hasError()) << error.toString().toStdString();
            EXPECT_NE(out, MARK);
        }
    }
}

TEST_F(FragmentationPrediction, KeepsAFragmentAtZeroMz)
{
    load(1, constantNetwork(1, allSlots(1, 1.0F)));
    const MsMsFragmentationPredictomaticInspector steps(&predictor);
    predictor.setCysteineFixedMass(0.0);
    predictor.setCysteineFixedMass(-steps.buildMzPoints(QStringLiteral("C"), 1).at(0).mz);
    ASSERT_EQ(steps.buildMzPoints(QStringLiteral("C"), 1).at(0).mz, 0.0);
    QList<QPointF> out;
    ASSERT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("C"), 1, &out).hasError());
    EXPECT_EQ(out, (QList<QPointF>{{0.0, 1.0}})) << "y1; all others have negative m/z";
}

TEST_F(FragmentationPrediction, KeepsPeaksOfEqualMzInTheOrderOfTheLadder)
{
    // Unknown residues weigh nothing: the b ions and the y ions less water all stand at the proton's m/z.
    constexpr std::size_t L = 27;
    std::vector<float> intensities(177, 0.0F);
    QList<QPointF> expected;
    for (const std::size_t firstSlot : {L, 2 * L + 15}) {
        for (std::size_t i = 0; i < L; ++i) {
            intensities[firstSlot + i] = static_cast<float>((i * 7 + firstSlot) % 31 + 1);
            expected.append({1.00727646677, intensities[firstSlot + i]});
        }
    }
    load(1, constantNetwork(1, intensities));
    QList<QPointF> spectrum;
    ASSERT_FALSE(predictor.predictMsMsFragmentation(QString(L, u'x'), 1, &spectrum).hasError());
    EXPECT_EQ(spectrum, expected);
}

TEST_F(FragmentationPrediction, GivesWhatItsStepsGiveOneByOne)
{
    const MsMsFragmentationPredictomaticInspector steps(&predictor);
    for (int charge = 1; charge <= 5; ++charge) {
        std::mt19937 generator(charge);
        const LinearNetwork network = LinearNetwork::random(charge, 20 + charge);
        load(charge, network.graph());
        for (int i = 0; i < 200; ++i) {
            // Light, negative and heavy fragments, above 1800 Da and at the limits of m/z.
            predictor.setCysteineFixedMass(static_cast<double>(generator() % 3000) - 1000.0);
            QString peptide = randomPeptide(static_cast<int>(generator() % 27), &generator);
            peptide.replace(u'W', u'x').replace(u'P', u'C');
            SCOPED_TRACE(peptide.toStdString());
            QList<QPointF> expected =
                steps.buildPoints(steps.buildMzPoints(peptide, charge), network.intensities(peptide)).value();
            expected.removeIf([](const QPointF &point) { return point.x() > 2000.0 || point.y() < 0.025; });
            QList<QPointF> spectrum;
            ASSERT_FALSE(predictor.predictMsMsFragmentation(peptide, charge, &spectrum).hasError());
            ASSERT_EQ(spectrum, expected);
        }
    }
}

TEST_F(FragmentationPrediction, TakesAnUnknownResidueInside)
{
    load(2, constantNetwork(2, allSlots(2, 1.0F)));
    QList<QPointF> with;
    QList<QPointF> without;
    ASSERT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("PEPxTIDE"), 2, &with).hasError());
    ASSERT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDE"), 2, &without).hasError());
    EXPECT_EQ(with.last().x(), without.last().x()) << "it weighs nothing";
    EXPECT_GT(with.size(), without.size()) << "but counts as a residue";
}

TEST_F(FragmentationPrediction, ReplacesOutAsAWhole)
{
    load(2, constantNetwork(2, allSlots(2, 1.0F)));
    QList<QPointF> out = MARK;
    ASSERT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("GA"), 2, &out).hasError());
    EXPECT_FALSE(out.contains(MARK.first()));
    EXPECT_TRUE(
        std::is_sorted(out.cbegin(), out.cend(), [](const QPointF &a, const QPointF &b) { return a.x() < b.x(); }));
}

TEST_F(FragmentationPrediction, BelowTheLowestIntensityIsEmpty)
{
    load(2, constantNetwork(2, allSlots(2, std::nextafter(0.025F, 0.0F))));
    QList<QPointF> out = MARK;
    EXPECT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDE"), 2, &out).hasError());
    EXPECT_TRUE(out.isEmpty());
}

TEST_F(FragmentationPrediction, OfAnEmptyPeptideIsEmpty)
{
    load(3, constantNetwork(3, allSlots(3, 1.0F)));
    QList<QPointF> out = MARK;
    EXPECT_FALSE(predictor.predictMsMsFragmentation(QString(), 3, &out).hasError());
    EXPECT_TRUE(out.isEmpty());
}

TEST_F(FragmentationPrediction, EndsAtTwoThousand)
{
    load(1, constantNetwork(1, allSlots(1, 1.0F)));
    QList<QPointF> out;
    ASSERT_FALSE(predictor.predictMsMsFragmentation(QString(27, u'W'), 1, &out).hasError());
    EXPECT_GT(out.size(), 0);
    EXPECT_LE(out.last().x(), 2000.0);
    EXPECT_GT(out.last().x(), 1800.0);
}

TEST_F(FragmentationPrediction, KeepsAPeakAtExactlyTwoThousand)
{
    load(1, constantNetwork(1, allSlots(1, 1.0F)));
    const MsMsFragmentationPredictomaticInspector steps(&predictor);
    predictor.setCysteineFixedMass(0.0);
    const double atTheLimit = 2000.0 - steps.buildMzPoints(QStringLiteral("C"), 1).at(0).mz;
    QList<QPointF> out;
    predictor.setCysteineFixedMass(atTheLimit);
    ASSERT_EQ(steps.buildMzPoints(QStringLiteral("C"), 1).at(0).mz, 2000.0) << "the sum rounds to the limit";
    ASSERT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("C"), 1, &out).hasError());
    EXPECT_EQ(out.last().x(), 2000.0);
    predictor.setCysteineFixedMass(atTheLimit + 1e-9);
    ASSERT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("C"), 1, &out).hasError());
    EXPECT_LT(out.last().x(), 1999.0);
}

TEST_F(FragmentationPrediction, KeepsIntensitiesThatAreNoNumbers)
{
    std::vector<float> intensities(177, 0.0F);
    intensities[0] = std::numeric_limits<float>::quiet_NaN();
    intensities[1] = std::numeric_limits<float>::infinity();
    intensities[2] = -std::numeric_limits<float>::infinity();
    load(1, constantNetwork(1, intensities));
    QList<QPointF> out;
    ASSERT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("GAS"), 1, &out).hasError());
    const std::vector<double> mzs = naive::fragmentMzs(QStringLiteral("GAS"), 1, 0.0);
    EXPECT_TRUE(std::any_of(out.cbegin(), out.cend(), [&](const QPointF &point) {
        return std::abs(point.x() - mzs[0]) < MZ_TOLERANCE && std::isnan(point.y());
    }));
    EXPECT_EQ(intensityAt(out, mzs[1]), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(intensityAt(out, mzs[2]))) << "no peak";
}

TEST_F(FragmentationPrediction, WeighsCysteineAsSetForLaterCalls)
{
    load(1, constantNetwork(1, allSlots(1, 1.0F)));
    QList<QPointF> modified;
    QList<QPointF> bare;
    ASSERT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("C"), 1, &modified).hasError());
    predictor.setCysteineFixedMass(0.0);
    ASSERT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("C"), 1, &bare).hasError());
    EXPECT_NEAR(modified.first().x() - bare.first().x(), 57.02146, MZ_TOLERANCE);
}

TEST_F(FragmentationPrediction, RepeatsItself)
{
    load(3, LinearNetwork::random(3, 7).graph());
    QList<QPointF> first;
    QList<QPointF> second;
    ASSERT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("LQSRPAAPPAPGPGQLTLR"), 3, &first).hasError());
    ASSERT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDE"), 3, &second).hasError());
    ASSERT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("LQSRPAAPPAPGPGQLTLR"), 3, &second).hasError());
    EXPECT_EQ(first, second);
}

} // namespace
} // namespace zav
