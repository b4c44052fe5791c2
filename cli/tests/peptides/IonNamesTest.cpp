// SPDX-License-Identifier: Apache-2.0
#include "IonNames.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

FragmentPeak fragment(char type, int number, int charge, const char *loss = "")
{
    return {100.0, 1.0, QLatin1Char(type), number, charge, QString::fromUtf8(loss)};
}

TEST(IonNames, ChargeIsWrittenAsOnePlusForEach)
{
    EXPECT_EQ(annotatedPeak(fragment('b', 12, 1)).ionName.toStdString(), "b12+");
    EXPECT_EQ(annotatedPeak(fragment('y', 7, 3)).ionName.toStdString(), "y7+++");
}

TEST(IonNames, NeutralLossStandsBeforeTheCharge)
{
    EXPECT_EQ(annotatedPeak(fragment('y', 7, 2, "-H2O")).ionName.toStdString(), "y7-H2O++");
}

TEST(IonNames, IsotopeKeepsTheIonAndSaysHowManyNeutronsItIsAbove)
{
    const AnnotatedPeak isotope = isotopeOf(annotatedPeak(fragment('y', 7, 2, "-H2O")), 2);
    EXPECT_EQ(isotope.ionName.toStdString(), "y7-H2O++ i2");
    EXPECT_TRUE(isotope.isotope);
    EXPECT_EQ(isotope.isotopeNumber, 2);
    EXPECT_EQ(isotope.ionType, QLatin1Char('y'));
    EXPECT_EQ(isotope.ionNumber, 7);
}

} // namespace
} // namespace zav
