// SPDX-License-Identifier: Apache-2.0
#include "MspWriter.h"

#include "MspLibraryFormat.h"
#include "SpectrumEntry.h"

namespace zav {

QByteArray MspWriter::spectrum(const PredictedSpectrum &spectrum, bool) const
{
    return MspLibraryFormat().entry(libraryEntry(spectrum), 0);
}

} // namespace zav
