// SPDX-License-Identifier: Apache-2.0
//
// steady_load MODELS SHARE [PART]: calls the predictors millions of times (SHARE of the full numbers; PART: those of
// fragments, peptidoforms, chromatograms or lives only) and fits a line to the resident memory over the calls, from a
// tenth of them on. Prints one row of a table for each kind of call. Fails where the line climbs by 4 MiB or more and
// by three times its error, or where a descriptor or a thread is left.
#include "Predictors.h"

#include <QtCore/QStringList>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iterator>

#include <unistd.h>

namespace {

constexpr int SAMPLES = 100;      // of the memory, over all calls
constexpr double WARM_UP = 0.1;   // of the calls
constexpr double MOST_GROWTH = 4; // MiB over all calls
constexpr int LIST_SIZE = 10'000; // peptides of a batch

using zav::load::limitsOptions;
using zav::load::load;
using zav::load::peptide;
using zav::load::peptidoformOf;
using zav::load::Random;
using zav::load::splitOptions;
using zav::load::trace;

/// Calls number `first` to `end - 1`; false when one fails.
using Calls = std::function<bool(qint64 first, qint64 end)>;

struct Line
{
    double slope = 0, error = 0; ///< bytes a call
};

double residentBytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    return statm.readAll().split(' ').value(1).toDouble() * static_cast<double>(sysconf(_SC_PAGESIZE));
}

qsizetype entries(const char *folder)
{
    return QDir(QLatin1String(folder)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System).size();
}

/// Least squares, and the standard error of the slope.
Line fitted(const QList<QPointF> &points)
{
    double x = 0, y = 0, xx = 0, xy = 0, rest = 0;
    const auto count = static_cast<double>(points.size());
    for (const QPointF &point : points) {
        x += point.x() / count;
        y += point.y() / count;
    }
    for (const QPointF &point : points) {
        xx += (point.x() - x) * (point.x() - x);
        xy += (point.x() - x) * (point.y() - y);
    }
    Line line;
    line.slope = xy / xx;
    for (const QPointF &point : points)
        rest += std::pow(point.y() - y - line.slope * (point.x() - x), 2);
    line.error = std::sqrt(rest / (count - 2) / xx);
    return line;
}

bool runSteadily(const char *name, qint64 count, const Calls &calls)
{
    const auto start = std::chrono::steady_clock::now();
    QList<QPointF> memory;
    qsizetype descriptors = 0, threads = 0;
    for (qint64 sample = 0; sample < SAMPLES; ++sample) {
        const qint64 end = count * (sample + 1) / SAMPLES;
        if (!calls(count * sample / SAMPLES, end)) {
            std::printf("| %s | a call failed |\n", name);
            return false;
        }
        if (static_cast<double>(sample) < WARM_UP * SAMPLES) {
            descriptors = entries("/proc/self/fd");
            threads = entries("/proc/self/task");
        } else {
            memory.append({static_cast<double>(end), residentBytes()});
        }
    }
    const Line line = fitted(memory);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const double growth = line.slope * static_cast<double>(count) / (1 << 20);
    const qsizetype moreDescriptors = entries("/proc/self/fd") - descriptors;
    const qsizetype moreThreads = entries("/proc/self/task") - threads;
    std::printf("| %s | %lld | %.0f | %.0f | %+.3f ± %.3f | %+.2f | %+d | %+d |\n", name, static_cast<long long>(count),
                seconds, memory.constLast().y() / (1 << 20), line.slope, line.error, growth, int(moreDescriptors),
                int(moreThreads));
    std::fflush(stdout);
    return (growth < MOST_GROWTH || line.slope < 3 * line.error) && moreDescriptors <= 0 && moreThreads <= 0;
}

/// Each call is one of `once`.
Calls each(const std::function<bool()> &once)
{
    return [once](qint64 first, qint64 end) {
        for (; first < end; ++first) {
            if (!once())
                return false;
        }
        return true;
    };
}

/// Up to `LIST_SIZE` calls are one batch, which `predict` is given the size of.
Calls inBatches(const std::function<bool(int count)> &predict)
{
    return [predict](qint64 first, qint64 end) {
        for (; first < end; first += LIST_SIZE) {
            if (!predict(static_cast<int>(std::min<qint64>(LIST_SIZE, end - first))))
                return false;
        }
        return true;
    };
}

bool runPredictions(const QDir &models, double share)
{
    zav::MsMsFragmentationPredictomatic predictor;
    if (!load(models, &predictor))
        return false;
    Random random(1);
    const bool areBatchesSteady =
        runSteadily("fragments, batches of 10,000", qint64(1e7 * share), inBatches([&](int count) {
                        QStringList list;
                        for (; count > 0; --count)
                            list.append(peptide(&random));
                        QList<QList<zav::FragmentPeak>> spectra;
                        return !predictor.predictFragments(list, 2, &spectra).hasError();
                    }));
    return runSteadily("spectra, one a call", qint64(1e6 * share), each([&] {
                           QList<QPointF> spectrum;
                           return !predictor.predictMsMsFragmentation(peptide(&random), 2, &spectrum).hasError();
                       })) &&
           areBatchesSteady;
}

bool runPeptidoforms(const QDir &models, double share)
{
    zav::PeptidoformSpectrumPredictor predictor;
    zav::RetentionTimePredictor retentionTimes;
    if (!load(models, &predictor) || !load(models, &retentionTimes))
        return false;
    Random random(4);
    const auto predictSpectra = [&](int count) {
        QList<zav::PeptidoformPrecursor> list;
        for (; count > 0; --count)
            list.append({peptidoformOf(peptide(&random)), 1 + count % 5, 27.0});
        QList<QList<zav::FragmentPeak>> spectra;
        return !predictor.predict(list, &spectra).hasError();
    };
    const auto predictTimes = [&](int count) {
        QList<zav::Peptidoform> list;
        for (; count > 0; --count)
            list.append(peptidoformOf(peptide(&random)));
        QList<double> times;
        return !retentionTimes.predict(list, &times).hasError();
    };
    bool isSteady =
        runSteadily("spectra of peptidoforms, batches of 10,000", qint64(1e6 * share), inBatches(predictSpectra));
    isSteady &= runSteadily("retention times, batches of 10,000", qint64(1e7 * share), inBatches(predictTimes));
    isSteady &= runSteadily("spectra of peptidoforms, one a call", qint64(1e5 * share),
                            each([&] { return predictSpectra(1); }));
    isSteady &= runSteadily("retention times, one a call", qint64(1e5 * share), each([&] { return predictTimes(1); }));
    return isSteady;
}

bool runChromatograms(const QDir &models, double share)
{
    zav::XicBaselineLimitsDetector detector;
    zav::XicPeakSplitter splitter;
    if (detector.init(limitsOptions(models)).hasError() || splitter.init(splitOptions(models)).hasError())
        return false;
    Random random(2);
    const bool areLimits =
        runSteadily("limits by the network", qint64(1e6 * share),
                    each([&] { return !detector.integrateXIC(trace(&random), -1.0, 0).hasError(); }));
    const bool areWalks = runSteadily("limits by the walk", qint64(1e6 * share),
                                      each([&] { return !detector.integrateXIC(trace(&random)).hasError(); }));
    const bool areSplits =
        runSteadily("splits", qint64(1e6 * share), each([&] { return !splitter.splitXIC(trace(&random)).hasError(); }));
    return areLimits && areWalks && areSplits;
}

bool runLives(const QDir &models, double share)
{
    const auto count = qint64(1e4 * share);
    bool isSteady = runSteadily("init of the five fragmentation networks", count, each([&] {
                                    zav::MsMsFragmentationPredictomatic predictor;
                                    return load(models, &predictor);
                                }));
    isSteady &= runSteadily("init of the limits detector", count, each([&] {
                                zav::XicBaselineLimitsDetector detector;
                                return !detector.init(limitsOptions(models)).hasError();
                            }));
    isSteady &= runSteadily("init of the splitter", count, each([&] {
                                zav::XicPeakSplitter splitter;
                                return !splitter.init(splitOptions(models)).hasError();
                            }));
    isSteady &= runSteadily("init of the predictor of peptidoforms", count, each([&] {
                                zav::PeptidoformSpectrumPredictor predictor;
                                return load(models, &predictor);
                            }));
    isSteady &= runSteadily("init of the predictor of retention times", count, each([&] {
                                zav::RetentionTimePredictor predictor;
                                return load(models, &predictor);
                            }));
    return isSteady;
}

constexpr struct Part
{
    const char *name;
    bool (*run)(const QDir &models, double share);
} PARTS[] = {{"fragments", runPredictions},
             {"peptidoforms", runPeptidoforms},
             {"chromatograms", runChromatograms},
             {"lives", runLives}};

} // namespace

int main(int argc, char *argv[])
{
    const double share = argc >= 3 ? std::atof(argv[2]) : 0;
    const char *const only = argc == 4 ? argv[3] : nullptr;
    const auto isChosen = [only](const Part &part) { return !only || qstrcmp(part.name, only) == 0; };
    const bool isPart = std::any_of(std::begin(PARTS), std::end(PARTS), isChosen);
    if (!(share >= 0.01 && share <= 1) || argc > 4 || !isPart) {
        std::fputs("usage: steady_load MODELS SHARE [fragments|peptidoforms|chromatograms|lives]    (0.01 to 1)\n",
                   stderr);
        return 2;
    }
    const QDir models(QFile::decodeName(argv[1]));
    std::puts("| call | calls | s | MiB at the end | bytes a call | MiB over all calls | descriptors | threads |");
    std::puts("| --- | --- | --- | --- | --- | --- | --- | --- |");
    bool isSteady = true;
    for (const Part &part : PARTS) {
        if (isChosen(part))
            isSteady &= part.run(models, share);
    }
    return isSteady ? 0 : 1;
}
