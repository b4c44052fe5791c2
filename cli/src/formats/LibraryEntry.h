// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/FragmentPeak.h>

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zav {

/// One predicted spectrum as spectral libraries hold it: a precursor, where it comes from, its peaks.
///
/// `proteins`, `genes` and `proteinNames` go together: each of the last two is empty or as long as the first, with an
/// empty text where the protein has none. The accessions of a decoy are written as they stand here.
struct LibraryEntry
{
    QString peptide;             ///< upper-case one-letter code, N-terminus first
    int charge = 0;              ///< of the precursor, from 1
    double precursorMz = 0.0;    ///< m/z, monoisotopic
    double cysteineMass = 0.0;   ///< Da added to every cysteine, 0 for none
    QStringList proteins;        ///< accessions
    QStringList genes;           ///< gene symbols
    QStringList proteinNames;    ///< entry names, `ALBU_HUMAN`
    bool isDecoy = false;        ///< not a peptide of the sample
    QList<FragmentPeak> peaks{}; ///< ascending m/z; the ion type of an unknown ion is null
};

} // namespace zav
