// SPDX-License-Identifier: Apache-2.0
#include "ObservedSpectrum.h"

#include "SpectrumChoice.h"
#include "SpectrumFile.h"

namespace zav {

namespace {

constexpr char SOURCE_FILE[] = "cli/src/readers/ObservedSpectrum";

template <typename T>
Error caughtAt(const Result<T> &result, const char *function, int line)
{
    Error error = result.error();
    return error.ecatch(function, SOURCE_FILE, line);
}

} // namespace

Result<ObservedSpectrum> readObservedSpectrum(const QString &path, const QString &scan)
{
    const Result<std::unique_ptr<SpectrumFile>> file = openSpectrumFile(path);
    if (file.hasError())
        return caughtAt(file, Q_FUNC_INFO, __LINE__);
    const Result<int> index = chooseSpectrum(file.value().get(), path, scan);
    if (index.hasError())
        return caughtAt(index, Q_FUNC_INFO, __LINE__);
    Result<ObservedSpectrum> spectrum = file.value()->spectrum(index.value());
    if (spectrum.hasError())
        return caughtAt(spectrum, Q_FUNC_INFO, __LINE__);
    return spectrum;
}

} // namespace zav
