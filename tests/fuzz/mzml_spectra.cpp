// SPDX-License-Identifier: Apache-2.0
//
// Door: the MS/MS spectra of an mzML file.
// Promises: peaks are finite, above 0 and ascend, or a message says why not; plain and gzipped content read the same; a
// spectrum reads the same again.
#include "SpectrumSupport.h"

namespace zav::fuzz {

void tryInput(const QByteArray &input)
{
    // Not gzipped each time: ProteoWizard loses a buffer with each such file that it opens.
    const qsizetype place = placeWithin(input);
    if (place % 16 == 0)
        readBothWays("input.mzML", input, readSpectra);
    else
        readSpectra(fileWith("input.mzML", input));
    choose(fileWith("input.mzML", input), place);
}

} // namespace zav::fuzz
