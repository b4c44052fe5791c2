// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FragmentLadder.h"

#include <zav/FragmentPeak.h>

#include <QtCore/QList>
#include <QtCore/QString>

#include <optional>
#include <vector>

namespace zav {

/// Names the intensities that a network predicts: one annotated spectrum of monoisotopic peaks per peptide.
///
/// Keeps its buffers between calls, because a library has a great many peptides.
class FragmentAnnotator
{
public:
    /// For peptides of one precursor charge; `fixedMass` in Da weighs on every cysteine.
    FragmentAnnotator(int precursorCharge, double fixedMass);

    /// The intensities that `annotate` reads for one peptide.
    int slotCount() const { return fragmentLadder::slotCount(ladder); }

    /// The peaks within the limits of a spectrum, sorted by ascending m/z. Nothing when a fragment has no mass within 0
    /// (excluded) to 1e6 Da: the one-peptide prediction finds no isotope peaks for it either.
    std::optional<QList<FragmentPeak>> annotate(const QString &peptide, const float *intensities);

private:
    /// A peak on its way into the spectrum: small, because most of the work is sorting.
    struct Candidate
    {
        double mz;
        float intensity;
        int series;
        int ionNumber;
    };

    struct Residue
    {
        double mass;      ///< Da
        double fixedMass; ///< Da, 0 without modification
    };

    void weighResidues(const QString &peptide);
    bool collect(int seriesIndex, const float *intensities);
    QList<FragmentPeak> namedCandidates() const;

    QList<fragmentLadder::IonSeries> ladder;
    double cysteineFixedMass; ///< Da
    std::vector<Residue> fromNTerminus, fromCTerminus;
    std::vector<Candidate> candidates;
};

} // namespace zav
