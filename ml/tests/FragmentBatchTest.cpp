// SPDX-License-Identifier: Apache-2.0
#include "FragmentComparison.h"
#include "FragmentationTest.h"
#include "MessageRecorder.h"
#include "NaiveSpectrum.h"

#include <limits>

namespace zav {
namespace {

using Spectra = QList<QList<FragmentPeak>>;

constexpr double EXACT = 0.0; // the sums of the random linear networks are

constexpr std::int64_t ENCODED_SIZE = 903; // 43 rows of 21 columns at charge 2

const Spectra MARK{{FragmentPeak{}}, {}}; // what `out` holds before a call

class FragmentBatchPrediction : public FragmentationTest
{
protected:
    /// Of every length that the charge allows, none among them.
    static QStringList randomPeptides(int count, int charge, std::mt19937 *generator)
    {
        QStringList peptides;
        for (int i = 0; i < count; ++i)
            peptides.append(randomPeptide(
                static_cast<int>((*generator)() % (FragmentationContract::of(charge).maximumLength + 1)), generator));
        return peptides;
    }

    void expectSameAsOneByOne(const QStringList &peptides, int charge)
    {
        Spectra spectra;
        const Error outcome = predictor.predictFragments(peptides, charge, &spectra);
        ASSERT_FALSE(outcome.hasError()) << outcome.toString().toStdString();
        ASSERT_EQ(spectra.size(), peptides.size());
        for (qsizetype i = 0; i < peptides.size(); ++i) {
            SCOPED_TRACE(peptides.at(i).toStdString());
            const auto expected = monoisotopicPeaks(&predictor, peptides.at(i), charge);
            ASSERT_TRUE(expected.has_value());
            EXPECT_EQ(spectra.at(i).size(), expected->size());
            EXPECT_TRUE(haveSamePeaks(spectra.at(i), *expected, EXACT));
            EXPECT_TRUE(isSortedByMz(spectra.at(i)));
            EXPECT_TRUE(areNamedAfterFragments(spectra.at(i), &predictor, peptides.at(i), charge));
        }
    }
};

TEST_F(FragmentBatchPrediction, GivesWhatOnePeptideCallsGiveAtEveryCharge)
{
    for (int charge = 1; charge <= 5; ++charge) {
        SCOPED_TRACE(charge);
        std::mt19937 generator(charge);
        load(charge, LinearNetwork::random(charge, charge).graph());
        expectSameAsOneByOne(randomPeptides(300, charge, &generator), charge);
    }
}

TEST_F(FragmentBatchPrediction, WithIsotopesGivesTheSpectraOfOnePeptideCallsAtEveryCharge)
{
    for (int charge = 1; charge <= 5; ++charge) {
        SCOPED_TRACE(charge);
        std::mt19937 generator(charge + 50);
        load(charge, LinearNetwork::random(charge, charge).graph());
        // With fragments of equal m/z: the ends of a peptide that reads the same from both sides, and unknown residues.
        QStringList peptides{QStringLiteral("A"), QStringLiteral("GAG"), QString(25, u'x'), QStringLiteral("CCCC")};
        peptides.append(randomPeptides(150, charge, &generator));
        Spectra spectra;
        ASSERT_FALSE(predictor.predictFragments(peptides, charge, &spectra, IsotopePeaks::Included).hasError());
        for (qsizetype i = 0; i < peptides.size(); ++i) {
            SCOPED_TRACE(peptides.at(i).toStdString());
            QList<QPointF> expected;
            ASSERT_FALSE(predictor.predictMsMsFragmentation(peptides.at(i), charge, &expected).hasError());
            EXPECT_TRUE(areSamePeaksInOrder(spectra.at(i), expected, EXACT));
            EXPECT_TRUE(areNamedAfterIsotopes(spectra.at(i), &predictor, peptides.at(i), charge));
        }
    }
}

TEST_F(FragmentBatchPrediction, WithoutIsotopesGivesThePeaksOfIsotopeZero)
{
    load(3, LinearNetwork::random(3, 21).graph());
    std::mt19937 generator(22);
    const QStringList peptides = randomPeptides(50, 3, &generator);
    Spectra with;
    Spectra without;
    ASSERT_FALSE(predictor.predictFragments(peptides, 3, &with, IsotopePeaks::Included).hasError());
    ASSERT_FALSE(predictor.predictFragments(peptides, 3, &without).hasError());
    for (qsizetype i = 0; i < peptides.size(); ++i) {
        with[i].removeIf([](const FragmentPeak &peak) { return peak.isotope != 0; });
        EXPECT_TRUE(std::equal(with.at(i).cbegin(), with.at(i).cend(), without.at(i).cbegin(), without.at(i).cend(),
                               [](const FragmentPeak &a, const FragmentPeak &b) {
                                   return a.mz == b.mz && a.intensity == b.intensity && isSameIon(a, b);
                               }));
    }
}

TEST_F(FragmentBatchPrediction, NumbersTheIsotopesOfAnIon)
{
    std::vector<float> intensities(359, 0.0F);
    intensities[2] = 1.0F;       // y3
    intensities[2 * 43] = 0.25F; // y1, doubly charged: its first isotope stays under the lowest intensity
    load(2, constantNetwork(2, intensities));
    Spectra spectra;
    ASSERT_FALSE(predictor.predictFragments({QStringLiteral("RRK")}, 2, &spectra, IsotopePeaks::Included).hasError());
    // Residues (Matrix Science, six digits): R 156.101111, K 128.094963.
    const double y3 = 2 * 156.101111 + 128.094963 + 19.01784146677;
    const std::vector<double> envelope = naive::isotopeEnvelope(y3 - 1.00727646677, 4);
    const QList<FragmentPeak> peaks = spectra.first();
    ASSERT_EQ(peaks.size(), 1 + 3) << "y3 with two isotopes: 1, 0.25 and 0.05";
    EXPECT_EQ(peaks.first().charge, 2);
    for (int k = 0; k < 3; ++k) {
        EXPECT_NEAR(peaks.at(1 + k).mz, y3 + k * 1.0033548, 3e-6);
        EXPECT_NEAR(peaks.at(1 + k).intensity, envelope[k], 1e-5);
        EXPECT_EQ(peaks.at(1 + k).ionNumber, 3);
        EXPECT_EQ(peaks.at(1 + k).isotope, k);
    }
}

TEST_F(FragmentBatchPrediction, RunsANetworkOfOnePeptideOnceForEach)
{
    std::mt19937 generator(3);
    load(2, LinearNetwork::random(2, 5).graph(1));
    expectSameAsOneByOne(randomPeptides(40, 2, &generator), 2);
}

TEST_F(FragmentBatchPrediction, StacksNothingThatANetworkDoesNotStack)
{
    // The rows of all peptides would run into each other: the unknown dimension is that of the rows.
    std::mt19937 generator(4);
    GraphDefBuilder unstacked;
    unstacked.noOp("init")
        .placeholder(FragmentationContract::INPUT, {{-1, 21}})
        .reshape("flat", FragmentationContract::INPUT, {1, ENCODED_SIZE})
        .slice("some", "flat", {0, 0}, {1, 359})
        .identity(FragmentationContract::OUTPUT, "some");
    load(2, unstacked);
    expectSameAsOneByOne(randomPeptides(20, 2, &generator), 2);
}

TEST_F(FragmentBatchPrediction, StacksNothingWhereMoreThanTheLeadingDimensionIsUnknown)
{
    std::mt19937 generator(6);
    GraphDefBuilder unknown;
    unknown.noOp("init")
        .placeholder(FragmentationContract::INPUT, {{-1, -1, -1, ENCODED_SIZE}})
        .reshape("flat", FragmentationContract::INPUT, {1, ENCODED_SIZE})
        .slice(FragmentationContract::OUTPUT, "flat", {0, 0}, {1, 359});
    load(2, unknown);
    expectSameAsOneByOne(randomPeptides(20, 2, &generator), 2);
}

TEST_F(FragmentBatchPrediction, RefusesAShapeWhoseProductOverflows)
{
    GraphDefBuilder hostile;
    hostile.noOp("init")
        .placeholder(FragmentationContract::INPUT, {{-1, std::int64_t{1} << 40, std::int64_t{1} << 40}})
        .identity(FragmentationContract::OUTPUT, FragmentationContract::INPUT);
    load(2, hostile);
    const MessageRecorder silence;
    Spectra out = MARK;
    EXPECT_EQ(predictor.predictFragments({QStringLiteral("PEPTIDE")}, 2, &out).code(), Failure);
    EXPECT_EQ(out.size(), MARK.size());
}

TEST_F(FragmentBatchPrediction, LeavesOutAsItWasWhenALaterBlockFails)
{
    // Takes 128 peptides and no other number: the first block runs, the second does not.
    GraphDefBuilder picky;
    picky.noOp("init")
        .placeholder(FragmentationContract::INPUT, {{-1, 43, 21}})
        .reshape("flat", FragmentationContract::INPUT, {128, ENCODED_SIZE})
        .slice(FragmentationContract::OUTPUT, "flat", {0, 0}, {128, 359});
    load(2, picky);
    Spectra out = MARK;
    EXPECT_FALSE(predictor.predictFragments(QStringList(128, QStringLiteral("PEPTIDE")), 2, &out).hasError());
    out = MARK;
    EXPECT_EQ(predictor.predictFragments(QStringList(130, QStringLiteral("PEPTIDE")), 2, &out).code(), Failure);
    EXPECT_EQ(out.size(), MARK.size());
}

TEST_F(FragmentBatchPrediction, NamesEveryIon)
{
    std::vector<float> intensities(359, 0.0F);
    constexpr std::size_t L = 43;       // slots of each full series
    intensities[0] = 0.1F;              // y1
    intensities[L + 1] = 0.2F;          // b2
    intensities[2 * L + 1] = 0.3F;      // y2, doubly charged
    intensities[4 * L] = 0.4F;          // a1
    intensities[4 * L + 15 + 1] = 0.5F; // y2-H2O
    intensities[7 * L + 15] = 0.6F;     // b1-NH3
    intensities[3] = 0.7F;              // y4, which the peptide does not have
    load(2, constantNetwork(2, intensities));
    Spectra spectra;
    ASSERT_FALSE(predictor.predictFragments({QStringLiteral("GAS")}, 2, &spectra).hasError());
    const auto ion = [](double mz, float intensity, char16_t type, int number, int charge, const char *loss) {
        return FragmentPeak{mz, intensity, type, number, charge, QString::fromLatin1(loss)};
    };
    // Residues (Matrix Science, six digits): G 57.021464, A 71.037114, S 87.032028.
    const QList<FragmentPeak> expected{
        ion(30.033826, 0.4F, u'a', 1, 1, ""),  ion(41.002191, 0.6F, u'b', 1, 1, "-NH3"),
        ion(89.047130, 0.3F, u'y', 2, 2, ""),  ion(106.049869, 0.1F, u'y', 1, 1, ""),
        ion(129.065854, 0.2F, u'b', 2, 1, ""), ion(159.076418, 0.5F, u'y', 2, 1, "-H2O")};
    ASSERT_EQ(spectra.size(), 1);
    ASSERT_EQ(spectra.first().size(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        const FragmentPeak &peak = spectra.first().at(i);
        EXPECT_NEAR(peak.mz, expected.at(i).mz, 3e-6);
        EXPECT_TRUE(isSameIon(peak, expected.at(i))) << i;
        EXPECT_EQ(peak.intensity, expected.at(i).intensity);
    }
}

TEST_F(FragmentBatchPrediction, OfNoPeptidesEmptiesOut)
{
    ASSERT_FALSE(files.init(&predictor).hasError());
    Spectra out = MARK;
    const Error outcome = predictor.predictFragments({}, 2, &out);
    EXPECT_FALSE(outcome.hasError());
    EXPECT_FALSE(outcome.hasWarnings());
    EXPECT_TRUE(out.isEmpty());
}

TEST_F(FragmentBatchPrediction, WarnsOfEachPeptideThatIsTooLong)
{
    load(1, constantNetwork(1, std::vector<float>(177, 1.0F)));
    const QString tooLong(28, u'G');
    const QString withPercent = QStringLiteral("%1%2%3") + QString(25, u'G');
    Spectra out = MARK;
    const Error outcome =
        predictor.predictFragments({withPercent, QStringLiteral("GAS"), tooLong, QString(27, u'G')}, 1, &out);
    EXPECT_FALSE(outcome.hasError());
    EXPECT_EQ(
        outcome.warnings(),
        (QStringList{
            withPercent + QStringLiteral(" has 31 residues, more than the 27 of precursor charge 1: not predicted"),
            tooLong + QStringLiteral(" has 28 residues, more than the 27 of precursor charge 1: not predicted")}));
    ASSERT_EQ(out.size(), 4);
    EXPECT_TRUE(out.at(0).isEmpty());
    EXPECT_FALSE(out.at(1).isEmpty());
    EXPECT_TRUE(out.at(2).isEmpty());
    EXPECT_FALSE(out.at(3).isEmpty());
}

TEST_F(FragmentBatchPrediction, OfTooLongPeptidesOnlyHasAsManyEmptySpectra)
{
    ASSERT_FALSE(files.init(&predictor).hasError());
    Spectra out = MARK;
    const Error outcome = predictor.predictFragments(QStringList(3, QString(53, u'G')), 4, &out);
    EXPECT_FALSE(outcome.hasError());
    EXPECT_EQ(outcome.warnings().size(), 3);
    EXPECT_EQ(out.size(), 3);
}

TEST_F(FragmentBatchPrediction, WarnsOfPeptidesThatTheOnePeptideCallRefuses)
{
    load(2, constantNetwork(2, std::vector<float>(359, 1.0F)));
    predictor.setCysteineFixedMass(1e6);
    const QStringList peptides{
        QStringLiteral("PEPTIDEC"), QStringLiteral("PEPTIDE"), QString(44, u'G'), QStringLiteral("CP"), QString(),
        QStringLiteral("PxP")};
    Spectra out;
    const Error outcome = predictor.predictFragments(peptides, 2, &out);
    EXPECT_FALSE(outcome.hasError());
    const QString tooHeavy =
        QStringLiteral("%1 has a fragment whose mass is not finite or above 1e6 Da: not predicted");
    EXPECT_EQ(
        outcome.warnings(),
        (QStringList{tooHeavy.arg(peptides.at(0)),
                     peptides.at(2) +
                         QStringLiteral(" has 44 residues, more than the 43 of precursor charge 2: not predicted"),
                     tooHeavy.arg(peptides.at(3))}))
        << "in the order of the peptides";
    const QList<bool> predicted{false, true, false, false, false, true};
    for (int i = 0; i < peptides.size(); ++i)
        EXPECT_EQ(!out.at(i).isEmpty(), predicted.at(i)) << i;
}

TEST_F(FragmentBatchPrediction, PredictsPeptidesThatBeginOrEndWithAnUnknownResidue)
{
    load(2, LinearNetwork::random(2, 13).graph());
    expectSameAsOneByOne({QStringLiteral("UPEPTIDEK"), QStringLiteral("PEPTIDEx"), QStringLiteral("xP"),
                          QStringLiteral("pep"), QStringLiteral("x")},
                         2);
}

TEST_F(FragmentBatchPrediction, WarnsWhereTheCysteineMassGivesNoFragmentMass)
{
    load(2, constantNetwork(2, std::vector<float>(359, 1.0F)));
    for (const double mass : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 2e6}) {
        predictor.setCysteineFixedMass(mass);
        Spectra out;
        const Error outcome = predictor.predictFragments({QStringLiteral("GCA"), QStringLiteral("GAA")}, 2, &out);
        EXPECT_FALSE(outcome.hasError());
        EXPECT_EQ(outcome.warnings().size(), 1);
        EXPECT_TRUE(out.at(0).isEmpty());
        EXPECT_FALSE(out.at(1).isEmpty());
        QList<QPointF> spectrum;
        EXPECT_EQ(predictor.predictMsMsFragmentation(QStringLiteral("GCA"), 2, &spectrum).code(), InvalidInput)
            << "as the one-peptide call does";
    }
}

TEST_F(FragmentBatchPrediction, LeavesOutFragmentsOfNegativeMz)
{
    load(2, constantNetwork(2, std::vector<float>(359, 1.0F)));
    predictor.setCysteineFixedMass(-1000.0);
    Spectra out;
    const Error outcome = predictor.predictFragments({QStringLiteral("CCC")}, 2, &out);
    EXPECT_FALSE(outcome.hasError());
    EXPECT_FALSE(outcome.hasWarnings());
    EXPECT_TRUE(out.at(0).isEmpty());
}

TEST_F(FragmentBatchPrediction, PredictsDuplicatesAlike)
{
    load(3, LinearNetwork::random(3, 9).graph());
    Spectra out;
    const QString peptide = QStringLiteral("LQSRPAAPPAPGPGQLTLR");
    ASSERT_FALSE(predictor.predictFragments({peptide, QStringLiteral("GAS"), peptide}, 3, &out).hasError());
    ASSERT_EQ(out.at(0).size(), out.at(2).size());
    for (qsizetype i = 0; i < out.at(0).size(); ++i) {
        EXPECT_EQ(out.at(0).at(i).mz, out.at(2).at(i).mz);
        EXPECT_EQ(out.at(0).at(i).intensity, out.at(2).at(i).intensity);
    }
    EXPECT_NE(out.at(0).size(), out.at(1).size());
}

TEST_F(FragmentBatchPrediction, WithoutANetworkFails)
{
    for (int charge = -1; charge <= 6; ++charge) {
        Spectra out = MARK;
        const Error error = predictor.predictFragments({QStringLiteral("PEPTIDE")}, charge, &out);
        EXPECT_EQ(error.code(), Failure);
        EXPECT_EQ(error.message(), QStringLiteral("No network is loaded for precursor charge %1").arg(charge));
        EXPECT_EQ(out.size(), MARK.size());
    }
}

TEST_F(FragmentBatchPrediction, RefusesToPredictIntoNothing)
{
    ASSERT_FALSE(files.init(&predictor).hasError());
    EXPECT_EQ(predictor.predictFragments({QStringLiteral("PEPTIDE")}, 2, nullptr).code(), InvalidInput);
}

TEST_F(FragmentBatchPrediction, ReportsAMissingOperation)
{
    GraphDefBuilder graph;
    load(2, graph.noOp("init"));
    const MessageRecorder log;
    Spectra out = MARK;
    const Error error = predictor.predictFragments({QStringLiteral("PEPTIDE")}, 2, &out);
    EXPECT_EQ(error.code(), Failure);
    QStringList sources;
    for (const CaughtAt &place : error.trail())
        sources.append(place.sourceFile);
    EXPECT_EQ(sources, (QStringList{QStringLiteral("ml/src/Tensor"), QStringLiteral("ml/src/Tensor"),
                                    QStringLiteral("ml/src/FragmentBatch"), QStringLiteral("ml/src/FragmentBatch"),
                                    QStringLiteral("ml/src/MsMsFragmentationPredictomatic")}));
    EXPECT_TRUE(error.trail().last().functionSignature.contains(QStringLiteral("predictFragments")));
    EXPECT_EQ(log.criticalTexts(), QStringList{QStringLiteral("No operation named import/conv1d_1_input exists")});
    EXPECT_EQ(out.size(), MARK.size());
}

TEST_F(FragmentBatchPrediction, RefusesAnOutputOfAnotherSize)
{
    load(1, constantNetwork(1, std::vector<float>(176, 1.0F)));
    Spectra out = MARK;
    const Error error = predictor.predictFragments({QStringLiteral("PEPTIDE"), QStringLiteral("GAS")}, 1, &out);
    EXPECT_EQ(error.code(), Failure);
    EXPECT_TRUE(error.trail().first().functionSignature.contains(QStringLiteral("ErrorUtils::equal")));
    EXPECT_EQ(out.size(), MARK.size());
}

TEST_F(FragmentBatchPrediction, RefusesAnOutputThatForgetsPeptides)
{
    GraphDefBuilder forgetful;
    forgetful.noOp("init")
        .placeholder(FragmentationContract::INPUT, {{-1, 43, 21}})
        .reshape("flat", FragmentationContract::INPUT, {-1, ENCODED_SIZE})
        .slice(FragmentationContract::OUTPUT, "flat", {0, 0}, {1, 359});
    load(2, forgetful);
    Spectra out = MARK;
    EXPECT_FALSE(predictor.predictFragments({QStringLiteral("PEPTIDE")}, 2, &out).hasError()) << "one is all it has";
    EXPECT_EQ(predictor.predictFragments({QStringLiteral("PEPTIDE"), QStringLiteral("GAS")}, 2, &out).code(), Failure);
    EXPECT_EQ(out.size(), 1) << "as the successful call left it";
}

TEST_F(FragmentBatchPrediction, KeepsTheOrderOfTenThousandPeptides)
{
    load(1, LinearNetwork::random(1, 11).graph());
    std::mt19937 generator(12);
    const QStringList peptides = randomPeptides(10000, 1, &generator);
    Spectra spectra;
    ASSERT_FALSE(predictor.predictFragments(peptides, 1, &spectra).hasError());
    ASSERT_EQ(spectra.size(), peptides.size());
    for (qsizetype i = 0; i < peptides.size(); i += 97) {
        const auto expected = monoisotopicPeaks(&predictor, peptides.at(i), 1);
        ASSERT_TRUE(expected.has_value());
        EXPECT_TRUE(haveSamePeaks(spectra.at(i), *expected, EXACT)) << peptides.at(i).toStdString();
    }
}

} // namespace
} // namespace zav
