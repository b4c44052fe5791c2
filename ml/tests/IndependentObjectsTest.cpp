// SPDX-License-Identifier: Apache-2.0
#include "FragmentationTest.h"

#include <algorithm>
#include <future>
#include <utility>
#include <vector>

namespace zav {
namespace {

// Plain numbers, for points that Qt compares count as equal where they are merely near.
using Peaks = std::vector<std::pair<double, double>>;

/// What one predictor has given, from its construction on.
struct Work
{
    bool succeeded = false;
    std::vector<Peaks> spectra;
    std::vector<Peaks> fragments;
};

Peaks peaksOf(const QList<QPointF> &spectrum)
{
    Peaks peaks;
    for (const QPointF &point : spectrum)
        peaks.emplace_back(point.x(), point.y());
    return peaks;
}

Peaks peaksOf(const QList<FragmentPeak> &fragments)
{
    Peaks peaks;
    for (const FragmentPeak &peak : fragments)
        peaks.emplace_back(peak.mz, peak.intensity);
    return peaks;
}

bool predict(MsMsFragmentationPredictomatic *predictor, const QStringList &peptides, int charge, Work *work)
{
    for (const QString &peptide : peptides) {
        QList<QPointF> spectrum;
        if (predictor->predictMsMsFragmentation(peptide, charge, &spectrum).hasError())
            return false;
        work->spectra.push_back(peaksOf(spectrum));
    }
    QList<QList<FragmentPeak>> fragments;
    if (predictor->predictFragments(peptides, charge, &fragments).hasError())
        return false;
    for (const QList<FragmentPeak> &list : fragments)
        work->fragments.push_back(peaksOf(list));
    return true;
}

/// A predictor's whole life, with a cysteine mass and peptides of its own.
Work live(const NetworkFiles *files, int number)
{
    Work work;
    MsMsFragmentationPredictomatic predictor;
    predictor.setCysteineFixedMass(10.0 * number);
    if (files->init(&predictor).hasError())
        return work;
    std::mt19937 generator(number);
    work.succeeded = true;
    for (const int charge : {1, 2, 3}) {
        QStringList peptides;
        for (int i = 0; i < 5; ++i)
            peptides.append(QStringLiteral("AC") + randomPeptide(8 + i, &generator));
        work.succeeded = work.succeeded && predict(&predictor, peptides, charge, &work);
    }
    return work;
}

TEST(IndependentObjects, PredictorsInTwoThreadsGiveWhatTheyGiveOneAfterTheOther)
{
    const NetworkFiles files;
    for (const int charge : {1, 2, 3})
        files.replace(charge, LinearNetwork::random(charge, 7).graph()); // of exact sums, whatever their order

    // The threads come first: they also race for the runtime, which the first predictor of a process opens.
    std::vector<std::future<Work>> running;
    for (const int number : {1, 2})
        running.push_back(std::async(std::launch::async, live, &files, number));
    std::vector<Work> parallel;
    for (std::future<Work> &work : running)
        parallel.push_back(work.get());

    for (const int number : {1, 2}) {
        const Work &work = parallel[number - 1];
        const Work serial = live(&files, number);
        ASSERT_TRUE(work.succeeded && serial.succeeded) << number;
        ASSERT_EQ(15U, work.spectra.size());
        EXPECT_EQ(serial.spectra, work.spectra) << number;
        EXPECT_EQ(serial.fragments, work.fragments) << number;
        EXPECT_TRUE(
            std::none_of(work.spectra.begin(), work.spectra.end(), [](const Peaks &peaks) { return peaks.empty(); }));
    }
    EXPECT_NE(parallel[0].spectra, parallel[1].spectra);
}

} // namespace
} // namespace zav
