// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SpectrumFile.h"

namespace zav {

/// A text table that is one MS/MS spectrum: m/z and intensity are its first two columns, separated by white space.
///
/// The first line may be a heading. Empty lines and lines that begin with '#' are skipped.
class PeakTableFile : public SpectrumFile
{
public:
    /// Reads the whole table; a table without a peak is an error.
    static Result<std::unique_ptr<SpectrumFile>> open(const QString &path);

    explicit PeakTableFile(ObservedSpectrum spectrum) : m_spectrum(std::move(spectrum)) {}

    int spectrumCount() const override { return 1; }
    SpectrumIdentity identity(int) const override { return {m_spectrum.title, -1}; }
    Result<int> msLevel(int) override { return 2; }
    Result<ObservedSpectrum> spectrum(int) override { return m_spectrum; }

private:
    ObservedSpectrum m_spectrum;
};

} // namespace zav
