// SPDX-License-Identifier: Apache-2.0
#include "FragmentBatch.h"

#include "ErrorUtils.h"
#include "Model.h"
#include "PeptideVocabulary.h"
#include "ReturnIfError.h"
#include "SpectrumLimits.h"
#include "kelphysica.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <utility>

namespace zav {

namespace {

constexpr char SOURCE_FILE[] = "ml/src/MsMsFragmentationPredictomatic";

// Enough to hide what a run costs by itself, few enough for the activations to stay near the processor.
constexpr std::size_t BLOCK_SIZE = 256;

constexpr std::int64_t UNKNOWN = -1; // dimension of a declared shape

QString tooLongRemark(const QString &peptide, int maximumLength, int charge)
{
    return QStringLiteral("%1 has %2 residues, more than the %3 of precursor charge %4: not predicted")
        .arg(peptide)
        .arg(peptide.size())
        .arg(maximumLength)
        .arg(charge);
}

QString weightlessRemark(const QString &peptide)
{
    return QStringLiteral("%1 has a fragment without a positive mass: not predicted").arg(peptide);
}

} // namespace

FragmentBatch::FragmentBatch(Model &model, int precursorCharge, double fixedMass)
    : network(model), charge(precursorCharge), ladder(fragmentLadder::ionSeries(precursorCharge)),
      maximumLength(peptideVocabulary::maximumPeptideLength(precursorCharge)),
      slotsPerPeptide(fragmentLadder::slotCount(ladder)), cysteineFixedMass(fixedMass)
{}

Error FragmentBatch::predict(const QStringList &peptides)
{
    ZAV_RETURN_IF_ERROR(bindTensors(), __LINE__);
    spectra.resize(peptides.size());
    const std::vector<qsizetype> indices = selectByLength(peptides);
    const std::size_t blockSize = mostPeptidesPerRun();
    for (std::size_t first = 0; first < indices.size(); first += blockSize) {
        const std::size_t count = std::min(blockSize, indices.size() - first);
        ZAV_RETURN_IF_ERROR(predictBlock(peptides, &indices[first], count), __LINE__);
    }
    Error outcome;
    for (const auto &[index, remark] : remarks)
        outcome.addWarning(remark);
    return outcome;
}

QList<QList<FragmentPeak>> FragmentBatch::takeSpectra()
{
    return std::exchange(spectra, {});
}

Error FragmentBatch::bindTensors()
{
    ZAV_RETURN_IF_ERROR(input.init(network.getGraph(), network.getStatus(), peptideVocabulary::NETWORK_INPUT),
                        __LINE__);
    ZAV_RETURN_IF_ERROR(output.init(network.getGraph(), network.getStatus(), peptideVocabulary::NETWORK_OUTPUT),
                        __LINE__);
    return Error();
}

/// Peptides can be stacked when the leading dimension alone is unknown and the others hold exactly one of them.
std::size_t FragmentBatch::mostPeptidesPerRun() const
{
    const std::vector<std::int64_t> shape = input.getShape();
    if (shape.empty() || shape.front() != UNKNOWN)
        return 1;
    const std::int64_t elements = std::accumulate(shape.begin() + 1, shape.end(), std::int64_t{1}, std::multiplies<>());
    return elements == std::int64_t{maximumLength} * peptideVocabulary::encodingWidth() ? BLOCK_SIZE : 1;
}

std::vector<qsizetype> FragmentBatch::selectByLength(const QStringList &peptides)
{
    std::vector<qsizetype> indices;
    indices.reserve(peptides.size());
    for (qsizetype i = 0; i < peptides.size(); ++i) {
        if (peptides.at(i).size() <= maximumLength)
            indices.push_back(i);
        else
            remarks[i] = tooLongRemark(peptides.at(i), maximumLength, charge);
    }
    std::stable_sort(indices.begin(), indices.end(),
                     [&peptides](qsizetype a, qsizetype b) { return peptides.at(a).size() < peptides.at(b).size(); });
    return indices;
}

Error FragmentBatch::predictBlock(const QStringList &peptides, const qsizetype *first, std::size_t count)
{
    ZAV_RETURN_IF_ERROR(input.setData<float>(encodeBlock(peptides, first, count)), __LINE__);
    ZAV_RETURN_IF_ERROR(network.run(input, output), __LINE__);
    std::vector<float> predictions;
    ZAV_RETURN_IF_ERROR(output.getData<float>(&predictions), __LINE__);
    const int expected = static_cast<int>(count) * slotsPerPeptide;
    ZAV_RETURN_IF_ERROR(ErrorUtils::equal<int>(expected, static_cast<int>(predictions.size()), Failure), __LINE__);
    for (std::size_t i = 0; i < count; ++i)
        assemble(peptides.at(first[i]), first[i], &predictions[i * slotsPerPeptide]);
    return Error();
}

std::vector<float> FragmentBatch::encodeBlock(const QStringList &peptides, const qsizetype *first,
                                              std::size_t count) const
{
    const std::size_t perPeptide = static_cast<std::size_t>(maximumLength) * peptideVocabulary::encodingWidth();
    std::vector<float> rows(count * perPeptide, 0.0F);
    for (std::size_t i = 0; i < count; ++i)
        peptideVocabulary::writeOneHotRows(peptides.at(first[i]), maximumLength, &rows[i * perPeptide]);
    return rows;
}

void FragmentBatch::assemble(const QString &peptide, qsizetype index, const float *predictions)
{
    if (!collectCandidates(peptide, predictions)) {
        remarks[index] = weightlessRemark(peptide);
        return;
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate &a, const Candidate &b) { return a.mz < b.mz; });
    spectra[index] = annotateCandidates();
}

/// False when a fragment has no positive and finite mass, for which there are no isotope peaks either.
bool FragmentBatch::collectCandidates(const QString &peptide, const float *predictions)
{
    forward.clear();
    for (const QChar residue : peptide)
        forward.push_back({fragmentLadder::residueMass(residue),
                           residue == fragmentLadder::MODIFIED_RESIDUE ? cysteineFixedMass : 0.0});
    backward.assign(forward.rbegin(), forward.rend());
    candidates.clear();
    for (qsizetype i = 0; i < ladder.size(); ++i) {
        if (!collectSeries(static_cast<int>(i), predictions))
            return false;
        predictions += ladder.at(i).slotCount;
    }
    return true;
}

bool FragmentBatch::collectSeries(int seriesIndex, const float *predictions)
{
    const fragmentLadder::IonSeries &series = ladder.at(seriesIndex);
    const std::vector<Residue> &residues = fragmentLadder::startsAtCTerminus(series.ionType) ? backward : forward;
    const int count = std::min(series.slotCount, static_cast<int>(residues.size()));
    double mass = series.startMass;
    for (int i = 0; i < count; ++i) {
        mass += residues[i].mass;
        mass += residues[i].fixedMass; // apart, as in the one-peptide call: both round alike
        const double mz = mass / series.charge;
        if (mz < 0.0)
            continue;
        const double neutralMass = kelphysica::calculateUnchargedMassFromMzCharge(mz, series.charge, 0, true);
        if (!(neutralMass > 0.0) || !std::isfinite(neutralMass))
            return false;
        if (!spectrumLimits::isOutside(mz, predictions[i]))
            candidates.push_back({mz, predictions[i], seriesIndex, i + 1});
    }
    return true;
}

QList<FragmentPeak> FragmentBatch::annotateCandidates() const
{
    QList<FragmentPeak> peaks;
    peaks.reserve(static_cast<qsizetype>(candidates.size()));
    for (const Candidate &candidate : candidates) {
        const fragmentLadder::IonSeries &series = ladder.at(candidate.series);
        peaks.append({candidate.mz, candidate.intensity, series.ionType, candidate.ionNumber, series.charge,
                      series.neutralLoss});
    }
    return peaks;
}

} // namespace zav
