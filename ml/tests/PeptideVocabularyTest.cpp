// SPDX-License-Identifier: Apache-2.0
#include "PeptideVocabulary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace zav::peptideVocabulary {
namespace {

std::vector<float> encode(const QString &peptide, int rowCount)
{
    std::vector<float> rows(static_cast<std::size_t>(rowCount) * 21, 0.0F);
    writeOneHotRows(peptide, rowCount, rows.data());
    return rows;
}

/// The column of the single 1 of each row; -1 for a row that is not one-hot.
std::vector<int> hotColumns(const std::vector<float> &rows)
{
    std::vector<int> columns;
    for (std::size_t row = 0; row < rows.size() / 21; ++row) {
        int column = -1;
        int ones = 0;
        int others = 0;
        for (int i = 0; i < 21; ++i) {
            const float value = rows[row * 21 + i];
            if (value == 1.0F) {
                column = i;
                ++ones;
            } else if (value != 0.0F) {
                ++others;
            }
        }
        columns.push_back(ones == 1 && others == 0 ? column : -1);
    }
    return columns;
}

TEST(PeptideVocabulary, NumbersTheTwentyResiduesFromOne)
{
    const QString letters = QStringLiteral("DESTILVFYWACGMPNQHKR");
    ASSERT_EQ(aminoAcidIndex.size(), 20);
    for (int i = 0; i < letters.size(); ++i)
        EXPECT_EQ(aminoAcidIndex.value(letters.at(i)), i + 1) << letters.at(i).toLatin1();
    EXPECT_EQ(encodingWidth(), 21);
}

TEST(PeptideVocabulary, AllowsFewerResiduesAtChargeFiveThanAtChargeFour)
{
    const std::vector<int> lengths{27, 43, 50, 52, 50};
    for (int charge = 1; charge <= 5; ++charge)
        EXPECT_EQ(maximumPeptideLength(charge), lengths[charge - 1]);
    EXPECT_EQ(maxPeptideLengthByCharge.size(), 5);
}

TEST(PeptideVocabulary, AllowsNoResidueAtOtherCharges)
{
    for (const int charge : {-1, 0, 6, 100})
        EXPECT_EQ(maximumPeptideLength(charge), 0);
}

TEST(PeptideVocabulary, NamesTwoFragmentationMethods)
{
    EXPECT_EQ(fragmentationMethodOffsets.size(), 2);
    EXPECT_EQ(fragmentationMethodOffsets.value(QStringLiteral("HCD"), -1.0), 0.0);
    EXPECT_EQ(fragmentationMethodOffsets.value(QStringLiteral("ETD")), 17.02655);
}

TEST(PeptideEncoding, WritesResiduesThenFillers)
{
    std::vector<int> expected{15, 2, 15, 4, 5, 1, 2};
    expected.resize(43, 0);
    EXPECT_EQ(hotColumns(encode(QStringLiteral("PEPTIDE"), 43)), expected);
}

TEST(PeptideEncoding, OfALongestPeptideHasNoFiller)
{
    const std::vector<float> rows = encode(QStringLiteral("DESTILVFYWACGMPNQHKRDESTILV"), 27);
    const std::vector<int> columns = hotColumns(rows);
    EXPECT_EQ(rows.size(), 567U);
    EXPECT_EQ(std::vector<int>(columns.begin(), columns.begin() + 3), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(std::vector<int>(columns.end() - 3, columns.end()), (std::vector<int>{5, 6, 7}));
    EXPECT_EQ(std::count(columns.begin(), columns.end(), 0), 0);
}

TEST(PeptideEncoding, ShowsUnknownCharactersAsFillers)
{
    EXPECT_EQ(encode(QStringLiteral("pep"), 43), encode(QString(), 43));
    EXPECT_EQ(encode(QStringLiteral("BJOUXZ1[ "), 50), encode(QString(), 50));
    EXPECT_EQ(encode(QString(QChar(0x4e00)), 50), encode(QString(), 50));
}

TEST(PeptideEncoding, OfAnEmptyPeptideHasFillersOnly)
{
    const std::vector<float> rows = encode(QString(), 50);
    EXPECT_EQ(rows.size(), 1050U);
    EXPECT_EQ(hotColumns(rows), std::vector<int>(50, 0));
}

} // namespace
} // namespace zav::peptideVocabulary
