// SPDX-License-Identifier: Apache-2.0
#include "SpectrumPredictor.h"

#include "Messages.h"
#include "NetworkLoading.h"
#include "PeptideMasses.h"

#include <algorithm>
#include <utility>

namespace zav {

namespace {

constexpr int PEPTIDOFORMS = 0; // among the charges: the precursors of the network of peptidoforms

int groupOf(const Precursor &precursor)
{
    return needsPeptidoforms(precursor) ? PEPTIDOFORMS : precursor.charge;
}

QList<Result<PredictedSpectrum>> failures(const Error &error, qsizetype count)
{
    return QList<Result<PredictedSpectrum>>(count, Result<PredictedSpectrum>(error));
}

} // namespace

SpectrumPredictor::SpectrumPredictor(double cysteineMass, IsotopePeaks isotopes)
    : m_cysteineMass(cysteineMass), m_isotopes(isotopes)
{}

SpectrumPredictor::~SpectrumPredictor() = default;

Error SpectrumPredictor::load(const NetworkChoice &asked, const QList<Precursor> &precursors)
{
    QList<int> groups;
    for (const Precursor &precursor : precursors) {
        if (!groups.contains(groupOf(precursor)))
            groups.append(groupOf(precursor));
    }
    std::sort(groups.begin(), groups.end());
    const bool needsPeptidoformNetwork = groups.removeOne(PEPTIDOFORMS);
    const Error ofPeptidoforms = needsPeptidoformNetwork ? loadPeptidoforms(asked) : Error();
    const Error ofCharges = groups.isEmpty() ? Error() : loadCharges(asked, groups);
    const bool isAnyUsable =
        (needsPeptidoformNetwork && !ofPeptidoforms.hasError()) || (!groups.isEmpty() && !ofCharges.hasError());
    if (isAnyUsable)
        return {};
    return ofCharges.hasError() ? ofCharges : ofPeptidoforms;
}

/// Fails when the network of none of the charges, which ascend, could be loaded.
Error SpectrumPredictor::loadCharges(const NetworkChoice &asked, QList<int> charges)
{
    const Result<ModelFolder> folder = ModelFolder::find(asked);
    if (folder.hasError()) {
        for (const int charge : charges)
            m_unavailable.insert(charge, folder.error());
        return folder.error();
    }
    const int lowest = charges.first();
    while (!charges.isEmpty()) {
        m_predictor = std::make_unique<MsMsFragmentationPredictomatic>();
        m_predictor->setCysteineFixedMass(m_cysteineMass);
        int failed = 0;
        const Error error = loadFragmentationNetworks(folder.value(), charges, m_predictor.get(), &failed);
        if (!error.hasError())
            return {};
        m_unavailable.insert(failed, error);
        charges.removeOne(failed);
    }
    return m_unavailable.value(lowest);
}

Error SpectrumPredictor::loadPeptidoforms(const NetworkChoice &asked)
{
    const Result<ModelFolder> folder = ModelFolder::find(asked, NetworkUse::Peptidoforms);
    Error error =
        folder.hasError() ? folder.error() : loadNetwork(folder.value(), NetworkUse::Peptidoforms, &m_peptidoforms);
    if (error.hasError())
        m_unavailable.insert(PEPTIDOFORMS, error);
    return error;
}

QList<Result<PredictedSpectrum>> SpectrumPredictor::predict(const QList<Precursor> &precursors)
{
    QMap<int, QList<Precursor>> groups;
    for (const Precursor &precursor : precursors)
        groups[groupOf(precursor)].append(precursor);
    QMap<int, QList<Result<PredictedSpectrum>>> predicted;
    for (auto it = groups.cbegin(); it != groups.cend(); ++it)
        predicted.insert(it.key(), predictGroup(it.key(), it.value()));

    QList<Result<PredictedSpectrum>> outcomes;
    for (const Precursor &precursor : precursors)
        outcomes.append(predicted[groupOf(precursor)].takeFirst());
    return outcomes;
}

QStringList SpectrumPredictor::takeRemarks()
{
    return std::exchange(m_remarks, {});
}

QList<Result<PredictedSpectrum>> SpectrumPredictor::predictGroup(int charge, const QList<Precursor> &precursors)
{
    if (m_unavailable.contains(charge))
        return failures(m_unavailable.value(charge), precursors.size());
    if (charge == PEPTIDOFORMS)
        return predictPeptidoforms(precursors);
    const qsizetype runSize = m_isotopes == IsotopePeaks::Included ? 1 : precursors.size();
    QList<Result<PredictedSpectrum>> outcomes;
    for (qsizetype first = 0; first < precursors.size(); first += runSize)
        outcomes.append(predictCharge(precursors.mid(first, runSize)));
    return outcomes;
}

/// One run of the network of their charge. They fail together.
QList<Result<PredictedSpectrum>> SpectrumPredictor::predictCharge(const QList<Precursor> &precursors)
{
    const int charge = precursors.first().charge;
    QStringList peptides;
    for (const Precursor &precursor : precursors)
        peptides.append(precursor.peptide);
    QList<QList<FragmentPeak>> peaks;
    Error error = predictionError(m_predictor->predictFragments(peptides, charge, &peaks, m_isotopes), charge);
    // In a warning the predictor says why a peptide has no peaks.
    if (!error.hasError() && error.hasWarnings() && precursors.size() == 1)
        error = Error(InvalidInput, error.warnings().first());
    if (error.hasError())
        return failures(error, precursors.size());
    QList<Result<PredictedSpectrum>> outcomes;
    for (qsizetype i = 0; i < precursors.size(); ++i) {
        const Precursor &precursor = precursors[i];
        const double mz = peptideMasses::precursorMz(precursor.peptide, charge, m_cysteineMass);
        outcomes.append(PredictedSpectrum{precursor, withCysteines(precursor.peptide, m_cysteineMass), mz,
                                          m_cysteineMass, peaks[i]});
    }
    return outcomes;
}

/// They fail together.
QList<Result<PredictedSpectrum>> SpectrumPredictor::predictPeptidoforms(const QList<Precursor> &precursors)
{
    const double cysteineMass = exactCysteineMass(m_cysteineMass);
    QList<PeptidoformPrecursor> asked;
    for (const Precursor &precursor : precursors) {
        const Result<Peptidoform> peptidoform = peptidoformOf(precursor.peptide, cysteineMass);
        if (peptidoform.hasError())
            return failures(peptidoform.error(), precursors.size());
        asked.append({peptidoform.value(), precursor.charge, precursor.collisionEnergy});
    }
    QList<QList<FragmentPeak>> peaks;
    const Error error = m_peptidoforms.predict(asked, &peaks, m_isotopes);
    throwIfOutOfMemory(error);
    if (error.hasError())
        return failures(error.message().isEmpty()
                            ? explainedError(error, QStringLiteral("peptidoform_spectrum.pb is not a network of "
                                                                   "peptides with modifications"))
                            : error,
                        precursors.size());
    m_remarks.append(error.warnings());
    QList<Result<PredictedSpectrum>> outcomes;
    for (qsizetype i = 0; i < precursors.size(); ++i) {
        const Peptidoform &peptidoform = asked[i].peptidoform;
        const double mz = peptideMasses::precursorMz(peptidoform, precursors[i].charge);
        outcomes.append(PredictedSpectrum{precursors[i], peptidoform, mz, m_cysteineMass, peaks[i]});
    }
    return outcomes;
}

} // namespace zav
