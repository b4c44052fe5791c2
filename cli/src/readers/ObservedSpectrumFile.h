// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Spectrum.h"

#include <zav/Result.h>

#include <QtCore/QString>

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

} // namespace zav
