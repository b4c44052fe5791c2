// SPDX-License-Identifier: Apache-2.0
#include "LibraryPredictor.h"

#include <zav/Modifications.h>

#include <gtest/gtest.h>

#include <QtCore/QMap>

#include <cmath>
#include <limits>
#include <random>

namespace zav {
namespace {

constexpr double DEFAULT_ENERGY = std::numeric_limits<double>::quiet_NaN();
constexpr quint8 CHARGE_2 = 1 << 2, CHARGES_2_AND_3 = 1 << 2 | 1 << 3, ALL_CHARGES = 0b1111110;

/// The same ones everywhere: lengths 7 to 20, one of them more than a block can hold; some oxidised, some of one
/// charge.
QList<LibraryPrecursors> somePrecursors()
{
    constexpr char RESIDUES[] = "ACDEFGHIKLMNPQRSTVWY";
    const Modification oxidation = modifications::findByName(QStringLiteral("Oxidation"))->modification;
    std::mt19937 generator(5);
    QList<LibraryPrecursors> precursors;
    for (int i = 0; i < 250; ++i) {
        QString peptide;
        const int length = i < 150 ? 9 : int(7 + generator() % 14);
        for (int j = 0; j < length; ++j)
            peptide.append(QLatin1Char(RESIDUES[generator() % 20]));
        QList<PlacedModification> placed;
        if (i % 3 == 0) {
            peptide[2] = u'M';
            placed.append({3, oxidation});
        }
        precursors.append({Peptidoform(peptide, placed), i % 7 == 0 ? CHARGE_2 : CHARGES_2_AND_3});
    }
    return precursors;
}

/// To the last bit.
bool areEqual(const QList<FragmentPeak> &a, const QList<FragmentPeak> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const FragmentPeak &x, const FragmentPeak &y) {
        return x.mz == y.mz && x.intensity == y.intensity && x.ionType == y.ionType && x.ionNumber == y.ionNumber &&
               x.charge == y.charge && x.neutralLoss == y.neutralLoss;
    });
}

using Spectra = QMap<std::pair<qsizetype, int>, QList<FragmentPeak>>; // by index and charge

class Predictions : public testing::Test
{
protected:
    void SetUp() override
    {
        const Error error = m_predictor.load(ModelFolder(QStringLiteral(ZAV_MODELS)), true);
        ASSERT_FALSE(error.hasError()) << error.toString().toStdString();
    }

    Spectra predict(const QList<LibraryPrecursors> &precursors, double energy = DEFAULT_ENERGY)
    {
        Spectra spectra;
        const auto keep = [&](qsizetype index, int charge, const QList<FragmentPeak> &peaks) {
            EXPECT_FALSE(spectra.contains({index, charge}));
            spectra[{index, charge}] = peaks;
        };
        const Error error = m_predictor.predictSpectra(precursors, energy, keep);
        EXPECT_FALSE(error.hasError()) << error.toString().toStdString();
        return spectra;
    }

    QList<QList<double>> heads(const QList<LibraryPrecursors> &precursors)
    {
        QList<QList<double>> heads;
        const Error error = m_predictor.predictHeads(precursors, &heads);
        EXPECT_FALSE(error.hasError()) << error.toString().toStdString();
        return heads;
    }

    QList<double> times(const QList<LibraryPrecursors> &precursors)
    {
        QList<double> times;
        const Error error = m_predictor.predictTimes(precursors, &times);
        EXPECT_FALSE(error.hasError()) << error.toString().toStdString();
        return times;
    }

    LibraryPredictor m_predictor;
};

TEST_F(Predictions, AreThereForEveryChargeThatIsAskedForAndNoOther)
{
    const QList<LibraryPrecursors> precursors = somePrecursors();
    const Spectra spectra = predict(precursors);
    for (qsizetype i = 0; i < precursors.size(); ++i) {
        for (const int charge : {1, 2, 3, 4})
            EXPECT_EQ(spectra.contains({i, charge}), precursors[i].isOf(charge));
    }
}

TEST_F(Predictions, DoNotDependOnTheOtherPeptidesOrTheirOrder)
{
    const QList<LibraryPrecursors> precursors = somePrecursors();
    const Spectra together = predict(precursors);
    const Spectra otherwise = predict(QList<LibraryPrecursors>(precursors.rbegin(), precursors.rend()));
    for (auto spectrum = together.begin(); spectrum != together.end(); ++spectrum) {
        const auto &[index, charge] = spectrum.key();
        EXPECT_FALSE(spectrum->isEmpty());
        EXPECT_TRUE(areEqual(*spectrum, otherwise[{precursors.size() - 1 - index, charge}]));
        if (index % 10 == 0) {
            EXPECT_TRUE(areEqual(*spectrum, predict({precursors[index]})[{0, charge}]));
        }
    }
}

TEST_F(Predictions, OfTimesDoNotDependOnTheOtherPeptides)
{
    const QList<LibraryPrecursors> precursors = somePrecursors();
    const QList<QList<double>> together = heads(precursors);
    const QList<double> first = times(precursors);
    ASSERT_EQ(together.size(), precursors.size());
    ASSERT_EQ(first.size(), precursors.size());
    for (qsizetype i = 0; i < precursors.size(); i += 10) {
        EXPECT_EQ(together[i], heads({precursors[i]}).first());
        EXPECT_EQ(first[i], together[i].first());
    }
}

TEST_F(Predictions, OfAllChargesDoNotDependOnTheOtherPeptides)
{
    QList<LibraryPrecursors> precursors = somePrecursors();
    for (qsizetype i = 0; i < precursors.size(); i += 3)
        precursors[i].charges = ALL_CHARGES;
    const Spectra together = predict(precursors);
    for (qsizetype i = 0; i < precursors.size(); i += 30) {
        const Spectra alone = predict({precursors[i]});
        EXPECT_EQ(alone.size(), 6);
        for (auto spectrum = alone.begin(); spectrum != alone.end(); ++spectrum)
            EXPECT_TRUE(areEqual(*spectrum, together[{i, spectrum.key().second}]));
    }
}

TEST_F(Predictions, LeaveOutAPeptidoformWithoutPrecursorsOfAnyLength)
{
    const QList<LibraryPrecursors> precursors = {{Peptidoform(QString(60, u'A')), 0},
                                                 {Peptidoform(QStringLiteral("PEPTIDEK")), CHARGE_2}};
    EXPECT_EQ(predict(precursors).size(), 1);
    const QList<QList<double>> found = heads(precursors);
    ASSERT_EQ(found.size(), 2);
    EXPECT_TRUE(found[0].isEmpty());
    EXPECT_EQ(found[1], heads({precursors[1]}).first());
    EXPECT_TRUE(std::isnan(times(precursors).first()));
    EXPECT_TRUE(m_predictor.takeRemarks().isEmpty());
}

TEST_F(Predictions, AreThoseOfTheNetwork)
{
    PeptidoformSpectrumPredictor predictor;
    const ModelFolder folder(QStringLiteral(ZAV_MODELS));
    ASSERT_FALSE(predictor.init(folder.network(NetworkUse::Peptidoforms)).hasError());
    const QList<LibraryPrecursors> precursors = somePrecursors().mid(145, 10);
    const Spectra spectra = predict(precursors, 25.0);
    for (auto spectrum = spectra.begin(); spectrum != spectra.end(); ++spectrum) {
        const auto &[index, charge] = spectrum.key();
        QList<QList<FragmentPeak>> alone;
        ASSERT_FALSE(predictor.predict({{precursors[index].peptidoform, charge, 25.0}}, &alone).hasError());
        QMap<double, double> expected;
        for (const FragmentPeak &peak : std::as_const(alone.first()))
            expected.insert(peak.mz, peak.intensity);
        for (const FragmentPeak &peak : *spectrum)
            // Blocks of another shape sum in another order; a peak at the limit may be in one alone.
            EXPECT_NEAR(expected.value(peak.mz, 0.04), peak.intensity, 1e-4);
    }
}

TEST_F(Predictions, ThatNeedWhatTheNetworkHasNotSeenAreRemarkedOnOnce)
{
    const Modification tag = modifications::findByName(QStringLiteral("TMT6plex"))->modification;
    const Peptidoform tagged(QStringLiteral("PEPTIDEK"), {{8, tag}});
    const Peptidoform other(QStringLiteral("SAMPLERK"), {{8, tag}});
    predict({{tagged, CHARGE_2}, {other, CHARGES_2_AND_3}});
    times({{tagged, CHARGE_2}});
    const QStringList remarks = m_predictor.takeRemarks();
    ASSERT_EQ(remarks.size(), 1) << remarks.join(u'\n').toStdString();
    EXPECT_TRUE(remarks.first().contains(QStringLiteral("TMT6plex")));
    EXPECT_TRUE(m_predictor.takeRemarks().isEmpty());
}

TEST(LibraryPredictor, NamesANetworkThatIsNotThere)
{
    LibraryPredictor predictor;
    const Error error = predictor.load(ModelFolder(QStringLiteral("/nowhere")), false);
    EXPECT_TRUE(error.message().contains(QStringLiteral("peptidoform_spectrum.pb"))) << error.message().toStdString();
}

} // namespace
} // namespace zav
