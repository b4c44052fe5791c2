// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FuzzSupport.h"
#include "ObservedSpectrumFile.h"
#include "SpectrumFile.h"

#include <algorithm>
#include <cmath>

namespace zav::fuzz {

inline QByteArray bitsOf(const ObservedSpectrum &spectrum)
{
    return bits(spectrum.title, spectrum.precursorMz, spectrum.precursorCharge, spectrum.peaks);
}

inline void requirePeaks(const QList<QPointF> &peaks)
{
    require(std::all_of(peaks.begin(), peaks.end(), [](const QPointF &p) { return isPeak(p) && p.y() > 0; }),
            "peaks are finite and above 0");
    require(
        std::is_sorted(peaks.begin(), peaks.end(), [](const QPointF &a, const QPointF &b) { return a.x() < b.x(); }),
        "peaks ascend in m/z");
}

/// All spectra of a file, read once forth and once back.
inline Reading readSpectra(const QString &path)
{
    Reading reading;
    const Result<std::unique_ptr<SpectrumFile>> opened = openSpectrumFile(path);
    if (opened.hasError()) {
        require(!opened.error().message().isEmpty(), "a failure to open says why");
        return {{}, opened.error().message()};
    }
    SpectrumFile &file = *opened.value();
    const auto partOf = [&file](int index) {
        const SpectrumIdentity identity = file.identity(index);
        const Result<int> level = file.msLevel(index);
        const Result<SpectrumOutcome> outcome = file.spectrum(index);
        const Error problem = outcome.hasError() ? outcome.error() : outcome.value().problem;
        require(problem.hasError() == !problem.message().isEmpty(), "a broken spectrum says why");
        if (!problem.hasError())
            requirePeaks(outcome.value().spectrum.peaks);
        return bits(identity.name, identity.scanNumber, level.hasError() ? -1 : level.value(), level.error().message(),
                    problem.hasError() ? QByteArray() : bitsOf(outcome.value().spectrum), problem.message());
    };
    const int count = std::min(file.spectrumCount(), 1000);
    for (int i = 0; i < count; ++i)
        reading.parts.append(partOf(i));
    for (int i = count - 1; i >= 0; --i)
        require(partOf(i) == reading.parts[i], "a spectrum reads the same when it is read again");
    return reading;
}

/// One of the ways to name a spectrum.
inline void choose(const QString &path, qsizetype way)
{
    const QString ways[] = {QString(), QStringLiteral("1"), QStringLiteral("index=0"), QStringLiteral("scan=1")};
    const Result<ObservedSpectrum> chosen = readObservedSpectrum(path, ways[way % 4]);
    if (chosen.hasError())
        require(!chosen.error().message().isEmpty(), "a spectrum that cannot be chosen says why");
    else
        requirePeaks(chosen.value().peaks);
}

} // namespace zav::fuzz
