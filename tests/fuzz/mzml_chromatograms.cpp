// SPDX-License-Identifier: Apache-2.0
//
// Door: the chromatograms stored in an mzML file.
// Promises: finite points or a message; plain and gzipped content read the same; traces are found again; a file that is
// cut gives the traces before the cut.
#include "ChromatogramSupport.h"

namespace zav::fuzz {

void tryInput(const QByteArray &input)
{
    requireReading("input.mzML", input);
}

} // namespace zav::fuzz
