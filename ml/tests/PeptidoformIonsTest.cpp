// SPDX-License-Identifier: Apache-2.0
//
// Which ions a predicted spectrum of a peptidoform holds and where they are.
#include "PeptidoformIons.h"
#include "NaiveSpectrum.h"
#include "PeptidoformSpectrumTest.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zav {
namespace {

using PeptidoformIons = PeptidoformSpectrumTest;

// The masses below have six digits.
constexpr double MZ_TOLERANCE = 5e-6;

// Residues, modifications and losses in Da, from Unimod's lists.
constexpr double G = 57.021464, A = 71.037114, S = 87.032028, M = 131.040485, K = 128.094963;
constexpr double PHOSPHO = 79.966331, OXIDATION = 15.994915, ACETYL = 42.010565, AMIDATED = -0.984016;
constexpr double WATER = 18.010565, AMMONIA = 17.026549, CARBON_MONOXIDE = 27.994915;
constexpr double H3PO4 = 97.976896, CH4OS = 63.998285, PROTON = 1.007276;

QMap<QString, double> mzsByIon(const QList<FragmentPeak> &peaks)
{
    QMap<QString, double> mzs;
    for (const FragmentPeak &peak : peaks)
        mzs.insert(ionOf(peak), peak.mz);
    return mzs;
}

void expectMzs(const QMap<QString, double> &found, const QMap<QString, double> &expected)
{
    EXPECT_EQ(found.keys(), expected.keys()) << found.keys().join(u' ').toStdString();
    for (auto ion = expected.cbegin(); ion != expected.cend(); ++ion)
        EXPECT_NEAR(found.value(ion.key()), ion.value(), MZ_TOLERANCE) << ion.key().toStdString();
}

TEST_F(PeptidoformIons, StandWhereTheirAtomsPutThem)
{
    loadLevelNetwork(4);
    const double b1 = A + PROTON;
    const double b2 = b1 + S + PHOSPHO;
    const double b3 = b2 + M + OXIDATION;
    const double y1 = K + WATER + PROTON;
    const double y2 = y1 + M + OXIDATION;
    const double y3 = y2 + S + PHOSPHO;
    EXPECT_NEAR(b3, 386.078149, MZ_TOLERANCE);
    EXPECT_NEAR(y3, 461.146563, MZ_TOLERANCE);
    QMap<QString, double> expected;
    const auto expectIon = [&expected](const char *ion, int number, double mz, const char *loss, double mass) {
        const QString name = QString::fromLatin1(ion) + QString::number(number);
        expected.insert(name + QStringLiteral("+1") + QString::fromLatin1(loss), mz - mass);
        return name;
    };
    const auto expectDoublyChargedToo = [&](const char *ion, int number, double mz, const char *loss, double mass) {
        const QString name = expectIon(ion, number, mz, loss, mass);
        expected.insert(name + QStringLiteral("+2") + QString::fromLatin1(loss), (mz - mass + PROTON) / 2);
    };
    int number = 0;
    for (const auto &[b, y] : {std::pair{b1, y1}, std::pair{b2, y2}, std::pair{b3, y3}}) {
        ++number;
        expectDoublyChargedToo("b", number, b, "", 0.0);
        expectDoublyChargedToo("y", number, y, "", 0.0);
        expectIon("a", number, b, "", CARBON_MONOXIDE);
        for (const auto &[loss, mass] : {std::pair{"-H2O", WATER}, std::pair{"-NH3", AMMONIA}}) {
            expectIon("b", number, b, loss, mass);
            expectIon("y", number, y, loss, mass);
        }
    }
    for (const auto &[ion, ionNumber, mz] : {std::tuple{"b", 2, b2}, std::tuple{"b", 3, b3}, std::tuple{"y", 3, y3}})
        expectDoublyChargedToo(ion, ionNumber, mz, "-H3PO4", H3PO4);
    for (const auto &[ion, ionNumber, mz] : {std::tuple{"b", 3, b3}, std::tuple{"y", 2, y2}, std::tuple{"y", 3, y3}})
        expectDoublyChargedToo(ion, ionNumber, mz, "-CH4OS", CH4OS);
    expectMzs(mzsByIon(spectrum({peptidoform("AS[Phospho]M[Oxidation]K"), 2})), expected);
}

TEST_F(PeptidoformIons, CarryTheModificationsOfTheirTerminus)
{
    loadLevelNetwork(3);
    const QMap<QString, double> mzs = mzsByIon(spectrum({peptidoform("[Acetyl]-AGK-[Amidated]"), 1}));
    EXPECT_NEAR(mzs.value(QStringLiteral("b1+1")), A + ACETYL + PROTON, MZ_TOLERANCE);
    EXPECT_NEAR(mzs.value(QStringLiteral("a2+1")), A + ACETYL + G + PROTON - CARBON_MONOXIDE, MZ_TOLERANCE);
    EXPECT_NEAR(mzs.value(QStringLiteral("y1+1")), K + AMIDATED + WATER + PROTON, MZ_TOLERANCE);
    EXPECT_NEAR(mzs.value(QStringLiteral("y2+1")), G + K + AMIDATED + WATER + PROTON, MZ_TOLERANCE);
}

TEST_F(PeptidoformIons, CarryModificationsKnownByTheirMassAlone)
{
    loadLevelNetwork(3);
    const QMap<QString, double> mzs = mzsByIon(spectrum({peptidoform("AM[+100.25]K"), 1}));
    EXPECT_NEAR(mzs.value(QStringLiteral("b1+1")), A + PROTON, MZ_TOLERANCE);
    EXPECT_NEAR(mzs.value(QStringLiteral("b2+1")), A + M + 100.25 + PROTON, MZ_TOLERANCE);
    EXPECT_NEAR(mzs.value(QStringLiteral("y2+1")), M + 100.25 + K + WATER + PROTON, MZ_TOLERANCE);
}

TEST_F(PeptidoformIons, LoseTwoPhosphatesWhereTheyHoldTwo)
{
    loadLevelNetwork(4);
    const QStringList found = ions("S[Phospho]S[Phospho]T[Phospho]K", 1).filter(QStringLiteral("-2H3PO4"));
    EXPECT_EQ(found, (QStringList{QStringLiteral("b2+1-2H3PO4"), QStringLiteral("b3+1-2H3PO4"),
                                  QStringLiteral("y3+1-2H3PO4")}));
    const QMap<QString, double> mzs = mzsByIon(spectrum({peptidoform("S[Phospho]S[Phospho]AK"), 2}));
    EXPECT_NEAR(mzs.value(QStringLiteral("b2+2-2H3PO4")), (2 * (S + PHOSPHO - H3PO4) + 2 * PROTON) / 2, MZ_TOLERANCE);
}

TEST_F(PeptidoformIons, LoseCarbonDioxideOfMalonylLysine)
{
    loadLevelNetwork(3);
    const QMap<QString, double> mzs = mzsByIon(spectrum({peptidoform("AK[Malonyl]G"), 1}));
    QMap<QString, double> losses;
    for (auto ion = mzs.cbegin(); ion != mzs.cend(); ++ion) {
        if (ion.key().endsWith(QLatin1String("-CO2")))
            losses.insert(ion.key(), ion.value());
    }
    constexpr double MALONYL = 86.000394;
    constexpr double CARBON_DIOXIDE = 43.989830;
    expectMzs(losses, {{QStringLiteral("b2+1-CO2"), A + K + MALONYL + PROTON - CARBON_DIOXIDE},
                       {QStringLiteral("y2+1-CO2"), G + K + MALONYL + WATER + PROTON - CARBON_DIOXIDE}});
}

TEST_F(PeptidoformIons, HaveLossesOfNoOtherModification)
{
    loadLevelNetwork(3);
    for (const char *proForma : {"AY[Phospho]K", "AM[+15.9949]K", "AS[+79.9663]K", "AK[Acetyl]K", "AW[Oxidation]K",
                                 "[Acetyl]-AMK", "AC[Carbamidomethyl]K", "ASK"}) {
        for (const QString &ion : ions(proForma, 6)) {
            const QString loss = ion.section(QLatin1Char('-'), 1);
            EXPECT_TRUE(loss.isEmpty() || loss == QLatin1String("H2O") || loss == QLatin1String("NH3"))
                << proForma << ' ' << ion.toStdString();
        }
    }
}

TEST_F(PeptidoformIons, KnowNoLossOfAnotherName)
{
    EXPECT_EQ(peptidoformIons::modificationLoss(QStringLiteral("-CO2")),
              peptidoformIons::ModificationLoss::CarbonDioxide);
    EXPECT_EQ(peptidoformIons::modificationLoss(QStringLiteral("-HPO3")), peptidoformIons::ModificationLoss::None);
}

TEST_F(PeptidoformIons, HaveNoMoreChargesThanThePrecursorAndThree)
{
    loadLevelNetwork(6);
    for (int charge = 1; charge <= 6; ++charge) {
        int highest = 0;
        for (const FragmentPeak &peak : spectrum({peptidoform("GASGAK"), charge}))
            highest = std::max(highest, peak.charge);
        EXPECT_EQ(highest, std::min(charge, 3));
    }
}

TEST_F(PeptidoformIons, OfTypeAHaveUpToFifteenResidues)
{
    loadLevelNetwork(20);
    const QStringList found = ions("GASGAGASGAGASGAGASGK", 1);
    EXPECT_TRUE(found.contains(QStringLiteral("a15+1")));
    EXPECT_FALSE(found.contains(QStringLiteral("a16+1")));
    EXPECT_TRUE(found.contains(QStringLiteral("b19+1")));
    EXPECT_TRUE(found.contains(QStringLiteral("y19+1")));
}

TEST_F(PeptidoformIons, StandWithin2000)
{
    // 11 tryptophans, 186.079313 each, make b11 of 2047.9; with 139.04 less on the first, b11 of 1908.8.
    loadLevelNetwork(12);
    EXPECT_FALSE(ions("WWWWWWWWWWWW", 1).contains(QStringLiteral("b11+1")));
    EXPECT_TRUE(ions("WWWWWWWWWWWW", 2).contains(QStringLiteral("b11+2"))) << "1024.4";
    EXPECT_TRUE(ions("W[-139.04]WWWWWWWWWWW", 1).contains(QStringLiteral("b11+1")));
    EXPECT_FALSE(ions("W[-139.04]WWWWWWWWWWW", 1).contains(QStringLiteral("y11+1")));
}

TEST_F(PeptidoformIons, WithoutMassAreLeftOut)
{
    loadLevelNetwork(3);
    for (const FragmentPeak &peak : spectrum({peptidoform("A[-500]GK"), 2})) {
        EXPECT_GT(peak.mz, 0.0);
        EXPECT_EQ(peak.ionType, u'y') << "the others hold the residue that weighs less than nothing";
    }
    EXPECT_TRUE(ions("A[-500]GK", 2).contains(QStringLiteral("y2+1")));
}

TEST_F(PeptidoformIons, TakeTheIntensityOfTheirColumnAndBond)
{
    PeptidoformNetwork network(5);
    const auto intensityOf = [](int bond, int series) { return 1.0 + (bond * 27 + series) / 128.0; };
    for (int bond = 0; bond < 4; ++bond) {
        for (int series = 0; series < 27; ++series)
            network.setBias(bond, QString::fromLatin1(PeptidoformNetwork::SERIES_NAMES[series]),
                            static_cast<float>(intensityOf(bond, series)));
    }
    load(network.graph());
    const QMap<QString, double> found =
        intensitiesByIon(spectrum({peptidoform("S[Phospho]M[Oxidation]K[Malonyl]T[Phospho]S[Phospho]"), 3}));
    // 11 series without conditions of four ions; H3PO4, CH4OS and CO2 in 4 series each, from b1 and y1, b2 and y4, b3
    // and y3 on; 2H3PO4 from b4 and y2 on.
    EXPECT_EQ(found.size(), 11 * 4 + 2 * (4 + 4) + 2 * (3 + 1) + 2 * (2 + 2) + 2 * (1 + 3));
    const double highest = intensityOf(3, 26); // b4+2-CO2, the last column of the last bond
    for (auto ion = found.cbegin(); ion != found.cend(); ++ion) {
        const int number = ion.key().mid(1, 1).toInt();
        const int bond = ion.key().startsWith(u'y') ? 4 - number : number - 1;
        const int series = PeptidoformNetwork::seriesOf(ion.key().left(1) + ion.key().mid(2));
        EXPECT_DOUBLE_EQ(ion.value(), intensityOf(bond, series) / highest) << ion.key().toStdString();
    }
}

TEST_F(PeptidoformIons, AreScaledToTheHighestThatIsPossible)
{
    PeptidoformNetwork network(3);
    network.setBias(0, QStringLiteral("y+1"), 5.0F);
    network.setBias(1, QStringLiteral("y+1"), 2.0F);
    network.setBias(0, QStringLiteral("b+2"), 80.0F);       // of a precursor with one charge
    network.setBias(0, QStringLiteral("b+1-H3PO4"), 90.0F); // of a peptide without phosphate
    load(network.graph());
    EXPECT_EQ(intensitiesByIon(spectrum({peptidoform("SAK"), 1})),
              (QMap<QString, double>{{QStringLiteral("y2+1"), 1.0}, {QStringLiteral("y1+1"), 0.4}}));
    EXPECT_EQ(intensitiesByIon(spectrum({peptidoform("SAK"), 2})),
              (QMap<QString, double>{{QStringLiteral("b1+2"), 1.0}, {QStringLiteral("y2+1"), 0.0625}}));
}

TEST_F(PeptidoformIons, UnderFourPercentOfTheBasePeakAreLeftOut)
{
    PeptidoformNetwork network(5);
    network.setBias(0, QStringLiteral("y+1"), 0.15625F); // 0.0391 of the base peak, which comes later
    network.setBias(1, QStringLiteral("y+1"), 0.1640625F);
    network.setBias(2, QStringLiteral("y+1"), 4.0F);
    network.setBias(3, QStringLiteral("y+1"), 0.15625F);
    network.setBias(3, QStringLiteral("b+1"), -1.0F);
    load(network.graph());
    EXPECT_EQ(intensitiesByIon(spectrum({peptidoform("GASAK"), 1})),
              (QMap<QString, double>{{QStringLiteral("y3+1"), 0.041015625}, {QStringLiteral("y2+1"), 1.0}}));
}

TEST_F(PeptidoformIons, ThatAreNoNumbersAreLeftOut)
{
    PeptidoformNetwork network(3);
    network.setBias(0, QStringLiteral("y+1"), std::numeric_limits<float>::quiet_NaN());
    network.setBias(1, QStringLiteral("y+1"), 0.5F);
    load(network.graph());
    EXPECT_EQ(intensitiesByIon(spectrum({peptidoform("GAK"), 2})),
              (QMap<QString, double>{{QStringLiteral("y1+1"), 1.0}}));
}

TEST_F(PeptidoformIons, OfNoIntensityMakeAnEmptySpectrum)
{
    load(PeptidoformNetwork(3).graph());
    QList<QList<FragmentPeak>> out;
    const Error outcome = predictor.predict({{peptidoform("GAK"), 2}}, &out);
    EXPECT_FALSE(outcome.hasError());
    EXPECT_FALSE(outcome.hasWarnings());
    EXPECT_EQ(out.size(), 1);
    EXPECT_TRUE(out.first().isEmpty());
}

TEST_F(PeptidoformIons, ComeSortedByMz)
{
    loadLevelNetwork(9);
    const QList<FragmentPeak> peaks = spectrum({peptidoform("S[Phospho]AM[Oxidation]PLERGK"), 3});
    EXPECT_GT(peaks.size(), 80);
    EXPECT_TRUE(std::is_sorted(peaks.cbegin(), peaks.cend(),
                               [](const FragmentPeak &a, const FragmentPeak &b) { return a.mz < b.mz; }));
}

TEST_F(PeptidoformIons, HaveIsotopesOnRequest)
{
    PeptidoformNetwork network(4);
    network.setBias(1, QStringLiteral("y+2"), 0.125F); // its first isotope is too weak
    network.setBias(0, QStringLiteral("y+1"), 1.0F);
    network.setBias(2, QStringLiteral("y+1"), 0.03F); // under the limit, and so are its isotopes
    load(network.graph());
    const QList<FragmentPeak> peaks = spectrum({peptidoform("GKM[Oxidation]K"), 2}, IsotopePeaks::Included);
    const double y3 = 2 * K + M + OXIDATION + WATER + PROTON;
    const std::vector<double> envelope = naive::isotopeEnvelope(y3 - PROTON, 4);
    ASSERT_EQ(peaks.size(), 1 + 3) << "y3 with two isotopes: 1, 0.22 and 0.04";
    EXPECT_EQ(ionOf(peaks.first()), QStringLiteral("y2+2"));
    EXPECT_EQ(peaks.first().isotope, 0);
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(ionOf(peaks.at(1 + k)), QStringLiteral("y3+1"));
        EXPECT_EQ(peaks.at(1 + k).isotope, k);
        EXPECT_NEAR(peaks.at(1 + k).mz, y3 + k * 1.0033548, MZ_TOLERANCE);
        EXPECT_NEAR(peaks.at(1 + k).intensity, envelope[k], 1e-5);
    }
}

} // namespace
} // namespace zav
