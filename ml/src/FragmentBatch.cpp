// SPDX-License-Identifier: Apache-2.0
#include "FragmentBatch.h"

#include "ErrorUtils.h"
#include "Model.h"
#include "PeptideVocabulary.h"
#include "ReturnIfError.h"

#include <algorithm>
#include <utility>

namespace zav {

namespace {

constexpr char SOURCE_FILE[] = "ml/src/FragmentBatch";

constexpr std::int64_t UNKNOWN = -1; // dimension of a declared shape

QString tooLongRemark(const QString &peptide, int maximumLength, int charge)
{
    return QStringLiteral("%1 has %2 residues, more than the %3 of precursor charge %4: not predicted")
        .arg(peptide, QString::number(peptide.size()), QString::number(maximumLength), QString::number(charge));
}

QString massRemark(const QString &peptide)
{
    return QStringLiteral("%1 has a fragment whose mass is not finite or above 1e6 Da: not predicted").arg(peptide);
}

} // namespace

FragmentBatch::FragmentBatch(Model &model, int precursorCharge, double fixedMass, IsotopePeaks isotopePeaks)
    : network(model), charge(precursorCharge), maximumLength(peptideVocabulary::maximumPeptideLength(precursorCharge)),
      assembler(precursorCharge, fixedMass, isotopePeaks)
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
    return NoError;
}

/// Peptides can be stacked when the leading dimension alone is unknown and the others hold exactly one of them.
std::size_t FragmentBatch::mostPeptidesPerRun() const
{
    const std::vector<std::int64_t> shape = input.getShape();
    if (shape.empty() || shape.front() != UNKNOWN)
        return 1;
    const std::int64_t wanted = std::int64_t{maximumLength} * peptideVocabulary::encodingWidth();
    std::int64_t elements = 1;
    for (auto dimension = shape.begin() + 1; dimension != shape.end(); ++dimension) {
        if (*dimension < 1 || *dimension > wanted / elements)
            return 1;
        elements *= *dimension;
    }
    return elements == wanted ? PEPTIDES_PER_RUN : 1;
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
    const int slotCount = assembler.slotCount();
    const int expected = static_cast<int>(count) * slotCount;
    ZAV_RETURN_IF_ERROR(ErrorUtils::equal<int>(expected, static_cast<int>(predictions.size()), Failure), __LINE__);
    for (std::size_t i = 0; i < count; ++i)
        keepSpectrum(peptides.at(first[i]), first[i], &predictions[i * slotCount]);
    return NoError;
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

void FragmentBatch::keepSpectrum(const QString &peptide, qsizetype index, const float *intensities)
{
    if (assembler.assemble(peptide, intensities))
        spectra[index] = assembler.namedPeaks();
    else
        remarks[index] = massRemark(peptide);
}

} // namespace zav
