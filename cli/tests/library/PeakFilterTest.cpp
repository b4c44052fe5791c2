// SPDX-License-Identifier: Apache-2.0
#include "PeakFilter.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

const QList<FragmentPeak> PEAKS = {{102.1, 0.2, 'b', 1, 1, ""},     {147.1, 0.5, 'y', 1, 1, ""},
                                   {244.2, 0.1, 'a', 3, 1, ""},     {272.2, 0.4, 'b', 3, 1, ""},
                                   {470.3, 0.2, 'y', 4, 1, "-H2O"}, {488.3, 0.8, 'y', 4, 1, ""},
                                   {601.4, 0.2, 'y', 5, 1, ""}};

QList<FragmentPeak> applied(const PeakFilterOptions &options, const QList<FragmentPeak> &peaks)
{
    QList<FragmentPeak> kept;
    PeakFilter(options).apply(peaks, &kept);
    return kept;
}

/// `y4 1.000` and so on, in the order of the peaks.
std::string kept(const PeakFilterOptions &options, const QList<FragmentPeak> &peaks = PEAKS)
{
    QStringList texts;
    for (const FragmentPeak &peak : applied(options, peaks))
        texts.append(QStringLiteral("%1%2%3%4 %5")
                         .arg(peak.ionType)
                         .arg(peak.ionNumber)
                         .arg(peak.neutralLoss, peak.isotope == 0 ? QString() : QStringLiteral("+%1").arg(peak.isotope),
                              QString::number(peak.intensity, 'f', 3)));
    return texts.join(", ").toStdString();
}

TEST(PeakFilter, KeepsEverythingByDefaultAndScalesToTheBasePeak)
{
    EXPECT_EQ(kept({}), "b1 0.250, y1 0.625, a3 0.125, b3 0.500, y4-H2O 0.250, y4 1.000, y5 0.250");
}

TEST(PeakFilter, DropsIonsThatAreNotWanted)
{
    PeakFilterOptions options;
    options.minIonNumber = 4;
    EXPECT_EQ(kept(options), "y4-H2O 0.250, y4 1.000, y5 0.250");
    options.neutralLosses = false;
    EXPECT_EQ(kept(options), "y4 1.000, y5 0.250");
    options = {};
    options.minMz = 272.2;
    EXPECT_EQ(kept(options), "b3 0.500, y4-H2O 0.250, y4 1.000, y5 0.250");
    options = {};
    options.aIons = false;
    EXPECT_EQ(kept(options), "b1 0.250, y1 0.625, b3 0.500, y4-H2O 0.250, y4 1.000, y5 0.250");
}

TEST(PeakFilter, LeastIntensityIsRelativeToTheBasePeakOfWhatIsWanted)
{
    PeakFilterOptions options;
    options.minIntensity = 0.5;
    EXPECT_EQ(kept(options), "y1 0.625, b3 0.500, y4 1.000");
    EXPECT_EQ(kept(options, PEAKS.first(4)), "y1 1.000, b3 0.800");
}

TEST(PeakFilter, TopKeepsTheMostIntenseInTheOrderOfTheirMz)
{
    PeakFilterOptions options;
    options.top = 3;
    EXPECT_EQ(kept(options), "y1 0.625, b3 0.500, y4 1.000");
}

TEST(PeakFilter, OfEquallyIntensePeaksTheOneOfLowerMzStays)
{
    PeakFilterOptions options;
    options.top = 4; // b1, y4-H2O and y5 are alike
    EXPECT_EQ(kept(options), "b1 0.250, y1 0.625, b3 0.500, y4 1.000");
}

TEST(PeakFilter, NothingIsLeftOfNothing)
{
    PeakFilterOptions options;
    EXPECT_EQ(kept(options, {}), "");
    options.minIonNumber = 6;
    options.isotopes = true;
    EXPECT_EQ(kept(options), "");
}

// By hand: averagine (C 4.9384 H 7.7583 N 1.3577 O 1.4773 S 0.0417 a 111.1254 Da) of 487.29 Da has 21.7 C, 6.0 N,
// 6.5 O and 34 H. One heavier isotope: 21.7 x 0.0108 + 6.0 x 0.0037 + 6.5 x 0.0004 + 34 x 0.0001 = 0.264 of the
// lightest; two: 0.264 squared, halved, and 6.5 x 0.0021 of 18O and 0.18 x 0.045 of 34S = 0.056.
TEST(PeakFilter, IsotopesFollowTheirPeakByAveragine)
{
    PeakFilterOptions options;
    options.isotopes = true;
    const QList<FragmentPeak> peaks = applied(options, {{488.3, 0.8, 'y', 4, 1, ""}});
    ASSERT_EQ(peaks.size(), 3);
    EXPECT_EQ(peaks[1].isotope, 1);
    EXPECT_NEAR(peaks[1].mz - peaks[0].mz, 1.00335, 1e-4);
    EXPECT_NEAR(peaks[1].intensity, 0.264, 0.01);
    EXPECT_NEAR(peaks[2].intensity, 0.056, 0.01);
}

TEST(PeakFilter, IsotopesDoNotCountForTopAndObeyTheLeastIntensity)
{
    PeakFilterOptions options;
    options.isotopes = true;
    options.top = 1;
    options.minIntensity = 0.1;
    EXPECT_EQ(kept(options).substr(0, 14), "y4 1.000, y4+1");
    EXPECT_EQ(kept(options).find("y4+2"), std::string::npos);
}

} // namespace
} // namespace zav
