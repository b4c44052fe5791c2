// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "AnnotatedPeak.h"

#include <zav/FragmentPeak.h>

#include <QtCore/QChar>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zav {

/// One peak of a library spectrum and the ion it is.
struct LibraryPeak
{
    double mz = 0.0;        ///< m/z
    double intensity = 0.0; ///< relative: 1 is the base peak
    QChar ionType;          ///< 'y', 'b' or 'a', null for an unknown ion
    int ionNumber = 0;      ///< residues in the fragment: the n of y_n
    int charge = 0;         ///< of the fragment
    QString neutralLoss;    ///< "-H2O", "-NH3" or empty
    int isotope = 0;        ///< neutrons above the monoisotopic peak, 0 for that peak
};

/// The peak of a fragment that the predictor gives, which is monoisotopic.
inline LibraryPeak libraryPeak(const FragmentPeak &peak)
{
    return {peak.mz, peak.intensity, peak.ionType, peak.ionNumber, peak.charge, peak.neutralLoss, 0};
}

/// The peak of an annotated spectrum.
inline LibraryPeak libraryPeak(const AnnotatedPeak &peak)
{
    return {peak.mz, peak.intensity, peak.ionType, peak.ionNumber, peak.charge, peak.neutralLoss, peak.isotopeNumber};
}

/// One predicted spectrum as spectral libraries hold it: a precursor, where it comes from, its peaks.
///
/// `proteins`, `genes` and `proteinNames` go together: each of the last two is empty or as long as the first, with an
/// empty text where the protein has none. The accessions of a decoy are written as they stand here.
struct LibraryEntry
{
    QString peptide;            ///< upper-case one-letter code, N-terminus first
    int charge = 0;             ///< of the precursor, from 1
    double precursorMz = 0.0;   ///< m/z, monoisotopic
    double cysteineMass = 0.0;  ///< Da added to every cysteine, 0 for none
    QStringList proteins;       ///< accessions
    QStringList genes;          ///< gene symbols
    QStringList proteinNames;   ///< entry names, `ALBU_HUMAN`
    bool isDecoy = false;       ///< not a peptide of the sample
    QList<LibraryPeak> peaks{}; ///< ascending m/z
};

} // namespace zav
