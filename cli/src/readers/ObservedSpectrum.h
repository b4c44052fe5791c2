// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>

namespace zav {

/// One measured MS/MS spectrum.
struct ObservedSpectrum
{
    QString title;           ///< what the file calls it: title or native id; the file's name where it has neither
    double precursorMz = 0;  ///< m/z of the selected ion, 0 where the file does not say
    int precursorCharge = 0; ///< 0 where the file does not say
    QList<QPointF> peaks;    ///< (m/z, intensity in the file's own unit), ascending m/z, intensities above 0
};

/// Reads one spectrum from an mzML, MGF or TSV file, told apart by the file's ending: .mzML (also .mzML.gz), .mgf,
/// .tsv or .txt (m/z and intensity, separated by white space).
///
/// `scan` names the spectrum: its native id or title; else its scan number; else, in a file without scan numbers, its
/// index, counted from 0. `index=N` is always the index. With an empty `scan` the file has to hold exactly one MS2
/// spectrum.
///
/// The message of an error names the file. `InvalidInput` for an unknown ending and for a `scan` that is missing or
/// names no MS/MS spectrum; `Failure` for a file that cannot be read as what its ending says, and for mzML in a build
/// without a reader for it.
Result<ObservedSpectrum> readObservedSpectrum(const QString &path, const QString &scan);

} // namespace zav
