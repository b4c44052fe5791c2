// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FragmentLadder.h"

#include <zav/FragmentPeak.h>
#include <zav/Result.h>
#include <zav/TheoreticalIsotopePoint2dListGenerator.h>

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>

#include <vector>

namespace zav {

/// What no isotope peak of a fragment exceeds, relative to the monoisotopic one: a quick upper bound for masses of up
/// to 6 kDa.
double highestIsotopeAbundance(double neutralMass);

/// The isotope peaks of a fragment without the monoisotopic one, whose m/z and intensity are `monoisotopic`. An error
/// of the generator is passed on as it stands.
Result<QList<QPointF>> heavyIsotopePeaks(const TheoreticalIsotopePoint2dListGenerator &generator,
                                         const QPointF &monoisotopic, int charge);

/// Makes the spectrum of a peptide of the intensities that a network predicts for it, within the limits of spectra.
///
/// What lies outside the limits is left out before it costs anything: most fragments are too weak to be seen, and so
/// are their isotopes. Keeps its buffers between calls, because a library has a great many peptides.
class SpectrumAssembler
{
public:
    /// For peptides of one precursor charge; `fixedMass` in Da weighs on every cysteine.
    SpectrumAssembler(int precursorCharge, double fixedMass, IsotopePeaks isotopePeaks);

    /// The intensities that `assemble` reads for one peptide.
    int slotCount() const { return fragmentLadder::slotCount(ladder); }

    /// Replaces the spectrum. False when the mass of a fragment is not finite or above 1e6 Da: there is none then.
    bool assemble(const QString &peptide, const float *intensities);

    /// The spectrum as (m/z, intensity), sorted by ascending m/z. Peaks of equal m/z stand in the order of the ladder,
    /// those of one fragment by isotope.
    QList<QPointF> points() const;

    /// The same peaks in the same order, with the fragments that they belong to.
    QList<FragmentPeak> namedPeaks() const;

private:
    /// A peak on its way into the spectrum: small, because it is sorted.
    struct Peak
    {
        double mz;
        double intensity;
        int series;
        qint16 ionNumber;
        qint16 isotope;
    };

    void weighResidues(const QString &peptide);
    bool collectSeries(int index, const float *intensities);
    bool collectIsotopes(const Peak &monoisotopic, int charge);

    QList<fragmentLadder::IonSeries> ladder;
    double cysteineFixedMass; ///< Da
    IsotopePeaks isotopes;
    TheoreticalIsotopePoint2dListGenerator isotopeGenerator;
    std::vector<fragmentLadder::Residue> fromNTerminus, fromCTerminus;
    std::vector<Peak> peaks;
};

} // namespace zav
