// SPDX-License-Identifier: Apache-2.0
#include "MgfWriter.h"

#include "MgfLibraryFormat.h"
#include "SpectrumEntry.h"

namespace zav {

QByteArray MgfWriter::spectrum(const PredictedSpectrum &spectrum, bool) const
{
    return MgfLibraryFormat().entry(libraryEntry(spectrum), 0);
}

} // namespace zav
