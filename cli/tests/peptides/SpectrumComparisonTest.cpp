// SPDX-License-Identifier: Apache-2.0
#include "SpectrumComparison.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zav {
namespace {

// AG has one ion of each series: b1 at 71.037114 + 1.007276, y1 at 57.021464 + 18.010565 + 1.007276.
constexpr double B1 = 72.044390;
constexpr double Y1 = 76.039305;

FragmentPeak ion(double mz, double intensity, QChar type, int number = 1)
{
    FragmentPeak peak;
    peak.mz = mz;
    peak.intensity = intensity;
    peak.ionType = type;
    peak.ionNumber = number;
    peak.charge = 1;
    return peak;
}

PredictedSpectrum alanylGlycine(const QList<FragmentPeak> &peaks, int charge = 1)
{
    return {{"AG", charge}, Peptidoform("AG"), 0, 0, peaks};
}

ObservedSpectrum spectrum(const QList<QPointF> &peaks)
{
    return {"", 0, 0, peaks};
}

QList<std::pair<int, int>> pairsOf(const SpectrumComparison &comparison)
{
    QList<std::pair<int, int>> pairs;
    for (const PeakMatch &match : comparison.matches)
        pairs.append({match.predicted, match.observed});
    return pairs;
}

using Pairs = QList<std::pair<int, int>>;

TEST(SpectralAngle, IsOneWhereIntensitiesAreProportional)
{
    const auto comparison =
        compareSpectra(alanylGlycine({ion(B1, 0.6, u'b'), ion(Y1, 0.8, u'y')}), spectrum({{B1, 300}, {Y1, 400}}));
    EXPECT_NEAR(comparison.cosine, 1, 1e-12);
    EXPECT_NEAR(comparison.spectralAngle, 1, 1e-6); // acos is steep at 1
}

TEST(SpectralAngle, OfSwappedIntensitiesAgreesWithAHandCalculation)
{
    // cos = (0.6 * 400 + 0.8 * 300) / (1 * 500) = 0.96; 1 - 2 acos(0.96) / pi = 1 - 2 * 0.2837941 / 3.1415927
    const auto comparison =
        compareSpectra(alanylGlycine({ion(B1, 0.6, u'b'), ion(Y1, 0.8, u'y')}), spectrum({{B1, 400}, {Y1, 300}}));
    EXPECT_NEAR(comparison.cosine, 0.96, 1e-12);
    EXPECT_NEAR(comparison.spectralAngle, 0.819331, 1e-6);
}

TEST(SpectralAngle, DoesNotDependOnTheUnitOfTheIntensities)
{
    for (const double unit : {1e305, 1e-300}) { // the squares overflow, or vanish
        const auto comparison = compareSpectra(alanylGlycine({ion(B1, 0.6, u'b'), ion(Y1, 0.8, u'y')}),
                                               spectrum({{B1, 400 * unit}, {Y1, 300 * unit}, {500, 300 * unit}}));
        EXPECT_NEAR(comparison.cosine, 0.96, 1e-12);
        EXPECT_NEAR(comparison.explainedIntensity, 0.7, 1e-12);
    }
}

TEST(SpectralAngle, FallsForAnIonThatIsSeenButNotPredicted)
{
    // cos = 0.6 * 300 / (0.6 * 500)
    const auto comparison = compareSpectra(alanylGlycine({ion(B1, 0.6, u'b')}), spectrum({{B1, 300}, {Y1, 400}}));
    EXPECT_NEAR(comparison.cosine, 0.6, 1e-12);
    EXPECT_NEAR(comparison.spectralAngle, 0.409666, 1e-6);
}

TEST(SpectralAngle, FallsForAnIonThatIsPredictedButNotSeen)
{
    const auto comparison =
        compareSpectra(alanylGlycine({ion(B1, 0.6, u'b'), ion(Y1, 0.8, u'y')}), spectrum({{B1, 300}, {500, 400}}));
    EXPECT_NEAR(comparison.cosine, 0.6, 1e-12);
}

TEST(SpectralAngle, IsZeroWhereNothingAgrees)
{
    for (const auto &[predicted, observed] :
         {std::pair<QList<FragmentPeak>, QList<QPointF>>{{ion(B1, 1, u'b')}, {{Y1, 1}}},
          {{ion(B1, 1, u'b')}, {}},
          {{}, {{B1, 1}}},
          {{}, {}}}) {
        const auto comparison = compareSpectra(alanylGlycine(predicted), spectrum(observed));
        EXPECT_EQ(comparison.cosine, 0);
        EXPECT_NEAR(comparison.spectralAngle, 0, 1e-12);
    }
}

TEST(SpectralAngle, LeavesOutLossesIsotopesAndPeaksOfNoIon)
{
    FragmentPeak loss = ion(B1 - 18.010565, 5, u'b');
    loss.neutralLoss = "-H2O";
    FragmentPeak isotope = ion(B1 + 1.003355, 5, u'b');
    isotope.isotope = 1;
    const auto comparison = compareSpectra(alanylGlycine({ion(B1, 1, u'b'), loss, isotope}),
                                           spectrum({{B1 - 18.010565, 9}, {60, 70}, {B1, 3}, {Y1, 4}}));
    EXPECT_NEAR(comparison.cosine, 0.6, 1e-12);
}

TEST(SpectralAngle, LooksForTheIonsWhereTheirModificationsPutThem)
{
    const double oxidation = 15.994915;
    const Peptidoform oxidised = Peptidoform::fromProForma("AM[Oxidation]").value();
    const PredictedSpectrum predicted{{"AM[Oxidation]", 1}, oxidised, 0, 0, {ion(B1, 0.6, u'b')}};
    const double y1 = 131.040485 + oxidation + 18.010565 + 1.007276;
    EXPECT_NEAR(compareSpectra(predicted, spectrum({{B1, 300}, {y1, 400}})).cosine, 0.6, 1e-12);
    EXPECT_NEAR(compareSpectra(predicted, spectrum({{B1, 300}, {y1 - oxidation, 400}})).cosine, 1, 1e-12);
}

TEST(SpectralAngle, CountsIonsThatShareOneObservedPeakOnce)
{
    // Within 5 Da b1 and y1 cannot be told apart: one ion with 0.3 + 0.4 against one peak.
    const auto comparison = compareSpectra(alanylGlycine({ion(B1, 0.3, u'b'), ion(Y1, 0.4, u'y')}),
                                           spectrum({{74, 10}}), {5, MassTolerance::Dalton});
    EXPECT_NEAR(comparison.cosine, 1, 1e-12);
}

TEST(SpectralAngle, CountsFragmentChargesUpToThePrecursors)
{
    const double doublyChargedY1 = (57.021464 + 18.010565) / 2 + 1.007276;
    const auto observed = spectrum({{doublyChargedY1, 4}, {B1, 3}});
    EXPECT_NEAR(compareSpectra(alanylGlycine({ion(B1, 1, u'b')}, 1), observed).cosine, 1, 1e-12);
    EXPECT_NEAR(compareSpectra(alanylGlycine({ion(B1, 1, u'b')}, 2), observed).cosine, 0.6, 1e-12);
}

TEST(SpectralAngle, IsDefinedForAPeptideOfOneResidueAndForNone)
{
    EXPECT_EQ(compareSpectra({{"K", 1}, Peptidoform("K"), 0, 0, {}}, spectrum({{100, 1}})).cosine, 0);
    EXPECT_EQ(compareSpectra({{"", 1}, {}, 0, 0, {}}, spectrum({{100, 1}})).cosine, 0);
}

TEST(PeakMatching, TakesTheMostIntensePeakWithinTheTolerance)
{
    const auto comparison =
        compareSpectra(alanylGlycine({ion(100, 1, u'b')}),
                       spectrum({{99.98, 9}, {99.995, 1}, {100.005, 2}, {100.02, 9}}), {0.01, MassTolerance::Dalton});
    EXPECT_EQ(pairsOf(comparison), (Pairs{{0, 2}}));
}

TEST(PeakMatching, ReachesAsFarAsTheToleranceAndNoFurther)
{
    const auto matchAt = [](double mz) {
        return compareSpectra(alanylGlycine({ion(1000, 1, u'b')}), spectrum({{mz, 1}})).explainedPeaks;
    };
    // The default, 20 ppm, is 0.02 at m/z 1000.
    EXPECT_EQ(matchAt(1000.0199), 1);
    EXPECT_EQ(matchAt(1000.0201), 0);
    EXPECT_EQ(matchAt(999.9801), 1);
    EXPECT_EQ(matchAt(999.9799), 0);
}

TEST(PeakMatching, GivesAPeakToTheMostIntenseOfTheIonsThatClaimIt)
{
    const auto comparison =
        compareSpectra(alanylGlycine({ion(100, 0.2, u'b'), ion(100.001, 0.9, u'y'), ion(300, 0.1, u'y', 2)}),
                       spectrum({{100, 50}, {300, 10}}));
    EXPECT_EQ(pairsOf(comparison), (Pairs{{1, 0}, {2, 1}}));
}

TEST(PeakMatching, CountsExplainedPeaksAndTheirShareOfTheIntensity)
{
    const auto comparison = compareSpectra(alanylGlycine({ion(100, 1, u'b'), ion(200, 1, u'y'), ion(250, 1, u'y')}),
                                           spectrum({{100, 30}, {150, 50}, {200, 20}}));
    EXPECT_EQ(comparison.explainedPeaks, 2);
    EXPECT_EQ(comparison.observedPeaks, 3);
    EXPECT_DOUBLE_EQ(comparison.explainedIntensity, 0.5);
}

TEST(MassTolerance, IsReadWithItsUnit)
{
    for (const char *text : {"20", "20ppm", " 20 PPM ", "2e1ppm"}) {
        const auto tolerance = parseMassTolerance(text);
        ASSERT_FALSE(tolerance.hasError()) << text;
        EXPECT_EQ(tolerance.value().value, 20);
        EXPECT_EQ(tolerance.value().unit, MassTolerance::Ppm);
    }
    const auto dalton = parseMassTolerance("0.5 Da");
    ASSERT_FALSE(dalton.hasError());
    EXPECT_EQ(dalton.value().unit, MassTolerance::Dalton);
    EXPECT_EQ(dalton.value().at(123), 0.5);
    EXPECT_DOUBLE_EQ(parseMassTolerance("10ppm").value().at(500), 0.005);
}

TEST(MassTolerance, RefusesWhatIsNoTolerance)
{
    for (const char *text : {"", "ppm", "0", "-5", "0Da", "1e999", "5 mm", "5,5", "nan", "20 ppm 3", "2.5.6"})
        EXPECT_TRUE(parseMassTolerance(text).error().equals(InvalidInput)) << text;
    EXPECT_EQ(parseMassTolerance("wide").error().message(), "'wide' is not a tolerance such as 20ppm or 0.02Da");
}

} // namespace
} // namespace zav
