// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ModelFolder.h"
#include "PredictedSpectrum.h"

#include <zav/MsMsFragmentationPredictomatic.h>
#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QSet>

#include <memory>

namespace zav {

/// What a prediction is to hold.
struct PredictionContent
{
    double cysteineMass = 57.02146; ///< Da added to every cysteine
    bool isotopes = true;           ///< the heavier isotopes of each fragment
    bool ionNames = false;          ///< which ion each peak is
};

/// Predicts spectra with the networks of one folder, loading only those that the work needs.
///
/// The network of a charge that is missing or broken fails the precursors of that charge only.
class SpectrumPredictor
{
public:
    explicit SpectrumPredictor(const PredictionContent &content);
    ~SpectrumPredictor();

    /// Loads the networks for `charges` (1 to 5). Fails when none of them could be loaded, with the reason of the
    /// first; otherwise the precursors of the others fail in `predict`.
    Error load(const ModelFolder &folder, const QSet<int> &charges);

    /// One outcome per precursor, in order. The precursors have passed `checkPrecursor`. Without isotopes the network
    /// runs once per charge and block of peptides; otherwise once per precursor.
    QList<Result<PredictedSpectrum>> predict(const QList<Precursor> &precursors);

private:
    Error init(const ModelFolder &folder, const QList<int> &charges, int *failedCharge);
    QList<Result<PredictedSpectrum>> predictCharge(const QList<Precursor> &precursors);
    Result<PredictedSpectrum> assemble(const Precursor &precursor, const QList<FragmentPeak> &fragments);
    Error addPeaks(const Precursor &precursor, const QList<FragmentPeak> &fragments, QList<AnnotatedPeak> *peaks);

    PredictionContent m_content;
    std::unique_ptr<MsMsFragmentationPredictomatic> m_predictor;
    QMap<int, Error> m_unavailable; ///< why the network of a charge cannot be used
};

} // namespace zav
