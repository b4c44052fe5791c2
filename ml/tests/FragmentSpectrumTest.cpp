// SPDX-License-Identifier: Apache-2.0
#include "FragmentationInspector.h"
#include "FragmentationTest.h"
#include "NaiveSpectrum.h"
#include "SpectrumAssembler.h"
#include "SpectrumLimits.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zav {
namespace {

using Fragment = MsMsFragmentationPredictomaticInspector::Fragment;

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();

class FragmentSpectrum : public ::testing::Test
{
protected:
    Result<QList<QPointF>> build(const QString &peptide, int charge, float intensity) const
    {
        const QList<Fragment> ladder = steps.buildMzPoints(peptide, charge);
        return steps.buildPoints(ladder, std::vector<float>(ladder.size(), intensity));
    }

    MsMsFragmentationPredictomatic predictor;
    MsMsFragmentationPredictomaticInspector steps{&predictor};
};

bool isSortedByMz(const QList<QPointF> &points)
{
    return std::is_sorted(points.cbegin(), points.cend(),
                          [](const QPointF &a, const QPointF &b) { return a.x() < b.x(); });
}

/// The points at exactly the m/z of a fragment.
int monoisotopicCount(const QList<QPointF> &points, const QList<Fragment> &ladder)
{
    return static_cast<int>(std::count_if(points.cbegin(), points.cend(), [&ladder](const QPointF &point) {
        return std::any_of(ladder.cbegin(), ladder.cend(),
                           [&point](const Fragment &fragment) { return fragment.mz == point.x(); });
    }));
}

TEST_F(FragmentSpectrum, RefusesOneIntensityTooFew)
{
    const QList<Fragment> ladder = steps.buildMzPoints(QStringLiteral("GA"), 1);
    const Result<QList<QPointF>> points = steps.buildPoints(ladder, std::vector<float>(176, 1.0F));
    ASSERT_TRUE(points.hasError());
    EXPECT_EQ(points.error().code(), Failure);
    ASSERT_EQ(points.error().trail().size(), 2);
    EXPECT_TRUE(points.error().trail().first().functionSignature.contains(QStringLiteral("ErrorUtils::equal")));
    EXPECT_EQ(points.error().trail().first().sourceFile, QStringLiteral("common/core_mini/src/algo/ErrorUtils"));
    const CaughtAt place = points.error().trail().last();
    EXPECT_TRUE(place.functionSignature.contains(QStringLiteral("MsMsFragmentationPredictomatic::buildPoints(")));
    EXPECT_EQ(place.sourceFile, QStringLiteral("ml/src/MsMsFragmentationPredictomatic"));
    EXPECT_EQ(place.line, 256);
}

TEST_F(FragmentSpectrum, OfOneResidueHasSevenFragmentsWithIsotopes)
{
    const QList<Fragment> ladder = steps.buildMzPoints(QStringLiteral("A"), 1);
    const Result<QList<QPointF>> points = build(QStringLiteral("A"), 1, 0.5F);
    ASSERT_FALSE(points.hasError());
    EXPECT_EQ(monoisotopicCount(points.value(), ladder), 7);
    EXPECT_GE(points.value().size(), 14) << "every envelope has two peaks at least";
    EXPECT_TRUE(isSortedByMz(points.value()));
}

TEST_F(FragmentSpectrum, KeepsFragmentsOfEqualMz)
{
    // y1-H2O and b1 of one residue are the same ion.
    const QList<QPointF> points = build(QStringLiteral("A"), 1, 0.5F).value();
    const double b1 = steps.buildMzPoints(QStringLiteral("A"), 1).at(27).mz;
    EXPECT_EQ(std::count_if(points.cbegin(), points.cend(), [b1](const QPointF &point) { return point.x() == b1; }), 2);
}

TEST_F(FragmentSpectrum, KeepsFragmentsWithoutIntensity)
{
    const QList<QPointF> zeros = build(QStringLiteral("A"), 1, 0.0F).value();
    EXPECT_EQ(zeros.size(), build(QStringLiteral("A"), 1, 0.5F).value().size());
    EXPECT_TRUE(std::all_of(zeros.cbegin(), zeros.cend(), [](const QPointF &point) { return point.y() == 0.0; }));
}

TEST_F(FragmentSpectrum, GivesNegativeIntensitiesNegativeIsotopes)
{
    const QList<QPointF> points = build(QStringLiteral("A"), 1, -1.0F).value();
    EXPECT_TRUE(std::all_of(points.cbegin(), points.cend(), [](const QPointF &point) { return point.y() < 0.0; }));
}

TEST_F(FragmentSpectrum, PassesIntensitiesThatAreNoNumbers)
{
    for (const float odd : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        const QList<QPointF> points = build(QStringLiteral("GASP"), 2, odd).value();
        EXPECT_TRUE(isSortedByMz(points));
        EXPECT_TRUE(std::none_of(points.cbegin(), points.cend(),
                                 [](const QPointF &point) { return std::isfinite(point.y()); }));
    }
}

TEST_F(FragmentSpectrum, OfAnEmptyPeptideIsEmpty)
{
    const Result<QList<QPointF>> points = build(QString(), 3, 1.0F);
    ASSERT_FALSE(points.hasError());
    EXPECT_TRUE(points.value().isEmpty());
}

TEST_F(FragmentSpectrum, HasTheMonoisotopicPeakAloneOfAFragmentThatWeighsNothing)
{
    // Of the seven fragments y1 and y1-NH3 weigh something: as much as water, and as that less ammonia.
    const Result<QList<QPointF>> points = build(QStringLiteral("X"), 1, 1.0F);
    ASSERT_FALSE(points.hasError());
    const double proton = 1.00727646677;
    const double y1 = 18.010565 + proton;
    const double lessAmmonia = y1 - 17.026549;
    QList<double> mzs{proton, proton, lessAmmonia, lessAmmonia + 1.0033548, y1, y1 + 1.0033548};
    ASSERT_EQ(points.value().size(), mzs.size());
    for (qsizetype i = 0; i < mzs.size(); ++i)
        EXPECT_NEAR(points.value().at(i).x(), mzs.at(i), 1e-12) << i;
}

TEST_F(FragmentSpectrum, KeepsAFragmentAtZeroMz)
{
    Fragment fragment;
    fragment.charge = 1;
    for (const double mz : {0.0, -0.0}) {
        fragment.mz = mz;
        const Result<QList<QPointF>> points = steps.buildPoints({fragment}, {0.5F});
        ASSERT_FALSE(points.hasError());
        EXPECT_EQ(points.value(), (QList<QPointF>{{0.0, 0.5}}));
    }
}

TEST_F(FragmentSpectrum, FailsWithAFragmentThatIsTooHeavy)
{
    predictor.setCysteineFixedMass(1e6);
    const Result<QList<QPointF>> points = build(QStringLiteral("CA"), 1, 1.0F);
    ASSERT_TRUE(points.hasError());
    EXPECT_EQ(points.error().code(), InvalidInput);
    EXPECT_FALSE(points.error().message().isEmpty());
    EXPECT_EQ(lastPlacesOf(points.error(), 2),
              (QStringList{QStringLiteral("MsMsFragmentationPredictomatic::addIsotopesToFragments 440"),
                           QStringLiteral("MsMsFragmentationPredictomatic::buildPoints 274")}));
}

TEST_F(FragmentSpectrum, FailsWithAnMzThatIsNoNumberBeforeAnythingIsSorted)
{
    for (const double mass : {NOT_A_NUMBER, INFINITE}) {
        predictor.setCysteineFixedMass(mass);
        const Result<QList<QPointF>> points = build(QStringLiteral("GACK"), 2, 1.0F);
        ASSERT_TRUE(points.hasError());
        EXPECT_EQ(points.error().code(), InvalidInput);
    }
}

TEST_F(FragmentSpectrum, SkipsFragmentsOfNegativeMzLikePlaceholders)
{
    predictor.setCysteineFixedMass(-1000.0);
    const Result<QList<QPointF>> points = build(QStringLiteral("CCC"), 3, 1.0F);
    ASSERT_FALSE(points.hasError());
    EXPECT_TRUE(points.value().isEmpty());
}

TEST_F(FragmentSpectrum, IsotopesFollowTheEnvelopeWithoutItsFirstPeak)
{
    // The reference's binomial series and the library's recurrence agree to 3e-6; averagine's mass is known to 1e-7.
    constexpr double RELATIVE_TOLERANCE = 1e-5;
    constexpr double MZ_TOLERANCE = 1e-6;
    const QPointF monoisotopic(800.4, 0.25);
    const Result<QList<QPointF>> isotopes = steps.addIsotopesToFragments(monoisotopic, 2);
    ASSERT_FALSE(isotopes.hasError());
    const double neutralMass = 2 * (800.4 - 1.00727646677);
    const std::vector<double> envelope = naive::isotopeEnvelope(neutralMass, 12);
    ASSERT_GE(isotopes.value().size(), 4);
    for (int k = 1; k <= isotopes.value().size(); ++k) {
        const QPointF &isotope = isotopes.value().at(k - 1);
        EXPECT_NEAR(isotope.x(), 800.4 + k * 1.0033548 / 2, MZ_TOLERANCE);
        EXPECT_NEAR(isotope.y(), 0.25 * envelope[k], 0.25 * envelope[k] * RELATIVE_TOLERANCE);
    }
}

TEST_F(FragmentSpectrum, IsotopesOfAnImpossibleIonFail)
{
    for (const double mz : {1e6 + 1.1, NOT_A_NUMBER, INFINITE, -INFINITE}) {
        const Result<QList<QPointF>> isotopes = steps.addIsotopesToFragments({mz, 1.0}, 1);
        ASSERT_TRUE(isotopes.hasError());
        EXPECT_EQ(isotopes.error().code(), InvalidInput);
        EXPECT_EQ(lastPlacesOf(isotopes.error(), 1),
                  QStringList{QStringLiteral("MsMsFragmentationPredictomatic::addIsotopesToFragments 440")});
    }
}

TEST_F(FragmentSpectrum, IonsWithoutMassHaveNoIsotopes)
{
    for (const double mz : {1.00727646677, 0.5, 0.0, -27.0}) {
        const Result<QList<QPointF>> isotopes = steps.addIsotopesToFragments({mz, 1.0}, 1);
        ASSERT_FALSE(isotopes.hasError());
        EXPECT_TRUE(isotopes.value().isEmpty()) << mz;
    }
}

TEST(HighestIsotopeAbundance, IsNotExceededUpToThreeChargesAtTheHighestMz)
{
    const TheoreticalIsotopePoint2dListGenerator generator;
    for (double mass = -5.0; mass <= 3 * spectrumLimits::HIGHEST_MZ; mass += 0.5) {
        const auto points = generator.buildTheoreticalIsotopicDistributionPoints(mass, 1, 0.0).value();
        for (const QPointF &isotope : points.mid(1))
            ASSERT_LE(isotope.y(), highestIsotopeAbundance(mass)) << mass;
    }
}

TEST(SpectrumLimits, KeepPeaksAtTheLimitsAndWhatIsNoNumber)
{
    using spectrumLimits::isOutside;
    EXPECT_FALSE(isOutside(2000.0, 1.0));
    EXPECT_TRUE(isOutside(std::nextafter(2000.0, 3000.0), 1.0));
    EXPECT_FALSE(isOutside(100.0, 0.025));
    EXPECT_TRUE(isOutside(100.0, std::nextafter(0.025, 0.0)));
    EXPECT_TRUE(isOutside(100.0, -INFINITE));
    EXPECT_TRUE(isOutside(INFINITE, 1.0));
    EXPECT_FALSE(isOutside(NOT_A_NUMBER, 1.0));
    EXPECT_FALSE(isOutside(100.0, NOT_A_NUMBER));
    EXPECT_FALSE(isOutside(-100.0, INFINITE));
}

} // namespace
} // namespace zav
