// SPDX-License-Identifier: Apache-2.0
//
// How many precursors a second a batch prediction makes, and how much of the time the network takes: the same blocks
// run through the bare session. Refuses to time wrong answers.
// Usage: fragment_batch_benchmark [folder of the networks]
#include "BenchmarkSetting.h"
#include "FragmentBatch.h"
#include "PeptideVocabulary.h"

#include <zav/MsMsFragmentationPredictomatic.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zav {
namespace {

using namespace benchmarkSetting;

constexpr int PEPTIDE_COUNT = 20000;
constexpr int ROUNDS = 5;
constexpr int CHECKED = 200;

// Two runs whose matrices have other shapes sum in another order.
constexpr double INTENSITY_TOLERANCE = 2e-5;

void refuseWrongAnswers(MsMsFragmentationPredictomatic *predictor, const QStringList &peptides, int charge)
{
    QList<QList<FragmentPeak>> spectra;
    require(!predictor->predictFragments(peptides, charge, &spectra).hasError(), "The prediction failed");
    for (int i = 0; i < CHECKED; ++i) {
        QList<QPointF> spectrum;
        require(!predictor->predictMsMsFragmentation(peptides.at(i), charge, &spectrum).hasError(),
                "The prediction failed");
        for (const FragmentPeak &peak : spectra.at(i)) {
            const bool found = std::any_of(spectrum.cbegin(), spectrum.cend(), [&peak](const QPointF &point) {
                return point.x() == peak.mz && std::abs(point.y() - peak.intensity) < INTENSITY_TOLERANCE;
            });
            require(found || peak.intensity < 0.025 + INTENSITY_TOLERANCE,
                    "A batch differs from the one-peptide prediction");
        }
    }
}

/// Runs of the session alone, over the blocks that the batch makes.
Moment timeRuns(Model &model, QStringList peptides, int charge)
{
    Tensor input;
    Tensor output;
    const bool bound = !input.init(model.getGraph(), model.getStatus(), peptideVocabulary::NETWORK_INPUT).hasError() &&
                       !output.init(model.getGraph(), model.getStatus(), peptideVocabulary::NETWORK_OUTPUT).hasError();
    require(bound, "The network lacks an operation");
    std::stable_sort(peptides.begin(), peptides.end(),
                     [](const QString &a, const QString &b) { return a.size() < b.size(); });
    const int rowCount = peptideVocabulary::maximumPeptideLength(charge);
    const int perPeptide = rowCount * peptideVocabulary::encodingWidth();
    constexpr auto BLOCK = static_cast<qsizetype>(FragmentBatch::PEPTIDES_PER_RUN);

    Moment sum{0.0, 0.0};
    for (qsizetype first = 0; first < peptides.size(); first += BLOCK) {
        const qsizetype count = std::min(BLOCK, peptides.size() - first);
        std::vector<float> rows(static_cast<std::size_t>(count * perPeptide));
        for (qsizetype i = 0; i < count; ++i)
            peptideVocabulary::writeOneHotRows(peptides.at(first + i), rowCount, &rows[i * perPeptide]);
        require(!input.setData<float>(std::move(rows)).hasError(), "The network takes no batch");
        const Moment start = Moment::now();
        require(!model.run(input, output).hasError(), "A run failed");
        const Moment spent = Moment::now().since(start);
        sum = {sum.wall + spent.wall, sum.computed + spent.computed};
    }
    return sum;
}

void measure(MsMsFragmentationPredictomatic *predictor, const QStringList &peptides, int charge)
{
    Model &model = MsMsFragmentationPredictomaticInspector::model(*predictor, charge);
    refuseWrongAnswers(predictor, peptides, charge);
    std::vector<double> wall, computed, share;
    for (int round = 0; round < ROUNDS; ++round) {
        QList<QList<FragmentPeak>> spectra;
        const Moment start = Moment::now();
        require(!predictor->predictFragments(peptides, charge, &spectra).hasError(), "The prediction failed");
        const Moment spent = Moment::now().since(start);
        wall.push_back(spent.wall);
        computed.push_back(spent.computed);
        share.push_back(timeRuns(model, peptides, charge).computed / spent.computed);
    }
    const auto count = static_cast<double>(peptides.size());
    std::printf("%4d    %8.0f / s      %8.0f / s of a core   %5.1f us    %4.0f %%\n", charge, count / median(wall),
                count / median(computed), median(computed) / count * 1e6, median(share) * 100);
}

int run(const QString &folder)
{
    const QStringList sequences = peptides(PEPTIDE_COUNT);
    double residues = 0.0;
    for (const QString &peptide : sequences)
        residues += static_cast<double>(peptide.size());
    printSetting(QStringLiteral("Annotated fragments of %1 random peptides of 7 to 25 residues, %2 on average, in "
                                "blocks of %3; medians of %4 rounds")
                     .arg(PEPTIDE_COUNT)
                     .arg(residues / PEPTIDE_COUNT, 0, 'f', 1)
                     .arg(FragmentBatch::PEPTIDES_PER_RUN)
                     .arg(ROUNDS));
    std::printf("charge  by the wall clock  by processor time        each    in the network\n");
    MsMsFragmentationPredictomatic predictor;
    loadAll(&predictor, folder);
    for (const int charge : {2, 3})
        measure(&predictor, sequences, charge);
    return 0;
}

} // namespace
} // namespace zav

int main(int argumentCount, char **arguments)
{
    return zav::run(zav::benchmarkSetting::modelFolder(argumentCount, arguments));
}
