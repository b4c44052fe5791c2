// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ByteStream.h"
#include "ChromatogramSource.h"

namespace zav {

/// Chromatograms that are extracted from the MS1 spectra of an mzML file, as `openChromatograms` describes them. A
/// damaged MS1 spectrum is an error of the file: every trace would have a hole there.
///
/// A build without ProteoWizard (libpwizlite) returns `Failure` with a message that says so.
Result<std::unique_ptr<ChromatogramSource>> openMzMlExtraction(std::unique_ptr<ByteStream> bytes,
                                                               const QList<ExtractionTarget> &targets);

} // namespace zav
