// SPDX-License-Identifier: Apache-2.0
#include "SpectrumPredictor.h"

#include "IonNames.h"
#include "NetworkLoading.h"
#include "PeakNaming.h"
#include "PeptideMasses.h"
#include "TheoreticalFragments.h"

#include <algorithm>
#include <optional>

namespace zav {

namespace {

constexpr char SOURCE_FILE[] = "cli/src/spectrum/SpectrumPredictor";

} // namespace

SpectrumPredictor::SpectrumPredictor(const PredictionContent &content) : m_content(content) {}
SpectrumPredictor::~SpectrumPredictor() = default;

Error SpectrumPredictor::load(const ModelFolder &folder, const QSet<int> &charges)
{
    QList<int> usable = charges.values();
    std::sort(usable.begin(), usable.end());
    while (!usable.isEmpty()) {
        int failed = 0;
        const Error error = init(folder, usable, &failed);
        if (!error.hasError())
            return {};
        m_unavailable.insert(failed, error);
        usable.removeOne(failed);
    }
    return m_unavailable.first();
}

Error SpectrumPredictor::init(const ModelFolder &folder, const QList<int> &charges, int *failedCharge)
{
    m_predictor = std::make_unique<MsMsFragmentationPredictomatic>();
    m_predictor->setCysteineFixedMass(m_content.cysteineMass);
    return loadFragmentationNetworks(folder, charges, m_predictor.get(), failedCharge);
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
    const int charge = precursors.first().charge;
    QList<QList<FragmentPeak>> fragments(precursors.size());
    Error error = m_unavailable.value(charge);
    if (!error.hasError() && (m_content.ionNames || !m_content.isotopes)) {
        QStringList peptides;
        for (const Precursor &precursor : precursors)
            peptides.append(precursor.peptide);
        error = predictionError(m_predictor->predictFragments(peptides, charge, &fragments), charge);
    }
    QList<Result<PredictedSpectrum>> outcomes;
    for (int i = 0; i < precursors.size(); ++i)
        outcomes.append(error.hasError() ? Result<PredictedSpectrum>(error) : assemble(precursors[i], fragments[i]));
    return outcomes;
}

Result<PredictedSpectrum> SpectrumPredictor::assemble(const Precursor &precursor, const QList<FragmentPeak> &fragments)
{
    PredictedSpectrum spectrum;
    spectrum.precursor = precursor;
    spectrum.precursorMz = peptideMasses::precursorMz(precursor.peptide, precursor.charge, m_content.cysteineMass);
    spectrum.cysteineMass = m_content.cysteineMass;
    if (Error error = addPeaks(precursor, fragments, &spectrum.peaks); error.hasError())
        return std::move(error.ecatch(Q_FUNC_INFO, SOURCE_FILE, __LINE__));
    return spectrum;
}

Error SpectrumPredictor::addPeaks(const Precursor &precursor, const QList<FragmentPeak> &fragments,
                                  QList<AnnotatedPeak> *peaks)
{
    if (!m_content.isotopes) {
        std::transform(fragments.begin(), fragments.end(), std::back_inserter(*peaks), annotatedPeak);
        return {};
    }
    QList<QPointF> points;
    const Error error = m_predictor->predictMsMsFragmentation(precursor.peptide, precursor.charge, &points);
    if (error.hasError())
        return predictionError(error, precursor.charge);
    const QList<FragmentPeak> possible =
        m_content.ionNames ? theoreticalFragments(precursor.peptide, precursor.charge, m_content.cysteineMass)
                           : QList<FragmentPeak>();
    const Result<QList<AnnotatedPeak>> named = namePeaks(points, fragments, possible);
    if (named.hasError())
        return named.error();
    *peaks = named.value();
    return {};
}

} // namespace zav
