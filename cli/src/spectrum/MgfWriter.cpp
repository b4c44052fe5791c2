// SPDX-License-Identifier: Apache-2.0
#include "MgfWriter.h"

#include "LibraryFormat.h"
#include "SpectrumEntry.h"

namespace zav {

QByteArray MgfWriter::spectrum(const PredictedSpectrum &spectrum, bool) const
{
    return mgfLibraryFormat().entry(libraryEntry(spectrum), 0);
}

} // namespace zav
