// SPDX-License-Identifier: Apache-2.0
#include "TheoreticalFragments.h"

#include "IonNames.h"

#include <gtest/gtest.h>

#include <QtCore/QMap>

namespace zav {
namespace {

QMap<QString, double> ions(const QString &peptide, int charge, double cysteineMass)
{
    QMap<QString, double> ions;
    for (const FragmentPeak &fragment : theoreticalFragments(peptide, charge, cysteineMass))
        ions.insert(annotatedPeak(fragment).ionName, fragment.mz);
    return ions;
}

// m/z by pyteomics 4.7.5, which knows a water of 18.0105647 and an ammonia of 17.0265491 Da.
TEST(TheoreticalFragments, StandWhereAnotherProgramPutsThem)
{
    const QMap<QString, double> found = ions(QStringLiteral("ACDEFGHK"), 3, 57.02146);
    const QMap<QString, double> expected = {{"b2+", 232.07504},  {"y1+", 147.11280},     {"y7+", 892.36178},
                                            {"y7++", 446.68453}, {"y5-H2O+", 599.29362}, {"b5-NH3+", 606.18644},
                                            {"a5+", 595.21807},  {"y7+++", 298.12544}};
    for (auto it = expected.cbegin(); it != expected.cend(); ++it)
        EXPECT_NEAR(found.value(it.key()), it.value(), 2e-5) << it.key().toStdString();
}

TEST(TheoreticalFragments, SeriesAreThoseOfTheLadder)
{
    EXPECT_EQ(theoreticalFragments(QString(20, QLatin1Char('A')), 1, 0).size(), 6 * 20 + 15);
    EXPECT_EQ(theoreticalFragments(QString(20, QLatin1Char('A')), 2, 0).size(), 8 * 20 + 15);
    EXPECT_EQ(theoreticalFragments(QString(20, QLatin1Char('A')), 3, 0).size(), 10 * 20 + 15);
    EXPECT_EQ(theoreticalFragments(QString(20, QLatin1Char('A')), 5, 0).size(), 10 * 20 + 15);
    EXPECT_EQ(theoreticalFragments(QStringLiteral("AC"), 1, 0).size(), 7 * 2);
}

} // namespace
} // namespace zav
