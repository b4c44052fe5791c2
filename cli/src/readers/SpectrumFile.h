// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ByteStream.h"
#include "Spectrum.h"

#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>

#include <memory>

namespace zav {

/// What a file calls one of its spectra.
struct SpectrumIdentity
{
    QString name;        ///< native id (mzML) or title (MGF); may be empty
    int scanNumber = -1; ///< -1 where the file has none
};

/// What became of one spectrum of a file that could be read.
struct SpectrumOutcome
{
    ObservedSpectrum spectrum; ///< empty where there is a problem
    Error problem;             ///< why it cannot be used, which says nothing of the other spectra
};

/// The spectra of one open file, in the file's order, read one at a time: memory does not grow with the peaks of the
/// file. One thread at a time per object.
///
/// `index` counts from 0 and is below `spectrumCount()`. A problem of one spectrum leaves the object usable for others.
class SpectrumFile
{
public:
    virtual ~SpectrumFile() = default;

    virtual int spectrumCount() const = 0;

    /// Known since the file was opened: cheap.
    virtual SpectrumIdentity identity(int index) const = 0;

    /// 1 for a survey spectrum, 2 for MS/MS and so on; 0 where the file does not say. Reads the spectrum's header.
    virtual Result<int> msLevel(int index) = 0;

    /// The error is one of the file, such as a disk that fails.
    virtual Result<SpectrumOutcome> spectrum(int index) = 0;
};

/// How many of a file's spectra are going to be read: with `Many`, gzipped content is copied, so that each is found
/// quickly.
enum class SpectraToRead { One, Many };

/// Opens a file by its ending, as `readObservedSpectrum` describes.
Result<std::unique_ptr<SpectrumFile>> openSpectrumFile(const QString &path, SpectraToRead wanted = SpectraToRead::One);

/// The content of such a file.
Result<std::unique_ptr<ByteStream>> openSpectrumBytes(const QString &path, SpectraToRead wanted);

/// True for an m/z above 0 and an intensity of 0 or more, both finite.
bool isPeak(const QPointF &peak);

/// Drops the peaks of intensity 0 and sorts the others by m/z.
void tidyPeaks(QList<QPointF> *peaks);

} // namespace zav
