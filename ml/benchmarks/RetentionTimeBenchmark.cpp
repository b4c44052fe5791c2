// SPDX-License-Identifier: Apache-2.0
//
// What a retention time costs in the batches of a library, and how much of that the network takes: the same blocks run
// through the bare session. Refuses to time wrong answers.
// Usage: retention_time_benchmark [folder of the networks]
#include "BenchmarkSetting.h"
#include "PeptidoformRows.h"
#include "RetentionTimePredictor_p.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zav {

/// The benchmark's view of a predictor: its network, to be run without it.
class RetentionTimePredictorInspector
{
public:
    using Private = RetentionTimePredictor::Private;
    static Private &of(const RetentionTimePredictor &predictor) { return *predictor.d; }
};

namespace {

using namespace benchmarkSetting;

constexpr int PEPTIDE_COUNT = 50000;
constexpr int ROUNDS = 5;
constexpr int CHECKED = 100;

// Two runs whose matrices have other shapes sum in another order.
constexpr double TIME_TOLERANCE = 0.01;

QList<Peptidoform> peptidoforms()
{
    QList<Peptidoform> list;
    for (const QString &sequence : peptides(PEPTIDE_COUNT))
        list.append(Peptidoform(QString(sequence).replace(u'C', u'S'))); // a free cysteine is unknown to the network
    return list;
}

void refuseWrongAnswers(RetentionTimePredictor *predictor, const QList<Peptidoform> &list)
{
    QList<double> times;
    require(!predictor->predict(list, &times).hasError(), "The prediction failed");
    for (int i = 0; i < CHECKED; ++i) {
        QList<double> alone;
        require(!predictor->predict({list.at(i)}, &alone).hasError(), "The prediction failed");
        require(std::abs(alone.first() - times.at(i)) < TIME_TOLERANCE, "A batch differs from the single prediction");
    }
}

/// Runs of the session alone, over the blocks that the prediction makes.
Moment timeRuns(const RetentionTimePredictor &predictor, QList<Peptidoform> list)
{
    RetentionTimePredictorInspector::Private &inside = RetentionTimePredictorInspector::of(predictor);
    std::stable_sort(list.begin(), list.end(),
                     [](const Peptidoform &a, const Peptidoform &b) { return a.length() < b.length(); });
    constexpr auto BLOCK = static_cast<qsizetype>(retentionTimeNetwork::PEPTIDOFORMS_PER_RUN);
    Moment sum{0.0, 0.0};
    for (qsizetype first = 0; first < list.size(); first += BLOCK) {
        const qsizetype count = std::min(BLOCK, list.size() - first);
        std::vector<float> rows(static_cast<std::size_t>(count) * peptidoformRows::SIZE);
        for (qsizetype i = 0; i < count; ++i)
            peptidoformRows::write(list.at(first + i), &rows[i * peptidoformRows::SIZE]);
        require(!inside.input->setData<float>(std::move(rows)).hasError(), "The network takes no batch");
        const Moment start = Moment::now();
        require(!inside.model.run(*inside.input, *inside.output).hasError(), "A run failed");
        const Moment spent = Moment::now().since(start);
        sum = {sum.wall + spent.wall, sum.computed + spent.computed};
    }
    return sum;
}

int run(const QString &folder)
{
    const QList<Peptidoform> list = peptidoforms();
    printSetting(QStringLiteral("Retention times of %1 random peptides of 7 to 25 residues in blocks of %2; medians of "
                                "%3 rounds")
                     .arg(PEPTIDE_COUNT)
                     .arg(retentionTimeNetwork::PEPTIDOFORMS_PER_RUN)
                     .arg(ROUNDS));
    RetentionTimePredictor predictor;
    require(!predictor.init(folder + QStringLiteral("/retention_time.pb")).hasError(), "The network cannot be loaded");
    refuseWrongAnswers(&predictor, list);
    std::vector<double> wall;
    std::vector<double> computed;
    std::vector<double> ratio;
    for (int round = 0; round < ROUNDS; ++round) {
        QList<double> times;
        const Moment start = Moment::now();
        require(!predictor.predict(list, &times).hasError(), "The prediction failed");
        const Moment spent = Moment::now().since(start);
        wall.push_back(spent.wall / PEPTIDE_COUNT * 1e6);
        computed.push_back(spent.computed / PEPTIDE_COUNT * 1e6);
        ratio.push_back(spent.computed / timeRuns(predictor, list).computed);
    }
    std::printf("%.1f us by the wall clock, %.1f us of processor time each; %.3f times the bare runs\n", median(wall),
                median(computed), median(ratio));
    return 0;
}

} // namespace
} // namespace zav

int main(int argumentCount, char **arguments)
{
    return zav::run(zav::benchmarkSetting::modelFolder(argumentCount, arguments));
}
