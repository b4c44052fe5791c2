// SPDX-License-Identifier: Apache-2.0
#include "PeakNaming.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

// 13C - 12C (AME2012): the distance of neighbouring isotope peaks.
constexpr double ISOTOPE_SPACING = 1.0033548;

QStringList names(const QList<QPointF> &points, const QList<FragmentPeak> &fragments,
                  const QList<FragmentPeak> &silent = {})
{
    const Result<QList<AnnotatedPeak>> peaks = namePeaks(points, fragments, silent);
    EXPECT_FALSE(peaks.hasError());
    QStringList names;
    for (const AnnotatedPeak &peak : peaks.value())
        names.append(peak.ionName);
    return names;
}

TEST(PeakNaming, MonoisotopicPeaksTakeTheNameOfTheirFragment)
{
    const QList<FragmentPeak> fragments = {{147.1128, 0.5, QLatin1Char('y'), 1, 1, {}},
                                           {392.7, 1.0, QLatin1Char('y'), 7, 2, QStringLiteral("-H2O")}};
    EXPECT_EQ(names({{147.1128, 0.5}, {392.7, 1.0}}, fragments), QStringList({"y1+", "y7-H2O++"}));
}

TEST(PeakNaming, IsotopesOfAChargedFragmentStandAtFractionsOfTheSpacing)
{
    const QList<FragmentPeak> fragments = {{500.0, 1.0, QLatin1Char('b'), 9, 2, {}}};
    EXPECT_EQ(names({{500.0, 1.0}, {500.0 + ISOTOPE_SPACING / 2, 0.5}, {500.0 + ISOTOPE_SPACING, 0.2}}, fragments),
              QStringList({"b9++", "b9++ i1", "b9++ i2"}));
}

TEST(PeakNaming, EveryPointStaysWithItsOwnValuesInItsPlace)
{
    const QList<FragmentPeak> fragments = {{500.0, 1.0, QLatin1Char('b'), 9, 1, {}}};
    const auto peaks = namePeaks({{499.0, 0.3}, {500.00001, 0.9}}, fragments, {});
    ASSERT_EQ(peaks.value().size(), 2);
    EXPECT_EQ(peaks.value()[0].ionName.toStdString(), "");
    EXPECT_TRUE(peaks.value()[0].ionType.isNull());
    EXPECT_EQ(peaks.value()[1].ionName.toStdString(), "b9+");
    EXPECT_EQ(peaks.value()[1].mz, 500.00001);
    EXPECT_EQ(peaks.value()[1].intensity, 0.9);
}

TEST(PeakNaming, IonsAtOneMzAreToldApartByIntensityAndGivenOnce)
{
    const QList<FragmentPeak> fragments = {{129.10224, 0.9, QLatin1Char('y'), 1, 1, QStringLiteral("-H2O")},
                                           {129.10224, 0.2, QLatin1Char('b'), 1, 1, {}}};
    EXPECT_EQ(names({{129.10224, 0.2}, {129.10224, 0.9}}, fragments), QStringList({"b1+", "y1-H2O+"}));
    EXPECT_EQ(names({{129.10224, 0.9}, {129.10224, 0.9}, {129.10224, 0.9}}, fragments),
              QStringList({"y1-H2O+", "b1+", ""}));
}

TEST(PeakNaming, IsotopeOfAnIonThatIsItselfTooLowIsNamedByTheSilentOnes)
{
    const QList<FragmentPeak> listed = {{500.0, 1.0, QLatin1Char('b'), 9, 1, {}}};
    const QList<FragmentPeak> silent = {{500.0, 0.0, QLatin1Char('b'), 9, 1, {}},
                                        {1200.0, 0.0, QLatin1Char('y'), 31, 3, {}}};
    EXPECT_EQ(names({{500.0, 1.0}, {1200.0 + ISOTOPE_SPACING / 3, 0.04}}, listed, silent),
              QStringList({"b9+", "y31+++ i1"}));
}

TEST(PeakNaming, ListedIonGoesBeforeASilentOneAtItsMz)
{
    const QList<FragmentPeak> listed = {{129.10224, 0.9, QLatin1Char('y'), 1, 1, QStringLiteral("-H2O")}};
    const QList<FragmentPeak> silent = {{129.10224, 0.0, QLatin1Char('b'), 1, 1, {}}};
    EXPECT_EQ(names({{129.10224, 0.9}, {999.0, 0.1}}, listed, silent), QStringList({"y1-H2O+", ""}));
}

TEST(PeakNaming, NothingToNameIsNoError)
{
    EXPECT_EQ(names({}, {}), QStringList());
    EXPECT_EQ(names({{100.0, 1.0}}, {}), QStringList({""}));
}

TEST(PeakNaming, FragmentWithoutMassIsTheErrorOfTheEnvelope)
{
    const auto peaks = namePeaks({{100.0, 1.0}}, {{-5.0, 1.0, QLatin1Char('b'), 1, 1, {}}}, {});
    EXPECT_TRUE(peaks.error().equals(InvalidInput));
}

} // namespace
} // namespace zav
