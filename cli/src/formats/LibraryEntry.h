// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/FragmentPeak.h>
#include <zav/Peptidoform.h>

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <cmath>
#include <limits>

namespace zav {

/// A protein of a library's peptide, in UTF-8; what is not known is empty.
struct LibraryProtein
{
    QByteArray accession;
    QByteArray gene; ///< gene symbol
    QByteArray name; ///< entry name, `ALBU_HUMAN`
};

/// What the retention times of a library are.
enum class TimeScale {
    Irt,    ///< iRT of Escher et al. 2012: no unit, and the first peptides have negative ones
    Minutes ///< of the gradient that the prediction was calibrated for
};

/// One predicted spectrum as spectral libraries hold it: a precursor, where it comes from, its peaks.
///
/// The names of a decoy's proteins are written as they stand here.
struct LibraryEntry
{
    Peptidoform peptidoform;

    /// Whether it has other modifications than the fixed ones of the library. Formats name such an entry after the
    /// peptidoform, and any other one after the peptide alone.
    bool isVariant = false;

    int charge = 0;                                                  ///< of the precursor, from 1
    double precursorMz = 0.0;                                        ///< m/z, monoisotopic
    double retentionTime = std::numeric_limits<double>::quiet_NaN(); ///< NaN: not predicted
    TimeScale timeScale = TimeScale::Irt;
    QList<LibraryProtein> proteins;
    bool isDecoy = false;        ///< not a peptide of the sample
    QList<FragmentPeak> peaks{}; ///< ascending m/z; the ion type of an unknown ion is null

    bool hasRetentionTime() const { return std::isfinite(retentionTime); }

    /// The retention time for formats that have seconds and no iRT: an iRT counts as minutes there.
    double secondsOfTime() const { return 60 * retentionTime; }
};

} // namespace zav
