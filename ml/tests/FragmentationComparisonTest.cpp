// SPDX-License-Identifier: Apache-2.0
//
// Random peptides of every charge and length, against a second implementation that shares nothing with the library.
#include "FragmentationTest.h"
#include "NaiveSpectrum.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zav {
namespace {

constexpr int PEPTIDES_PER_CHARGE = 400;
constexpr double CYSTEINE_MASS = 57.02146; // Da
constexpr double HIGHEST_MZ = 2000.0;
constexpr double LOWEST_INTENSITY = 0.025;

// Water, ammonia and the proton are taken to six or more digits, fifty residues to 1e-8 Da each.
constexpr double MZ_TOLERANCE = 3e-6;
// The networks' sums are exact; isotopes agree to 3e-6 of themselves, most abundances are below 3.
constexpr double INTENSITY_TOLERANCE = 3e-5;

/// How sure it is that a peak belongs into the spectrum: false where it is so near a limit that rounding decides.
bool isClearlyInside(const QPointF &peak)
{
    return peak.x() < HIGHEST_MZ - MZ_TOLERANCE && peak.y() > LOWEST_INTENSITY + INTENSITY_TOLERANCE;
}

bool isClearlyOutside(const QPointF &peak)
{
    return peak.x() > HIGHEST_MZ + MZ_TOLERANCE || peak.y() < LOWEST_INTENSITY - INTENSITY_TOLERANCE;
}

bool isSamePeak(const QPointF &a, const QPointF &b)
{
    return std::abs(a.x() - b.x()) <= MZ_TOLERANCE && std::abs(a.y() - b.y()) <= INTENSITY_TOLERANCE;
}

/// Takes the peak that equals `peak` out of `peaks`, which are sorted by m/z.
bool takeEqual(QList<QPointF> *peaks, const QPointF &peak)
{
    auto candidate = std::lower_bound(peaks->begin(), peaks->end(), peak.x() - MZ_TOLERANCE,
                                      [](const QPointF &point, double mz) { return point.x() < mz; });
    for (; candidate != peaks->end() && candidate->x() <= peak.x() + MZ_TOLERANCE; ++candidate) {
        if (isSamePeak(*candidate, peak)) {
            peaks->erase(candidate);
            return true;
        }
    }
    return false;
}

void expectEqualSpectra(const QList<QPointF> &spectrum, QList<QPointF> expected)
{
    const auto byMz = [](const QPointF &a, const QPointF &b) { return a.x() < b.x(); };
    ASSERT_TRUE(std::is_sorted(spectrum.cbegin(), spectrum.cend(), byMz));
    expected.removeIf(isClearlyOutside);
    std::sort(expected.begin(), expected.end(), byMz);
    for (const QPointF &peak : spectrum)
        ASSERT_TRUE(takeEqual(&expected, peak)) << "unexpected peak " << peak.x() << ", " << peak.y();
    for (const QPointF &peak : expected)
        ASSERT_FALSE(isClearlyInside(peak)) << "missing peak " << peak.x() << ", " << peak.y();
}

/// Standard residues, and in one of four peptides an unknown one.
QString peptideOf(int length, std::mt19937 *generator)
{
    QString peptide = randomPeptide(length, generator);
    if ((*generator)() % 4 == 0)
        peptide[static_cast<int>((*generator)() % length)] = u'X';
    return peptide;
}

class FragmentationComparison : public FragmentationTest, public ::testing::WithParamInterface<int>
{};

TEST_P(FragmentationComparison, RandomPeptidesHaveTheSpectraOfASecondImplementation)
{
    const int charge = GetParam();
    const LinearNetwork network = LinearNetwork::random(charge, 100 + charge);
    load(charge, network.graph());
    std::mt19937 generator(charge);
    qsizetype peakCount = 0;
    for (int i = 0; i < PEPTIDES_PER_CHARGE; ++i) {
        const int length = 1 + static_cast<int>(generator() % FragmentationContract::of(charge).maximumLength);
        const QString peptide = peptideOf(length, &generator);
        SCOPED_TRACE(peptide.toStdString());
        QList<QPointF> spectrum;
        ASSERT_FALSE(predictor.predictMsMsFragmentation(peptide, charge, &spectrum).hasError());
        expectEqualSpectra(spectrum, naive::spectrum(peptide, charge, CYSTEINE_MASS, network.intensities(peptide),
                                                     LOWEST_INTENSITY, HIGHEST_MZ));
        peakCount += spectrum.size();
    }
    EXPECT_GT(peakCount, 100 * PEPTIDES_PER_CHARGE) << "the spectra are worth comparing";
}

INSTANTIATE_TEST_SUITE_P(AllCharges, FragmentationComparison, ::testing::Range(1, 6));

} // namespace
} // namespace zav
