// SPDX-License-Identifier: Apache-2.0
#include "FragmentationInspector.h"
#include "FragmentationTest.h"

#include <QtCore/QFile>

#include <algorithm>
#include <map>
#include <tuple>

namespace zav {
namespace {

using Fragment = MsMsFragmentationPredictomaticInspector::Fragment;

// Da, residue masses from Matrix Science, "Amino acid reference data".
constexpr double PROTON = 1.00727646677;
constexpr double ALANINE = 71.037114;
constexpr double GLYCINE = 57.021464;
constexpr double CYSTEINE = 103.009185;
constexpr double SIX_DIGITS = 1e-6; // what those masses are given to, and 1e-6 more for each further residue

class FragmentLadder : public ::testing::Test
{
protected:
    MsMsFragmentationPredictomatic predictor;
    MsMsFragmentationPredictomaticInspector steps{&predictor};
};

bool isPlaceholder(const Fragment &fragment)
{
    return fragment.mz == -1.0 && fragment.charge == 0 && fragment.ionType.isNull() && fragment.ionNumber == -1 &&
           fragment.neutralLoss.isEmpty();
}

int placeholderCount(const QList<Fragment> &fragments, int first, int count)
{
    const auto begin = fragments.cbegin() + first;
    return static_cast<int>(std::count_if(begin, begin + count, isPlaceholder));
}

TEST_F(FragmentLadder, HoldsTwoResiduesAndPlaceholders)
{
    const QList<Fragment> ladder = steps.buildMzPoints(QStringLiteral("GA"), 1);
    ASSERT_EQ(ladder.size(), 177);
    EXPECT_NEAR(ladder.at(0).mz, 19.01784146677 + ALANINE, SIX_DIGITS);
    EXPECT_NEAR(ladder.at(1).mz, 19.01784146677 + ALANINE + GLYCINE, 2 * SIX_DIGITS);
    EXPECT_EQ(placeholderCount(ladder, 2, 25), 25);
    EXPECT_NEAR(ladder.at(27).mz, PROTON + GLYCINE, SIX_DIGITS);
    EXPECT_EQ(ladder.at(27).ionType, u'b');
    EXPECT_EQ(ladder.at(27).ionNumber, 1);
    EXPECT_EQ(ladder.at(1).ionType, u'y');
    EXPECT_EQ(ladder.at(1).ionNumber, 2);
    EXPECT_EQ(ladder.at(1).charge, 1);
    EXPECT_TRUE(ladder.at(1).neutralLoss.isEmpty());
}

TEST_F(FragmentLadder, DividesDoublyChargedFragmentsByTwo)
{
    const QList<Fragment> ladder = steps.buildMzPoints(QStringLiteral("GGGGGGGGGA"), 2);
    EXPECT_NEAR(ladder.at(86).mz, (20.02511793354 + ALANINE) / 2, SIX_DIGITS);
    EXPECT_EQ(ladder.at(86).charge, 2);
    EXPECT_EQ(ladder.at(86).ionType, u'y');
    EXPECT_EQ(ladder.at(86).ionNumber, 1);
}

struct SeriesStart
{
    int slot;
    char16_t ionType;
    int charge;
    const char *neutralLoss;
    double startMass; // Da
};

/// Checks the first slot of every series for the peptide "A".
void expectSeries(const QList<Fragment> &ladder, const std::vector<SeriesStart> &series)
{
    for (const SeriesStart &start : series) {
        SCOPED_TRACE(start.slot);
        const Fragment &fragment = ladder.at(start.slot);
        EXPECT_EQ(fragment.ionType, QChar(start.ionType));
        EXPECT_EQ(fragment.charge, start.charge);
        EXPECT_EQ(fragment.neutralLoss, QString::fromLatin1(start.neutralLoss));
        EXPECT_EQ(fragment.ionNumber, 1);
        EXPECT_NEAR(fragment.mz, (start.startMass + ALANINE) / start.charge, SIX_DIGITS);
    }
    EXPECT_EQ(ladder.size() - placeholderCount(ladder, 0, static_cast<int>(ladder.size())), series.size())
        << "no other slot holds a fragment";
}

TEST_F(FragmentLadder, OfChargeOneHasSevenSeries)
{
    const int l = 27;
    const QList<Fragment> ladder = steps.buildMzPoints(QStringLiteral("A"), 1);
    ASSERT_EQ(ladder.size(), 177);
    expectSeries(ladder, {{0, u'y', 1, "", 19.01784146677},
                          {l, u'b', 1, "", PROTON},
                          {2 * l, u'a', 1, "", -26.98763853323},
                          {2 * l + 15, u'y', 1, "-H2O", PROTON},
                          {3 * l + 15, u'y', 1, "-NH3", 1.99129246677},
                          {4 * l + 15, u'b', 1, "-H2O", -17.00328853323},
                          {5 * l + 15, u'b', 1, "-NH3", -16.01927253323}});
}

TEST_F(FragmentLadder, OfChargeTwoHasDoublyChargedSeriesBeforeTheASeries)
{
    const int l = 43;
    const QList<Fragment> ladder = steps.buildMzPoints(QStringLiteral("A"), 2);
    ASSERT_EQ(ladder.size(), 359);
    expectSeries(ladder, {{0, u'y', 1, "", 19.01784146677},
                          {l, u'b', 1, "", PROTON},
                          {2 * l, u'y', 2, "", 20.02511793354},
                          {3 * l, u'b', 2, "", 2.01455293354},
                          {4 * l, u'a', 1, "", -26.98763853323},
                          {4 * l + 15, u'y', 1, "-H2O", PROTON},
                          {5 * l + 15, u'y', 1, "-NH3", 1.99129246677},
                          {6 * l + 15, u'b', 1, "-H2O", -17.00328853323},
                          {7 * l + 15, u'b', 1, "-NH3", -16.01927253323}});
}

TEST_F(FragmentLadder, OfHigherChargesEndsWithTriplyChargedSeries)
{
    const QList<std::tuple<int, int, int>> cases{{3, 50, 515}, {4, 52, 535}, {5, 50, 515}};
    for (const auto &[charge, l, slotCount] : cases) {
        const QList<Fragment> ladder = steps.buildMzPoints(QStringLiteral("A"), charge);
        ASSERT_EQ(ladder.size(), slotCount);
        expectSeries(ladder, {{0, u'y', 1, "", 19.01784146677},
                              {l, u'b', 1, "", PROTON},
                              {2 * l, u'y', 2, "", 20.02511793354},
                              {3 * l, u'b', 2, "", 2.01455293354},
                              {4 * l, u'a', 1, "", -26.98763853323},
                              {4 * l + 15, u'y', 1, "-H2O", PROTON},
                              {5 * l + 15, u'y', 1, "-NH3", 1.99129246677},
                              {6 * l + 15, u'b', 1, "-H2O", -17.00328853323},
                              {7 * l + 15, u'b', 1, "-NH3", -16.01927253323},
                              {8 * l + 15, u'y', 3, "", 21.03239440031},
                              {9 * l + 15, u'b', 3, "", 3.02182940031}});
    }
}

TEST_F(FragmentLadder, WithoutAChargeInRangeIsTheASeries)
{
    for (const int charge : {0, -1, 6}) {
        const QList<Fragment> ladder = steps.buildMzPoints(QStringLiteral("GAGAG"), charge);
        ASSERT_EQ(ladder.size(), 15);
        EXPECT_EQ(ladder.at(4).ionType, u'a');
        EXPECT_EQ(placeholderCount(ladder, 5, 10), 10);
    }
}

TEST_F(FragmentLadder, OfAnUnknownResidueHasTheStartMassesToTheLastBit)
{
    // The residue weighs nothing, which leaves the sums of these masses (Da) in double arithmetic.
    constexpr double WATER = 18.010565;
    constexpr double AMMONIA = 17.026549;
    constexpr double CARBON_MONOXIDE = 27.994915;
    const int l = 50;
    const std::vector<std::pair<int, double>> startMzs{{0, WATER + PROTON},
                                                       {l, PROTON},
                                                       {2 * l, (WATER + 2 * PROTON) / 2},
                                                       {3 * l, 2 * PROTON / 2},
                                                       {4 * l, PROTON - CARBON_MONOXIDE},
                                                       {4 * l + 15, PROTON},
                                                       {5 * l + 15, WATER + PROTON - AMMONIA},
                                                       {6 * l + 15, PROTON - WATER},
                                                       {7 * l + 15, PROTON - AMMONIA},
                                                       {8 * l + 15, (WATER + 3 * PROTON) / 3},
                                                       {9 * l + 15, 3 * PROTON / 3}};
    const QList<Fragment> ladder = steps.buildMzPoints(QStringLiteral("X"), 3);
    for (const auto &[slot, mz] : startMzs)
        EXPECT_EQ(ladder.at(slot).mz, mz) << slot;
}

TEST_F(FragmentLadder, KeepsTheFullLengthIons)
{
    const QList<Fragment> ladder = steps.buildMzPoints(QString(27, u'G'), 1);
    EXPECT_EQ(ladder.at(26).ionNumber, 27);
    EXPECT_EQ(ladder.at(53).ionNumber, 27);
}

TEST_F(FragmentLadder, StopsTheASeriesAtFifteen)
{
    EXPECT_EQ(placeholderCount(steps.buildMzPoints(QString(20, u'G'), 2), 4 * 43, 15), 0);
    EXPECT_EQ(steps.buildMzPoints(QString(20, u'G'), 2).at(4 * 43 + 14).ionNumber, 15);
    EXPECT_EQ(placeholderCount(steps.buildMzPoints(QString(5, u'G'), 2), 4 * 43, 15), 10);
}

TEST_F(FragmentLadder, OfAnEmptyPeptideIsAllPlaceholders)
{
    EXPECT_EQ(placeholderCount(steps.buildMzPoints(QString(), 3), 0, 515), 515);
}

TEST_F(FragmentLadder, AddsTheFixedMassToUpperCaseCysteinesOnly)
{
    const double y1 = 19.01784146677;
    EXPECT_NEAR(steps.buildMzPoints(QStringLiteral("C"), 1).at(0).mz, y1 + CYSTEINE + 57.02146, SIX_DIGITS);
    EXPECT_NEAR(steps.buildMzPoints(QStringLiteral("CC"), 1).at(1).mz, y1 + 2 * (CYSTEINE + 57.02146), 2 * SIX_DIGITS);
    EXPECT_EQ(steps.buildMzPoints(QStringLiteral("c"), 1).at(0).mz, 18.010565 + PROTON);
    predictor.setCysteineFixedMass(0.0);
    EXPECT_NEAR(steps.buildMzPoints(QStringLiteral("C"), 1).at(0).mz, y1 + CYSTEINE, SIX_DIGITS);
    predictor.setCysteineFixedMass(-103.0);
    EXPECT_NEAR(steps.buildMzPoints(QStringLiteral("C"), 1).at(0).mz, y1 + CYSTEINE - 103.0, SIX_DIGITS);
}

TEST_F(FragmentLadder, WeighsUnknownCharactersAsNothing)
{
    const QString unknown = QStringLiteral("BJOUXZa1[") + QChar(0x4e00);
    for (const Fragment &fragment : steps.buildMzPoints(unknown, 1).mid(27, unknown.size()))
        EXPECT_EQ(fragment.mz, PROTON);
}

TEST_F(FragmentLadder, AddsNothingWithoutChargeOrSlots)
{
    QList<Fragment> fragments;
    steps.addFragmentIonToMzPoints(0.0, 5, QStringLiteral("GA"), 0, u'b', QString(), &fragments);
    steps.addFragmentIonToMzPoints(0.0, 5, QStringLiteral("GA"), -1, u'b', QString(), &fragments);
    steps.addFragmentIonToMzPoints(0.0, 0, QStringLiteral("GA"), 1, u'b', QString(), &fragments);
    steps.addFragmentIonToMzPoints(0.0, -1, QStringLiteral("GA"), 1, u'b', QString(), &fragments);
    EXPECT_TRUE(fragments.isEmpty());
}

TEST_F(FragmentLadder, CountsZIonsFromTheCTerminusAndOthersFromTheNTerminus)
{
    QList<Fragment> fragments;
    steps.addFragmentIonToMzPoints(0.0, 1, QStringLiteral("GA"), 1, u'z', QStringLiteral("-X"), &fragments);
    steps.addFragmentIonToMzPoints(0.0, 1, QStringLiteral("GA"), 1, u'c', QString(), &fragments);
    ASSERT_EQ(fragments.size(), 2);
    EXPECT_NEAR(fragments.at(0).mz, ALANINE, SIX_DIGITS);
    EXPECT_EQ(fragments.at(0).neutralLoss, QStringLiteral("-X"));
    EXPECT_NEAR(fragments.at(1).mz, GLYCINE, SIX_DIGITS);
}

using IonName = std::tuple<QString, QString, QString, int, int>; // peptide, ion type, loss, number, charge

/// m/z of fragments by another program.
std::map<IonName, double> readReferenceMzs()
{
    std::map<IonName, double> mzs;
    QFile file(QStringLiteral(ZAV_TEST_DATA_DIR "/fragment_masses.tsv"));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return mzs;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
        const QStringList cells = line.split(QLatin1Char('\t'));
        if (cells.size() == 6 && cells.at(0) != QStringLiteral("peptide"))
            mzs[{cells.at(0), cells.at(1), cells.at(2), cells.at(3).toInt(), cells.at(4).toInt()}] =
                cells.at(5).toDouble();
    }
    return mzs;
}

TEST_F(FragmentLadder, AgreesWithPyteomics)
{
    // The program's masses of water and ammonia have one digit more, and its figures are rounded to six digits.
    constexpr double TOLERANCE = 2e-6;
    const std::map<IonName, double> reference = readReferenceMzs();
    ASSERT_EQ(reference.size(), 473U);
    std::size_t compared = 0;
    for (const char *peptide : {"ACDEFGHIKLMNPQRSTVWY", "LQSRPAAPPAPGPGQLTLR", "CCK", "G"}) {
        const QString sequence = QString::fromLatin1(peptide);
        for (const Fragment &fragment : steps.buildMzPoints(sequence, 3)) {
            if (isPlaceholder(fragment))
                continue;
            const IonName name{sequence, QString(fragment.ionType), fragment.neutralLoss, fragment.ionNumber,
                               fragment.charge};
            ASSERT_TRUE(reference.contains(name));
            EXPECT_NEAR(fragment.mz, reference.at(name), TOLERANCE);
            ++compared;
        }
    }
    EXPECT_EQ(compared, 473U - 5U - 4U) << "all but the a ions over 15";
}

} // namespace
} // namespace zav
