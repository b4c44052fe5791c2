// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SpectrumFile.h"

namespace zav {

/// Opens a Mascot generic format file (Matrix Science, "Mascot database search: Data file format").
///
/// It is read once, and each spectrum's header and place are kept; peaks are read when asked for. Blocks without
/// MSLEVEL are MS/MS spectra. SCANS gives the scan number, of a range its first.
Result<std::unique_ptr<SpectrumFile>> openMgfFile(const QString &path, SpectraToRead wanted);

/// Reads a text table that is one MS/MS spectrum: m/z and intensity are its first two columns, separated by white
/// space; `.` is the decimal point. The first line may be a heading. Blank lines and comments (`#`) are skipped. Fails
/// for a table without a peak.
Result<std::unique_ptr<SpectrumFile>> readPeakTable(const QString &path);

} // namespace zav
