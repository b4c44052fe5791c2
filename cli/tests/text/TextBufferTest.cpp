// SPDX-License-Identifier: Apache-2.0
#include "TextBuffer.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <random>

namespace zav {
namespace {

std::string fixed(double value, int decimals)
{
    return TextBuffer().addFixed(value, decimals).take().toStdString();
}

std::string printed(double value, int decimals)
{
    char text[400];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

TEST(TextBuffer, FixedNumbersHaveAllTheirDecimals)
{
    EXPECT_EQ(fixed(482.20308, 5), "482.20308");
    EXPECT_EQ(fixed(0.05, 6), "0.050000");
    EXPECT_EQ(fixed(7, 0), "7");
    EXPECT_EQ(fixed(99.999996, 5), "100.00000");
    EXPECT_EQ(fixed(-12.5, 3), "-12.500");
    EXPECT_EQ(fixed(-0.25, 2), "-0.25");
}

TEST(TextBuffer, WhatRoundsToZeroHasNoSign)
{
    EXPECT_EQ(fixed(-0.0000001, 5), "0.00000");
    EXPECT_EQ(fixed(-0.0, 1), "0.0");
}

TEST(TextBuffer, FixedNumbersAreThoseOfTheCLibrary)
{
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> mz(-5000, 5000);
    for (int i = 0; i < 100000; ++i) {
        const double value = mz(random);
        const int decimals = i % 7 + 1;
        ASSERT_EQ(fixed(value, decimals), printed(value, decimals));
    }
}

TEST(TextBuffer, NumbersTooLargeForIntegersAreWrittenAllTheSame)
{
    for (const double value : {1e16, -1e300, std::numeric_limits<double>::max(), 123456789012.25})
        EXPECT_EQ(fixed(value, 9), printed(value, 9));
}

TEST(TextBuffer, DecimalPointIsAPointInALocaleWithCommas)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8"))
        GTEST_SKIP() << "no such locale on this system";
    EXPECT_EQ(fixed(1.5, 2), "1.50");
    EXPECT_EQ(fixed(1e17 + 0.5, 1).find(','), std::string::npos);
    std::setlocale(LC_ALL, before.c_str());
}

TEST(TextBuffer, IntegersAreWrittenToTheirLimits)
{
    TextBuffer text;
    text.addInteger(0).add(' ').addInteger(std::numeric_limits<qint64>::min());
    EXPECT_EQ(text.take().toStdString(), "0 -9223372036854775808");
}

TEST(TextBuffer, TextIsUtf8)
{
    TextBuffer text;
    text.add(QStringView(u"PEPTIDE")).add(QStringView(u" α\U0001F600"));
    EXPECT_EQ(text.take().toStdString(), "PEPTIDE α\U0001F600");
}

TEST(TextBuffer, GrowsBeyondTheExpectedSizeAndIsEmptyAfterTaking)
{
    TextBuffer text(4);
    const QByteArray piece(1000, 'x');
    text.add(piece).add('y').add(piece);
    EXPECT_EQ(text.take(), piece + 'y' + piece);
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(text.add('z').take(), "z");
}

TEST(TextBuffer, PieceOfTheTextIsRepeatedWhereTheBufferGrows)
{
    TextBuffer text(4);
    text.add("abcd");
    for (int i = 0; i < 3; ++i)
        text.repeat(1, text.size() - 1);
    EXPECT_EQ(text.view(), "abcdbcdbcdbcdbcdbcdbcdbcd");
    EXPECT_EQ(text.size(), 25);
}

TEST(TextBuffer, ClearedBufferIsFilledAnew)
{
    TextBuffer text;
    text.add("abc");
    text.clear();
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(text.add('x').take(), "x");
}

TEST(TextBuffer, HalvesAreRoundedAwayFromZero)
{
    EXPECT_EQ(fixed(0.5, 0), "1");
    EXPECT_EQ(fixed(-2.5, 0), "-3");
    EXPECT_EQ(fixed(0.125, 2), "0.13");
    EXPECT_EQ(fixed(0.49999999999999994, 0), "0");
    EXPECT_EQ(fixed(100.0, 0), "100");
    EXPECT_EQ(fixed(1000.001, 3), "1000.001");
}

} // namespace
} // namespace zav
