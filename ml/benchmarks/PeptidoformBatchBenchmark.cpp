// SPDX-License-Identifier: Apache-2.0
//
// What a precursor costs the predictor of peptidoforms: one charge of each peptide, several charges, several energies;
// beside the networks of one charge each. Refuses to time wrong answers.
// Usage: peptidoform_batch_benchmark [folder of the networks]
#include "BenchmarkSetting.h"

#include <zav/MsMsFragmentationPredictomatic.h>
#include <zav/PeptidoformSpectrumPredictor.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zav {
namespace {

using namespace benchmarkSetting;

constexpr int PEPTIDE_COUNT = 5000;
constexpr int ROUNDS = 5;
constexpr int CHECKED = 100;
constexpr double INTENSITY_TOLERANCE = 1e-4; // a run of one sums in another order, and is scaled afterwards

/// What is predicted of each peptide, one after the other.
struct Workload
{
    const char *name;
    QList<int> charges;
    QList<double> energies;

    qsizetype perPeptide() const { return charges.size() * energies.size(); }
};

QList<PeptidoformPrecursor> precursorsOf(const QStringList &peptides, const Workload &workload)
{
    const Modification carbamidomethyl = modifications::findByName(QStringLiteral("Carbamidomethyl"))->modification;
    QList<PeptidoformPrecursor> precursors;
    precursors.reserve(peptides.size() * workload.perPeptide());
    for (const QString &peptide : peptides) {
        QList<PlacedModification> placed;
        for (int i = 0; i < peptide.size(); ++i) {
            if (peptide.at(i) == u'C')
                placed.append({i + 1, carbamidomethyl});
        }
        const Peptidoform peptidoform(peptide, placed);
        for (const int charge : workload.charges) {
            for (const double energy : workload.energies)
                precursors.append({peptidoform, charge, energy});
        }
    }
    return precursors;
}

bool hasIon(const QList<FragmentPeak> &peaks, const FragmentPeak &wanted)
{
    return std::any_of(peaks.cbegin(), peaks.cend(), [&wanted](const FragmentPeak &peak) {
        return peak.mz == wanted.mz && peak.ionType == wanted.ionType &&
               std::abs(peak.intensity - wanted.intensity) < INTENSITY_TOLERANCE;
    });
}

void refuseWrongAnswers(PeptidoformSpectrumPredictor *predictor, const QList<PeptidoformPrecursor> &precursors)
{
    QList<QList<FragmentPeak>> together;
    require(!predictor->predict(precursors, &together).hasError(), "The prediction failed");
    const qsizetype step = precursors.size() / CHECKED;
    for (qsizetype i = 0; i < precursors.size(); i += step) {
        QList<QList<FragmentPeak>> alone;
        require(!predictor->predict({precursors.at(i)}, &alone).hasError(), "The prediction failed");
        for (const FragmentPeak &peak : together.at(i))
            require(hasIon(alone.first(), peak) || peak.intensity < 0.04 + INTENSITY_TOLERANCE,
                    "A batch differs from the prediction of one precursor");
    }
}

/// Seconds that the networks of one charge each compute for peptides of each charge.
double timeFiveNetworks(MsMsFragmentationPredictomatic *predictor, const QStringList &peptides,
                        const QList<int> &charges)
{
    const Moment start = Moment::now();
    for (const int charge : charges) {
        QList<QList<FragmentPeak>> spectra;
        require(!predictor->predictFragments(peptides, charge, &spectra).hasError(), "The prediction failed");
    }
    return Moment::now().since(start).computed;
}

double timePeptidoforms(PeptidoformSpectrumPredictor *predictor, const QList<PeptidoformPrecursor> &precursors)
{
    QList<QList<FragmentPeak>> spectra;
    const Moment start = Moment::now();
    require(!predictor->predict(precursors, &spectra).hasError(), "The prediction failed");
    return Moment::now().since(start).computed;
}

void measure(PeptidoformSpectrumPredictor *predictor, MsMsFragmentationPredictomatic *fiveNetworks,
             const QStringList &peptides, const Workload &workload)
{
    const QList<PeptidoformPrecursor> all = precursorsOf(peptides, workload);
    const QList<PeptidoformPrecursor> one = precursorsOf(peptides, {"", {2}, {30.0}});
    refuseWrongAnswers(predictor, all);
    std::vector<double> perPrecursor, besideOne, besideFive;
    for (int round = 0; round < ROUNDS; ++round) {
        const double spent = timePeptidoforms(predictor, all);
        const double ofOne = timePeptidoforms(predictor, one);
        const double ofFive =
            timeFiveNetworks(fiveNetworks, peptides, workload.charges) * static_cast<double>(workload.energies.size());
        perPrecursor.push_back(spent / static_cast<double>(all.size()) * 1e6);
        besideOne.push_back(spent / ofOne / static_cast<double>(workload.perPeptide()));
        besideFive.push_back(spent / ofFive);
    }
    std::printf("%-28s %8.1f us   %12.2f   %18.2f\n", workload.name, median(perPrecursor), median(besideOne),
                median(besideFive));
}

int run(const QString &folder)
{
    const QStringList sequences = peptides(PEPTIDE_COUNT);
    printSetting(QStringLiteral("Annotated fragments of %1 random peptides of 7 to 25 residues; processor time of a "
                                "precursor, and its ratio to that of other ways, medians of %2 rounds")
                     .arg(PEPTIDE_COUNT)
                     .arg(ROUNDS));
    std::printf("%-28s %11s   %12s   %18s\n", "", "each", "to charge 2", "to the five nets");
    MsMsFragmentationPredictomatic fiveNetworks;
    loadAll(&fiveNetworks, folder);
    PeptidoformSpectrumPredictor predictor;
    require(!predictor.init(folder + QStringLiteral("/peptidoform_spectrum.pb")).hasError(),
            "The network could not be loaded");
    for (const Workload &workload : {Workload{"charge 2", {2}, {30.0}}, Workload{"charges 2 and 3", {2, 3}, {30.0}},
                                     Workload{"charges 2 to 4", {2, 3, 4}, {30.0}},
                                     Workload{"charge 2, 4 energies", {2}, {24.0, 27.0, 30.0, 33.0}}})
        measure(&predictor, &fiveNetworks, sequences, workload);
    return 0;
}

} // namespace
} // namespace zav

int main(int argumentCount, char **arguments)
{
    return zav::run(zav::benchmarkSetting::modelFolder(argumentCount, arguments));
}
