// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SpectrumFile.h"

namespace zav {

/// Opens an mzML file, plain or gzipped, with or without an index. ProteoWizard's reader stays behind this function,
/// its exceptions too.
Result<std::unique_ptr<SpectrumFile>> openMzMlFile(const QString &path);

} // namespace zav
