// SPDX-License-Identifier: Apache-2.0
//
// Door: the MS/MS spectra of an mzML file.
// Promises: peaks are finite, above 0 and ascend, or a message says why not; plain and gzipped content read the same; a
// spectrum reads the same again.
#include "SpectrumSupport.h"

namespace zav::fuzz {

void tryInput(const QByteArray &input)
{
    readBothWays("input.mzML", input, readSpectra);
    choose(fileWith("input.mzML", input), placeWithin(input));
}

} // namespace zav::fuzz
