// SPDX-License-Identifier: Apache-2.0
#include "MspWriter.h"

#include "LibraryFormat.h"
#include "SpectrumEntry.h"

namespace zav {

QByteArray MspWriter::spectrum(const PredictedSpectrum &spectrum, bool) const
{
    return mspLibraryFormat().entry(libraryEntry(spectrum), 0);
}

} // namespace zav
