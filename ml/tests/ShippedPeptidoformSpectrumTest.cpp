// SPDX-License-Identifier: Apache-2.0
//
// The peptidoform network that the project ships, through the public surface.
#include "PeptidoformSpectrumPredictor_p.h"
#include "PeptidoformSpectrumTest.h"

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace zav {
namespace {

using Spectra = QList<QList<FragmentPeak>>;

// A run is cropped to its longest peptide, so that the runtime multiplies matrices of other shapes and sums floats in
// another order; then everything is divided by the base peak.
constexpr double INTENSITY_TOLERANCE = 1e-4;

constexpr double LOWEST_INTENSITY = 0.04;
constexpr char VOCABULARY[] = "DESTILVFYWACGMPNQHKR";

class ShippedPeptidoformSpectrum : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const Error error = predictor.init(QStringLiteral(ZAV_MODELS_DIR "/peptidoform_spectrum.pb"));
        ASSERT_FALSE(error.hasError()) << error.toString().toStdString();
    }

    Spectra predict(const QList<PeptidoformPrecursor> &precursors)
    {
        Spectra spectra;
        const Error outcome = predictor.predict(precursors, &spectra);
        EXPECT_FALSE(outcome.hasError()) << outcome.toString().toStdString();
        EXPECT_EQ(spectra.size(), precursors.size());
        return spectra;
    }

    PeptidoformSpectrumPredictor predictor;
};

Modification named(const char *name)
{
    const auto *entry = modifications::findByName(QString::fromLatin1(name));
    EXPECT_NE(entry, nullptr) << name;
    return entry != nullptr ? entry->modification : Modification();
}

/// Of random residues, cysteines carbamidomethylated, every other serine and methionine modified.
Peptidoform randomPeptidoform(int length, std::mt19937 *generator)
{
    static const Modification carbamidomethyl = named("Carbamidomethyl");
    static const Modification phospho = named("Phospho");
    static const Modification oxidation = named("Oxidation");
    QString sequence;
    QList<PlacedModification> placed;
    for (int i = 1; i <= length; ++i) {
        const char residue = VOCABULARY[(*generator)() % 20];
        sequence.append(QLatin1Char(residue));
        const bool isModified = (*generator)() % 2 == 0;
        if (residue == 'C')
            placed.append({i, carbamidomethyl});
        else if (residue == 'S' && isModified)
            placed.append({i, phospho});
        else if (residue == 'M' && isModified)
            placed.append({i, oxidation});
    }
    return Peptidoform(sequence, placed);
}

/// Of all lengths, charges and energies, unknown ones among them; some peptidoforms several times in a row.
QList<PeptidoformPrecursor> randomPrecursors(int count, unsigned seed)
{
    std::mt19937 generator(seed);
    QList<PeptidoformPrecursor> precursors;
    while (precursors.size() < count) {
        const Peptidoform peptidoform = randomPeptidoform(static_cast<int>(2 + generator() % 51), &generator);
        const auto repeats = 1 + generator() % 3;
        for (unsigned i = 0; i < repeats; ++i) {
            const bool isKnown = generator() % 3 != 0;
            precursors.append({peptidoform, static_cast<int>(1 + generator() % 6),
                               isKnown ? 20.0 + generator() % 21 : std::numeric_limits<double>::quiet_NaN()});
        }
    }
    return precursors;
}

/// Whether each ion of one spectrum has the same intensity in the other; ions so weak that float rounding may have
/// removed them from one of the two are left aside.
::testing::AssertionResult areAlike(const QList<FragmentPeak> &left, const QList<FragmentPeak> &right)
{
    const QMap<QString, double> first = intensitiesByIon(left);
    const QMap<QString, double> second = intensitiesByIon(right);
    for (const auto &[some, others] : {std::pair{first, second}, std::pair{second, first}}) {
        for (auto ion = some.cbegin(); ion != some.cend(); ++ion) {
            const bool isAlike = others.contains(ion.key())
                                     ? std::abs(ion.value() - others.value(ion.key())) <= INTENSITY_TOLERANCE
                                     : ion.value() <= LOWEST_INTENSITY + INTENSITY_TOLERANCE;
            if (!isAlike)
                return ::testing::AssertionFailure() << ion.key().toStdString() << ' ' << ion.value();
        }
    }
    return ::testing::AssertionSuccess();
}

TEST_F(ShippedPeptidoformSpectrum, GivesSpectraWhoseBasePeakIsOne)
{
    for (const QList<FragmentPeak> &peaks : predict(randomPrecursors(500, 1))) {
        ASSERT_FALSE(peaks.isEmpty());
        double highest = 0.0;
        for (const FragmentPeak &peak : peaks) {
            EXPECT_TRUE(std::isfinite(peak.mz) && peak.mz > 0.0 && peak.mz <= 2000.0);
            EXPECT_TRUE(peak.intensity >= LOWEST_INTENSITY && peak.intensity <= 1.0);
            highest = std::max(highest, peak.intensity);
        }
        EXPECT_EQ(highest, 1.0);
    }
}

TEST_F(ShippedPeptidoformSpectrum, DoesNotDependOnTheOtherPrecursorsOfACall)
{
    const QList<PeptidoformPrecursor> precursors = randomPrecursors(400, 2);
    const Spectra together = predict(precursors);
    for (qsizetype i = 0; i < precursors.size(); ++i)
        EXPECT_TRUE(areAlike(together.at(i), predict({precursors.at(i)}).first()))
            << precursors.at(i).peptidoform.toProForma().toStdString() << ' ' << precursors.at(i).charge;
}

TEST_F(ShippedPeptidoformSpectrum, DependsOnChargeEnergyAndModification)
{
    const Spectra spectra = predict({{peptidoform("AGSDMLVEEYK"), 2, 28.0},
                                     {peptidoform("AGSDMLVEEYK"), 3, 28.0},
                                     {peptidoform("AGSDMLVEEYK"), 2, 38.0},
                                     {peptidoform("AGS[Phospho]DMLVEEYK"), 2, 28.0}});
    for (int i = 1; i < 4; ++i)
        EXPECT_FALSE(areAlike(spectra.at(0), spectra.at(i))) << i;
}

TEST_F(ShippedPeptidoformSpectrum, TakesAnUnknownEnergyForThirty)
{
    for (const PeptidoformPrecursor &each : randomPrecursors(20, 3)) {
        const Spectra spectra = predict({{each.peptidoform, each.charge}, {each.peptidoform, each.charge, 30.0}});
        EXPECT_TRUE(areAlike(spectra.at(0), spectra.at(1)));
    }
}

TEST_F(ShippedPeptidoformSpectrum, LosesWhatTheModificationsLose)
{
    const Spectra spectra =
        predict({{peptidoform("AGS[Phospho]DALVEEYK"), 2}, {peptidoform("AGSDM[Oxidation]LVEEYK"), 2}});
    const auto share = [&spectra](int index, const char *loss) {
        double sum = 0.0;
        double lost = 0.0;
        for (const FragmentPeak &peak : spectra.at(index)) {
            sum += peak.intensity;
            lost += peak.neutralLoss == QLatin1String(loss) ? peak.intensity : 0.0;
        }
        return lost / sum;
    };
    // Measured spectra of such peptides have 0.26 to 0.31 and 0.11 to 0.13 of their intensity there.
    EXPECT_GT(share(0, "-H3PO4"), 0.05);
    EXPECT_GT(share(1, "-CH4OS"), 0.02);
}

TEST_F(ShippedPeptidoformSpectrum, WithIsotopesHasTheSameMonoisotopicPeaks)
{
    const QList<PeptidoformPrecursor> precursors = randomPrecursors(100, 4);
    const Spectra without = predict(precursors);
    Spectra with;
    ASSERT_FALSE(predictor.predict(precursors, &with, IsotopePeaks::Included).hasError());
    for (qsizetype i = 0; i < precursors.size(); ++i) {
        const qsizetype all = with.at(i).size();
        with[i].removeIf([](const FragmentPeak &peak) { return peak.isotope != 0; });
        EXPECT_GT(all, with.at(i).size());
        EXPECT_EQ(intensitiesByIon(with.at(i)), intensitiesByIon(without.at(i)));
    }
}

TEST_F(ShippedPeptidoformSpectrum, WasTrainedOnTheModificationsThatThePredictorKnows)
{
    QFile file(QStringLiteral(ZAV_MODELS_DIR "/peptidoform_spectrum.json"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QStringList contract;
    const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    for (const QJsonValue &name : object.value(QStringLiteral("modificationsTrained")).toArray())
        contract.append(name.toString());
    QStringList known;
    for (const char *name : peptidoformNetwork::TRAINED_MODIFICATIONS)
        known.append(QString::fromLatin1(name));
    contract.sort();
    known.sort();
    EXPECT_EQ(contract, known);
}

} // namespace
} // namespace zav
