// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PeptidoformIons.h"

#include <zav/FragmentPeak.h>
#include <zav/Peptidoform.h>
#include <zav/TheoreticalIsotopePoint2dListGenerator.h>

#include <QtCore/QList>

#include <array>
#include <cstddef>
#include <vector>

namespace zav {

/// Makes the spectra of a peptidoform of the intensities that the network predicts for it: leaves out what the
/// precursor cannot have, puts the rest on the m/z axis and scales it to a base peak of 1.
///
/// Keeps its buffers between calls, because a library has a great many peptidoforms.
class PeptidoformSpectrumAssembler
{
public:
    /// Weaker peaks, relative to the base peak, are more often absent from measured spectra than present.
    static constexpr double LOWEST_INTENSITY = 0.04;

    explicit PeptidoformSpectrumAssembler(IsotopePeaks isotopePeaks);

    /// Weighs the peptidoform whose spectra come next: 2 or more of the 20 standard residues.
    void take(const Peptidoform &peptidoform);

    /// The spectrum for a precursor charge, sorted by ascending m/z. `intensities` holds one row of
    /// `peptidoformIons::SERIES_COUNT` for each bond. Empty where no ion has an intensity above 0.
    QList<FragmentPeak> assemble(int precursorCharge, const float *intensities);

private:
    static constexpr std::size_t LOSS_COUNT = peptidoformIons::MODIFICATION_LOSS_COUNT;

    /// The residues from the N-terminus to a bond.
    struct Part
    {
        double mass = 0.0;                       ///< Da, of residues and modifications
        std::array<int, LOSS_COUNT> lossSites{}; ///< how many of them can lose something, by `ModificationLoss`
    };

    /// A peak on its way into the spectrum: small, because it is sorted.
    struct Peak
    {
        double mz;
        double intensity;
        qint16 series;
        qint16 ionNumber;
        qint16 isotope;
    };

    void add(const PlacedModification &placed, QChar residue);
    void chooseSeries(int precursorCharge);
    void collectBond(std::size_t bond, const float *intensities);
    void scaleToBasePeak();
    void addIsotopes();
    void addIsotopesOf(const Peak &monoisotopic);
    QList<FragmentPeak> namedPeaks() const;

    IsotopePeaks isotopes;
    TheoreticalIsotopePoint2dListGenerator isotopeGenerator;
    std::vector<Part> nTerminalParts; ///< one for each bond
    Part whole;
    std::vector<int> possibleSeries; ///< of the precursor at hand
    std::vector<Peak> peaks;
    double highest = 0.0; ///< intensity of `peaks`
};

} // namespace zav
