// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Spectrum.h"

#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QString>

namespace zav {

/// How far an observed peak may lie from the m/z of an ion, to either side; the limit itself counts.
struct MassTolerance
{
    enum Unit { Ppm, Dalton };

    double value = 20;
    Unit unit = Ppm;

    /// The tolerance in m/z units at `mz`.
    double at(double mz) const { return unit == Ppm ? mz * value * 1e-6 : value; }
};

/// Reads `20ppm`, `0.02Da` or `0.02 Da`; the unit in any case, ppm where it is missing. `InvalidInput` for anything
/// else and for a value that is not positive and finite.
Result<MassTolerance> parseMassTolerance(const QString &text);

/// A predicted peak and the observed one that it explains, as indices into the two lists that were compared.
struct PeakMatch
{
    int predicted = 0;
    int observed = 0;
};

/// How well a predicted spectrum agrees with a measured one.
struct SpectrumComparison
{
    double cosine = 0;             ///< over the b and y ions, 0 to 1; 0 when either side has none
    double spectralAngle = 0;      ///< 1 - 2 acos(cosine) / pi, 0 to 1
    int explainedPeaks = 0;        ///< observed peaks that a predicted peak matches
    int observedPeaks = 0;         ///< all observed peaks
    double explainedIntensity = 0; ///< share of the observed intensity in the explained peaks, 0 to 1
    QList<PeakMatch> matches;      ///< at most one for each predicted and for each observed peak, ascending `predicted`
};

/// Matches the predicted peaks (losses and isotopes too) with the observed ones and compares their intensities.
///
/// Cosine and angle run over every b and y ion of the peptide without losses, fragment charges 1 to the precursor's
/// but at most 3: an ion that is not predicted, or not seen, counts with intensity 0, so that a missed peak lowers the
/// agreement. Each ion takes the most intense observed peak within the tolerance.
///
/// A predicted peak matches the most intense observed peak within the tolerance; where several predicted peaks claim
/// one observed peak, it goes to the most intense of them.
SpectrumComparison compareSpectra(const PredictedSpectrum &predicted, const ObservedSpectrum &observed,
                                  const MassTolerance &tolerance = {});

} // namespace zav
