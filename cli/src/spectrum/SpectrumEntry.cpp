// SPDX-License-Identifier: Apache-2.0
#include "SpectrumEntry.h"

namespace zav {

LibraryEntry libraryEntry(const PredictedSpectrum &spectrum)
{
    LibraryEntry entry;
    entry.peptide = spectrum.precursor.peptide;
    entry.charge = spectrum.precursor.charge;
    entry.precursorMz = spectrum.precursorMz;
    entry.cysteineMass = spectrum.cysteineMass;
    entry.peaks.reserve(spectrum.peaks.size());
    for (const AnnotatedPeak &peak : spectrum.peaks)
        entry.peaks.append(libraryPeak(peak));
    return entry;
}

} // namespace zav
