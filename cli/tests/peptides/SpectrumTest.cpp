// SPDX-License-Identifier: Apache-2.0
#include "Spectrum.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

std::string nameOf(QChar type, int number, int charge, const QString &loss = QString(), int isotope = 0)
{
    return ionName({100.0, 1.0, type, number, charge, loss, isotope}).toStdString();
}

TEST(IonName, WritesTheChargeAsOnePlusForEach)
{
    EXPECT_EQ(nameOf(u'b', 12, 1), "b12+");
    EXPECT_EQ(nameOf(u'y', 7, 3), "y7+++");
}

TEST(IonName, HasTheNeutralLossBeforeTheCharge)
{
    EXPECT_EQ(nameOf(u'y', 7, 2, "-H2O"), "y7-H2O++");
}

TEST(IonName, OfAnIsotopePeakSaysHowManyHeavyIsotopesItHas)
{
    EXPECT_EQ(nameOf(u'y', 7, 2, "-H2O", 2), "y7-H2O++ i2");
    EXPECT_EQ(nameOf(u'a', 1, 1, "", 1), "a1+ i1");
}

TEST(IonName, OfAnUnknownIonIsEmpty)
{
    EXPECT_EQ(ionName(FragmentPeak()), QString());
}

} // namespace
} // namespace zav
