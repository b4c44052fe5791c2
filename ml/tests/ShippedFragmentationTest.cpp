// SPDX-License-Identifier: Apache-2.0
//
// The fragmentation networks that the project ships, through the public surface.
#include "FragmentComparison.h"
#include "FragmentationTest.h"

namespace zav {
namespace {

// A batch is cropped to its longest peptide, so that the runtime multiplies matrices of other shapes and sums floats in
// another order: intensities of up to 1 differ by some float steps.
constexpr double INTENSITY_TOLERANCE = 2e-5;

class ShippedFragmentation : public ::testing::TestWithParam<int>
{
protected:
    void SetUp() override
    {
        const QString model = QStringLiteral(ZAV_MODELS_DIR "/msms_charge%1.pb");
        const Error error = predictor.init(model.arg(1), model.arg(2), model.arg(3), model.arg(4), model.arg(5));
        ASSERT_FALSE(error.hasError()) << error.toString().toStdString();
    }

    MsMsFragmentationPredictomatic predictor;
};

TEST_P(ShippedFragmentation, GivesASpectrumWhoseBasePeakIsOne)
{
    for (const QString &peptide : {QStringLiteral("LQSRPAAPPAPGPGQLTLR"), QStringLiteral("AVMDDFAAFVEK")}) {
        QList<QList<FragmentPeak>> spectra;
        ASSERT_FALSE(predictor.predictFragments({peptide}, GetParam(), &spectra).hasError());
        double highest = 0.0;
        for (const FragmentPeak &peak : spectra.first())
            highest = std::max(highest, peak.intensity);
        EXPECT_NEAR(highest, 1.0, INTENSITY_TOLERANCE) << peptide.toStdString();
        EXPECT_GE(spectra.first().size(), 5);
    }
}

TEST_P(ShippedFragmentation, PredictsEveryLengthUpToTheLimit)
{
    std::mt19937 generator(1);
    const int charge = GetParam();
    for (int length = 1; length <= predictor.getMaximumPeptideLengthForCharge(charge); ++length) {
        QList<QPointF> spectrum;
        const QString peptide = randomPeptide(length, &generator);
        ASSERT_FALSE(predictor.predictMsMsFragmentation(peptide, charge, &spectrum).hasError());
        for (const QPointF &point : spectrum)
            EXPECT_TRUE(std::isfinite(point.x()) && std::isfinite(point.y()));
    }
}

TEST_P(ShippedFragmentation, BatchGivesWhatOnePeptideCallsGive)
{
    std::mt19937 generator(2);
    const int charge = GetParam();
    QStringList peptides;
    for (int i = 0; i < 200; ++i)
        peptides.append(randomPeptide(
            static_cast<int>(generator() % (FragmentationContract::of(charge).maximumLength + 1)), &generator));
    QList<QList<FragmentPeak>> spectra;
    ASSERT_FALSE(predictor.predictFragments(peptides, charge, &spectra).hasError());
    for (qsizetype i = 0; i < peptides.size(); ++i) {
        const auto expected = monoisotopicPeaks(&predictor, peptides.at(i), charge);
        ASSERT_TRUE(expected.has_value());
        EXPECT_TRUE(haveSamePeaks(spectra.at(i), *expected, INTENSITY_TOLERANCE)) << peptides.at(i).toStdString();
    }
}

TEST_P(ShippedFragmentation, NamedPeaksAreThoseOfTheOnePeptideCall)
{
    // One peptide a call, so that the network does the same work in both.
    constexpr double ROUNDING = 1e-6;
    std::mt19937 generator(3);
    const int charge = GetParam();
    QStringList peptides{QStringLiteral("LQSRPAAPPAPGPGQLTLR"),
                         QStringLiteral("UPEPTIDEK"),
                         QStringLiteral("A"),
                         QStringLiteral("GAGAGAG"),
                         QStringLiteral("xxxx"),
                         QString()};
    for (int length = 5; length <= predictor.getMaximumPeptideLengthForCharge(charge); ++length)
        peptides.append(randomPeptide(length, &generator));
    qsizetype isotopeCount = 0;
    for (const QString &peptide : peptides) {
        SCOPED_TRACE(peptide.toStdString());
        QList<QPointF> expected;
        ASSERT_FALSE(predictor.predictMsMsFragmentation(peptide, charge, &expected).hasError());
        QList<QList<FragmentPeak>> spectra;
        ASSERT_FALSE(predictor.predictFragments({peptide}, charge, &spectra, IsotopePeaks::Included).hasError());
        ASSERT_EQ(spectra.first().size(), expected.size());
        EXPECT_TRUE(areSamePeaksInOrder(spectra.first(), expected, ROUNDING));
        EXPECT_TRUE(areNamedAfterIsotopes(spectra.first(), &predictor, peptide, charge));
        isotopeCount += std::count_if(spectra.first().cbegin(), spectra.first().cend(),
                                      [](const FragmentPeak &peak) { return peak.isotope > 0; });
    }
    EXPECT_GT(isotopeCount, 10 * peptides.size());
}

INSTANTIATE_TEST_SUITE_P(AllCharges, ShippedFragmentation, ::testing::Range(1, 6));

} // namespace
} // namespace zav
