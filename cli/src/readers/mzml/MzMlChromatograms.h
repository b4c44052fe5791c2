// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ByteStream.h"
#include "ChromatogramSource.h"

namespace zav {

/// The chromatograms stored in an mzML file, as `openChromatograms` describes them. ProteoWizard's decoders stay behind
/// this function, their exceptions too; each chromatogram is given to them alone, so that a damaged one spoils no
/// other.
///
/// Fails for a file that holds none; if it holds spectra, the message says that chromatograms can be extracted.
Result<std::unique_ptr<ChromatogramSource>> openMzMlChromatograms(std::unique_ptr<ByteStream> bytes);

/// Chromatograms that are extracted from the MS1 spectra of an mzML file, as `openChromatograms` describes them. A
/// damaged MS1 spectrum is an error of the file: every trace would have a hole there. `keepsTraces`: for `seek`.
Result<std::unique_ptr<ChromatogramSource>>
openMzMlExtraction(std::unique_ptr<ByteStream> bytes, const QList<ExtractionTarget> &targets, bool keepsTraces);

} // namespace zav
