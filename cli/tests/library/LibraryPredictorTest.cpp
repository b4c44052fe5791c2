// SPDX-License-Identifier: Apache-2.0
#include "LibraryPredictor.h"

#include <gtest/gtest.h>

#include <QtCore/QMap>

#include <random>

namespace zav {
namespace {

/// The same ones everywhere: lengths 7 to 20, more of them than one block of each.
QStringList somePeptides()
{
    constexpr char RESIDUES[] = "ACDEFGHIKLMNPQRSTVWY";
    std::mt19937 generator(5);
    QStringList peptides;
    for (int i = 0; i < 150; ++i) {
        QString peptide;
        const int length = i < 50 ? 9 : int(7 + generator() % 14);
        for (int j = 0; j < length; ++j)
            peptide.append(QLatin1Char(RESIDUES[generator() % 20]));
        peptides.append(peptide);
    }
    return peptides;
}

class Predictions : public testing::Test
{
protected:
    void SetUp() override
    {
        const Error error = m_predictor.load(ModelFolder(QStringLiteral(ZAV_MODELS)), {2, 3});
        ASSERT_FALSE(error.hasError()) << error.toString().toStdString();
    }

    QList<QList<FragmentPeak>> predict(const QStringList &peptides, int charge)
    {
        QList<QList<FragmentPeak>> spectra(peptides.size());
        const Error error = m_predictor.predict(peptides, charge, [&](qsizetype i, const QList<FragmentPeak> &peaks) {
            EXPECT_TRUE(spectra[i].isEmpty());
            spectra[i] = peaks;
        });
        EXPECT_FALSE(error.hasError()) << error.toString().toStdString();
        return spectra;
    }

    LibraryPredictor m_predictor{57.02146};
};

/// To the last bit.
bool areEqual(const QList<FragmentPeak> &a, const QList<FragmentPeak> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const FragmentPeak &x, const FragmentPeak &y) {
        return x.mz == y.mz && x.intensity == y.intensity && x.ionType == y.ionType && x.ionNumber == y.ionNumber &&
               x.charge == y.charge && x.neutralLoss == y.neutralLoss;
    });
}

TEST_F(Predictions, DoNotDependOnTheOtherPeptidesOrTheirOrder)
{
    const QStringList peptides = somePeptides();
    for (const int charge : {2, 3}) {
        const QList<QList<FragmentPeak>> together = predict(peptides, charge);
        QStringList reversed(peptides.rbegin(), peptides.rend());
        const QList<QList<FragmentPeak>> otherwise = predict(reversed, charge);
        for (qsizetype i = 0; i < peptides.size(); ++i) {
            EXPECT_FALSE(together[i].isEmpty());
            EXPECT_TRUE(areEqual(together[i], otherwise[peptides.size() - 1 - i])) << peptides[i].toStdString();
            if (i % 10 == 0) {
                EXPECT_TRUE(areEqual(together[i], predict({peptides[i]}, charge).first())) << peptides[i].toStdString();
            }
        }
    }
}

TEST_F(Predictions, AreThoseOfTheNetwork)
{
    MsMsFragmentationPredictomatic predictor;
    const QStringList paths = ModelFolder(QStringLiteral(ZAV_MODELS)).fragmentationNetworks({2});
    ASSERT_FALSE(predictor.init(paths[0], paths[1], paths[2], paths[3], paths[4]).hasError());
    const QStringList peptides = somePeptides().mid(45, 10);
    const QList<QList<FragmentPeak>> spectra = predict(peptides, 2);
    for (qsizetype i = 0; i < peptides.size(); ++i) {
        QList<QList<FragmentPeak>> alone;
        ASSERT_FALSE(predictor.predictFragments({peptides[i]}, 2, &alone).hasError());
        QMap<double, double> expected;
        for (const FragmentPeak &peak : std::as_const(alone.first()))
            expected.insert(peak.mz, peak.intensity);
        for (const FragmentPeak &peak : spectra[i])
            // Blocks of another shape sum in another order.
            EXPECT_NEAR(expected.value(peak.mz, 0.025), peak.intensity, 2e-5);
    }
}

TEST(LibraryPredictor, NamesANetworkThatIsNotThere)
{
    LibraryPredictor predictor(0.0);
    const Error error = predictor.load(ModelFolder(QStringLiteral("/nowhere")), {3});
    EXPECT_TRUE(error.message().contains(QStringLiteral("charge 3"))) << error.message().toStdString();
}

} // namespace
} // namespace zav
