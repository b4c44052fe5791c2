// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SpectrumFile.h"

namespace zav {

/// Opens an mzML file, plain or gzipped. It is read once, to its end, without decoding any peaks; an index is not read,
/// so that a wrong or missing one does no harm. ProteoWizard's decoder stays behind this function, its exceptions too.
Result<std::unique_ptr<SpectrumFile>> openMzMlFile(const QString &path, SpectraToRead wanted);

} // namespace zav
