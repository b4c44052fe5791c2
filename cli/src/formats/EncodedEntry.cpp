// SPDX-License-Identifier: Apache-2.0
#include "EncodedEntry.h"

#include "PeptideMasses.h"
#include "PeptideNotation.h"

namespace zav {

EncodedEntry encodedPeptide(const LibraryEntry &entry, int massDecimals)
{
    EncodedEntry encoded;
    encoded.peptide = entry.peptide.toUtf8();
    encoded.modifiedPeptide = encoded.peptide;
    if (isCysteineModified(entry.cysteineMass)) {
        encoded.cysteineMass = exactCysteineMass(entry.cysteineMass);
        encoded.modifiedPeptide = taggedPeptide(entry, '[' + signedMass(encoded.cysteineMass, massDecimals) + ']');
    }
    encoded.charge = entry.charge;
    encoded.precursorMz = entry.precursorMz;
    encoded.peakCount = static_cast<int>(entry.peaks.size());
    for (const QString &accession : entry.proteins)
        encoded.proteins.append(accession.toUtf8());
    encoded.isDecoy = entry.isDecoy;
    return encoded;
}

} // namespace zav
