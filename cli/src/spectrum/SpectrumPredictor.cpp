// SPDX-License-Identifier: Apache-2.0
#include "SpectrumPredictor.h"

#include "NetworkLoading.h"
#include "PeptideMasses.h"

#include <algorithm>

namespace zav {

SpectrumPredictor::SpectrumPredictor(double cysteineMass, IsotopePeaks isotopes)
    : m_cysteineMass(cysteineMass), m_isotopes(isotopes)
{}

SpectrumPredictor::~SpectrumPredictor() = default;

Error SpectrumPredictor::load(const ModelFolder &folder, const QSet<int> &charges)
{
    QList<int> usable = charges.values();
    std::sort(usable.begin(), usable.end());
    while (!usable.isEmpty()) {
        m_predictor = std::make_unique<MsMsFragmentationPredictomatic>();
        m_predictor->setCysteineFixedMass(m_cysteineMass);
        int failed = 0;
        const Error error = loadFragmentationNetworks(folder, usable, m_predictor.get(), &failed);
        if (!error.hasError())
            return {};
        m_unavailable.insert(failed, error);
        usable.removeOne(failed);
    }
    return m_unavailable.first();
}

QList<Result<PredictedSpectrum>> SpectrumPredictor::predict(const QList<Precursor> &precursors)
{
    QMap<int, QList<Precursor>> byCharge;
    for (const Precursor &precursor : precursors)
        byCharge[precursor.charge].append(precursor);
    QMap<int, QList<Result<PredictedSpectrum>>> predicted;
    for (auto it = byCharge.cbegin(); it != byCharge.cend(); ++it)
        predicted.insert(it.key(), predictCharge(it.value()));

    QList<Result<PredictedSpectrum>> outcomes;
    for (const Precursor &precursor : precursors)
        outcomes.append(predicted[precursor.charge].takeFirst());
    return outcomes;
}

/// The precursors share one charge.
QList<Result<PredictedSpectrum>> SpectrumPredictor::predictCharge(const QList<Precursor> &precursors)
{
    const qsizetype runSize = m_isotopes == IsotopePeaks::Included ? 1 : precursors.size();
    QList<Result<PredictedSpectrum>> outcomes;
    for (qsizetype first = 0; first < precursors.size(); first += runSize)
        outcomes.append(predictRun(precursors.mid(first, runSize)));
    return outcomes;
}

/// One run of the network of their charge. They fail together.
QList<Result<PredictedSpectrum>> SpectrumPredictor::predictRun(const QList<Precursor> &precursors)
{
    const int charge = precursors.first().charge;
    QStringList peptides;
    for (const Precursor &precursor : precursors)
        peptides.append(precursor.peptide);
    QList<QList<FragmentPeak>> peaks;
    Error error = m_unavailable.value(charge);
    if (!error.hasError())
        error = predictionError(m_predictor->predictFragments(peptides, charge, &peaks, m_isotopes), charge);
    // In a warning the predictor says why a peptide has no peaks.
    if (!error.hasError() && error.hasWarnings() && precursors.size() == 1)
        error = Error(InvalidInput, error.warnings().first());
    QList<Result<PredictedSpectrum>> outcomes;
    for (qsizetype i = 0; i < precursors.size(); ++i)
        outcomes.append(error.hasError() ? Result<PredictedSpectrum>(error) : spectrumOf(precursors[i], peaks[i]));
    return outcomes;
}

PredictedSpectrum SpectrumPredictor::spectrumOf(const Precursor &precursor, const QList<FragmentPeak> &peaks) const
{
    return {precursor, peptideMasses::precursorMz(precursor.peptide, precursor.charge, m_cysteineMass), m_cysteineMass,
            peaks};
}

} // namespace zav
