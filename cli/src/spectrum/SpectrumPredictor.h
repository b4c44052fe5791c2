// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ModelFolder.h"
#include "Spectrum.h"

#include <zav/MsMsFragmentationPredictomatic.h>
#include <zav/PeptidoformSpectrumPredictor.h>
#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

namespace zav {

/// Predicts spectra with the networks of one folder, loading only those that the work needs: the network of its charge
/// for a precursor without modifications and energy, the network of peptidoforms for the others.
///
/// A network that is missing or broken fails the precursors that need it only.
class SpectrumPredictor
{
public:
    /// `cysteineMass` in Da is added to every cysteine of a peptide in one-letter code.
    SpectrumPredictor(double cysteineMass, IsotopePeaks isotopes);
    ~SpectrumPredictor();

    SpectrumPredictor(const SpectrumPredictor &) = delete;
    SpectrumPredictor &operator=(const SpectrumPredictor &) = delete;

    /// Loads the networks that the precursors need, one precursor at least. Fails when none of them could be loaded,
    /// with the reason of the lowest charge; otherwise the precursors of the others fail in `predict`.
    Error load(const NetworkChoice &asked, const QList<Precursor> &precursors);

    /// One outcome per precursor, in order. The precursors have passed `checkPrecursor`. Without isotopes the network
    /// of a charge runs once per block of peptides; with them once per precursor, whose spectrum then does not depend
    /// on the others, not even in its last bits. The network of peptidoforms runs once per block.
    QList<Result<PredictedSpectrum>> predict(const QList<Precursor> &precursors);

    /// What the user should know of the predictions since the last call: modifications that the network has not seen.
    QStringList takeRemarks();

private:
    Error loadCharges(const NetworkChoice &asked, QList<int> charges);
    Error loadPeptidoforms(const NetworkChoice &asked);
    QList<Result<PredictedSpectrum>> predictGroup(int charge, const QList<Precursor> &precursors);
    QList<Result<PredictedSpectrum>> predictCharge(const QList<Precursor> &precursors);
    QList<Result<PredictedSpectrum>> predictPeptidoforms(const QList<Precursor> &precursors);

    double m_cysteineMass = 0; ///< Da
    IsotopePeaks m_isotopes;
    std::unique_ptr<MsMsFragmentationPredictomatic> m_predictor;
    PeptidoformSpectrumPredictor m_peptidoforms;
    QMap<int, Error> m_unavailable; ///< why the network of a charge, or of `PEPTIDOFORMS`, cannot be used
    QStringList m_remarks;
};

} // namespace zav
