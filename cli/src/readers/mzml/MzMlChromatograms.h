// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ByteStream.h"
#include "ChromatogramSource.h"

namespace zav {

/// The chromatograms stored in an mzML file, as `openChromatograms` describes them. ProteoWizard's decoders stay behind
/// this function, their exceptions too; each chromatogram is given to them alone, so that a damaged one spoils no
/// other.
///
/// Fails for a file that holds none, with a word on its spectra. A build without ProteoWizard (libpwizlite) returns
/// `Failure` with a message that says so.
Result<std::unique_ptr<ChromatogramSource>> openMzMlChromatograms(std::unique_ptr<ByteStream> bytes);

} // namespace zav
