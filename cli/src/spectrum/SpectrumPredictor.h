// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ModelFolder.h"
#include "Spectrum.h"

#include <zav/MsMsFragmentationPredictomatic.h>
#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QSet>

#include <memory>

namespace zav {

/// Predicts spectra with the networks of one folder, loading only those that the work needs.
///
/// The network of a charge that is missing or broken fails the precursors of that charge only.
class SpectrumPredictor
{
public:
    /// `cysteineMass` in Da is added to every cysteine.
    SpectrumPredictor(double cysteineMass, IsotopePeaks isotopes);
    ~SpectrumPredictor();

    SpectrumPredictor(const SpectrumPredictor &) = delete;
    SpectrumPredictor &operator=(const SpectrumPredictor &) = delete;

    /// Loads the networks for `charges` (1 to 5). Fails when none of them could be loaded, with the reason of the
    /// lowest charge; otherwise the precursors of the others fail in `predict`.
    Error load(const ModelFolder &folder, const QSet<int> &charges);

    /// One outcome per precursor, in order. The precursors have passed `checkPrecursor`. Without isotopes the network
    /// runs once per charge and block of peptides; with them once per precursor, whose spectrum then does not depend on
    /// the others, not even in its last bits.
    QList<Result<PredictedSpectrum>> predict(const QList<Precursor> &precursors);

private:
    QList<Result<PredictedSpectrum>> predictCharge(const QList<Precursor> &precursors);
    QList<Result<PredictedSpectrum>> predictRun(const QList<Precursor> &precursors);
    PredictedSpectrum spectrumOf(const Precursor &precursor, const QList<FragmentPeak> &peaks) const;

    double m_cysteineMass = 0; ///< Da
    IsotopePeaks m_isotopes;
    std::unique_ptr<MsMsFragmentationPredictomatic> m_predictor;
    QMap<int, Error> m_unavailable; ///< why the network of a charge cannot be used
};

} // namespace zav
