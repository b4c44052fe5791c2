// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Spectrum.h"
#include "SpectrumFile.h"

#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

namespace zav {

/// Reads one spectrum from an mzML, MGF or TSV file, told apart by the file's ending: .mzML (also .mzML.gz), .mgf,
/// .tsv or .txt (m/z and intensity, separated by white space).
///
/// `scan` names the spectrum: its native id or title; else its scan number; else, in a file without scan numbers, its
/// index, counted from 0. `index=N` is always the index. With an empty `scan` the file has to hold exactly one MS2
/// spectrum.
///
/// The message of an error names the file. `InvalidInput` for an unknown ending and for a `scan` that is missing or
/// names no MS/MS spectrum; `Failure` for a file that cannot be read as what its ending says.
Result<ObservedSpectrum> readObservedSpectrum(const QString &path, const QString &scan);

/// Many spectra of one file, each by its scan as `readObservedSpectrum` takes it. The file is looked through once for
/// all of them; their peaks are read one at a time. Of gzipped content, and of a pipe, a copy is kept with the object.
class ObservedSpectra
{
public:
    /// The error is that of a file that cannot be read. Scans that name no spectrum are for `problem`.
    static Result<std::unique_ptr<ObservedSpectra>> open(const QString &path, const QStringList &scans)
    {
        return open(path, scans, SpectraToRead::Many);
    }

    ~ObservedSpectra();

    ObservedSpectra(const ObservedSpectra &) = delete;
    ObservedSpectra &operator=(const ObservedSpectra &) = delete;

    /// Why the scan of a number, counted from 0, names no spectrum that could be read. No error where it names one.
    Error problem(qsizetype number) const { return m_places[number].error(); }

    /// The spectrum of the scan of a number, or why there is none. The error is one of the file, such as a disk that
    /// fails.
    Result<SpectrumOutcome> read(qsizetype number) const;

private:
    friend Result<ObservedSpectrum> readObservedSpectrum(const QString &path, const QString &scan);

    static Result<std::unique_ptr<ObservedSpectra>> open(const QString &path, const QStringList &scans,
                                                         SpectraToRead wanted);
    explicit ObservedSpectra(std::unique_ptr<SpectrumFile> file);

    std::unique_ptr<SpectrumFile> m_file;
    QList<Result<int>> m_places; ///< in the file
};

} // namespace zav
