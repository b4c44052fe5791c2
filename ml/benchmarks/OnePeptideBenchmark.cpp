// SPDX-License-Identifier: Apache-2.0
//
// What a prediction of one peptide costs beside a bare run of the same session (feed, run, read) and nothing else.
// Refuses to time wrong answers. Usage: one_peptide_benchmark [folder of the networks]
#include "BenchmarkSetting.h"
#include "CallComparison.h"
#include "PeptideVocabulary.h"
#include "Tensor.h"

#include <zav/MsMsFragmentationPredictomatic.h>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace zav {
namespace {

using namespace benchmarkSetting;

constexpr int CHARGE = 2;
constexpr int ROUNDS = 201;
constexpr int CALLS_PER_ROUND = 20;
const QString PEPTIDE = QStringLiteral("VGAHAGEYGAEALER"); // human hemoglobin alpha, 15 residues

/// The network without the predictor around it.
class BareRun
{
public:
    explicit BareRun(Model &network) : model(network)
    {
        const int rowCount = peptideVocabulary::maximumPeptideLength(CHARGE);
        rows.resize(static_cast<std::size_t>(rowCount) * peptideVocabulary::encodingWidth());
        peptideVocabulary::writeOneHotRows(PEPTIDE, rowCount, rows.data());
        const bool bound =
            !input.init(model.getGraph(), model.getStatus(), peptideVocabulary::NETWORK_INPUT).hasError() &&
            !output.init(model.getGraph(), model.getStatus(), peptideVocabulary::NETWORK_OUTPUT).hasError();
        require(bound, "The network lacks an operation");
    }

    bool operator()()
    {
        return !input.setData<float>(rows).hasError() && !model.run(input, output).hasError() &&
               !output.getData<float>(&intensities).hasError();
    }

    std::vector<float> intensities;

private:
    Model &model;
    Tensor input;
    Tensor output;
    std::vector<float> rows;
};

/// The highest peaks of the spectrum have to be the network's highest intensities.
void refuseWrongAnswers(MsMsFragmentationPredictomatic *predictor, BareRun *bareRun)
{
    QList<QList<FragmentPeak>> spectra;
    require(!predictor->predictFragments({PEPTIDE}, CHARGE, &spectra).hasError(), "The prediction failed");
    require((*bareRun)(), "The bare run failed");
    std::vector<double> predicted;
    for (const FragmentPeak &peak : spectra.first())
        predicted.push_back(peak.intensity);
    std::vector<double> expected(bareRun->intensities.begin(), bareRun->intensities.end());
    std::sort(predicted.rbegin(), predicted.rend());
    std::sort(expected.rbegin(), expected.rend());
    require(predicted.size() >= 5 && predicted.size() <= expected.size(), "The prediction has too few peaks");
    require(std::equal(predicted.begin(), predicted.begin() + 5, expected.begin()), "The prediction is wrong");
}

void report(const char *clock, double bare, double whole, double ratio)
{
    std::printf("%-16s %8.1f   %8.1f   %7.3f\n", clock, bare, whole, ratio);
}

int run(const QString &folder)
{
    printSetting(QStringLiteral("One prediction of %1, charge %2, beside a bare run of its session; medians of %3 "
                                "rounds of %4 calls, in turn")
                     .arg(PEPTIDE)
                     .arg(CHARGE)
                     .arg(ROUNDS)
                     .arg(CALLS_PER_ROUND));
    MsMsFragmentationPredictomatic predictor;
    loadAll(&predictor, folder);
    BareRun bareRun(MsMsFragmentationPredictomaticInspector::model(predictor, CHARGE));
    refuseWrongAnswers(&predictor, &bareRun);

    QList<QPointF> spectrum;
    const auto predict = [&] { return !predictor.predictMsMsFragmentation(PEPTIDE, CHARGE, &spectrum).hasError(); };
    const auto cost = compareCalls(ROUNDS, CALLS_PER_ROUND, std::ref(bareRun), predict);
    std::printf("us per call      bare run   prediction   ratio\n");
    report("wall clock", cost.part.wall, cost.whole.wall, cost.ratio.wall);
    report("processor time", cost.part.computed, cost.whole.computed, cost.ratio.computed);
    return 0;
}

} // namespace
} // namespace zav

int main(int argumentCount, char **arguments)
{
    return zav::run(zav::benchmarkSetting::modelFolder(argumentCount, arguments));
}
