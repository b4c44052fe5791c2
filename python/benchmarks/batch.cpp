// SPDX-License-Identifier: Apache-2.0
//
// The C++ batch prediction that fragments.py compares the Python package with. It is loaded into the same process and
// uses the libraries that the package has loaded.
#include <zav/MsMsFragmentationPredictomatic.h>

#include <ctime>
#include <memory>

namespace {

std::unique_ptr<zav::MsMsFragmentationPredictomatic> predictor;

} // namespace

/// Loads the networks of a folder; 0 on success.
extern "C" int batchLoad(const char *folder)
{
    const QString path = QString::fromUtf8(folder) + QStringLiteral("/msms_charge%1.pb");
    predictor = std::make_unique<zav::MsMsFragmentationPredictomatic>();
    return predictor->init(path.arg(1), path.arg(2), path.arg(3), path.arg(4), path.arg(5)).hasError() ? 1 : 0;
}

/// Predicts peptides, which newlines part, in one call. Returns the seconds of
/// processor time that it took, and the number of peaks; -1 after an error.
extern "C" double batchPredict(const char *lines, int charge, long long *peakCount)
{
    const QStringList peptides = QString::fromLatin1(lines).split(QLatin1Char('\n'));
    QList<QList<zav::FragmentPeak>> spectra;
    const std::clock_t start = std::clock();
    if (predictor->predictFragments(peptides, charge, &spectra).hasError())
        return -1.0;
    const double seconds = double(std::clock() - start) / CLOCKS_PER_SEC;
    *peakCount = 0;
    for (const QList<zav::FragmentPeak> &peaks : spectra)
        *peakCount += peaks.size();
    return seconds;
}
