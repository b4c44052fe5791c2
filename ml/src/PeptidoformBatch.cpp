// SPDX-License-Identifier: Apache-2.0
#include "PeptidoformBatch.h"

#include "ErrorUtils.h"
#include "Model.h"
#include "PeptidoformRows.h"
#include "PeptidoformSpectrumPredictor_p.h"
#include "ReturnIfError.h"
#include "UntrainedModifications.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zav {

namespace {

constexpr char SOURCE_FILE[] = "ml/src/PeptidoformBatch";

QStringList trainedModifications()
{
    QStringList names;
    for (const char *name : peptidoformNetwork::TRAINED_MODIFICATIONS)
        names.append(QString::fromLatin1(name));
    return names;
}

/// Why a peptidoform cannot be read; empty when it can.
QString remarkOn(const Peptidoform &peptidoform)
{
    if (!peptidoformRows::problemOf(peptidoform).isEmpty())
        return peptidoformRows::unreadableRemark(peptidoform);
    const QList<PlacedModification> &placed = peptidoform.modifications();
    if (!std::all_of(placed.cbegin(), placed.cend(),
                     [](const PlacedModification &each) { return std::isfinite(each.modification.mass); }))
        return QStringLiteral("%1 has a mass that is not finite: not predicted").arg(peptidoform.toProForma());
    return {};
}

QString chargeRemark(const PeptidoformPrecursor &precursor)
{
    return QStringLiteral("%1 has precursor charge %2, not 1 to %3: not predicted")
        .arg(precursor.peptidoform.toProForma(), QString::number(precursor.charge),
             QString::number(PeptidoformSpectrumPredictor::HIGHEST_CHARGE));
}

bool isCharge(int charge)
{
    return charge >= 1 && charge <= PeptidoformSpectrumPredictor::HIGHEST_CHARGE;
}

float energyInput(double collisionEnergy)
{
    if (std::isnan(collisionEnergy))
        return 0.0F;
    return static_cast<float>((collisionEnergy - PeptidoformSpectrumPredictor::DEFAULT_COLLISION_ENERGY) /
                              peptidoformNetwork::ENERGY_UNIT);
}

} // namespace

PeptidoformBatch::PeptidoformBatch(Model &model, IsotopePeaks isotopePeaks) : network(model), assembler(isotopePeaks) {}

Error PeptidoformBatch::predict(const QList<PeptidoformPrecursor> &precursors)
{
    ZAV_RETURN_IF_ERROR(bindTensors(), __LINE__);
    spectra.resize(precursors.size());
    const std::vector<qsizetype> indices = selectByLength(precursors);
    for (std::size_t first = 0; first < indices.size(); first += PRECURSORS_PER_RUN) {
        const std::size_t count = std::min(PRECURSORS_PER_RUN, indices.size() - first);
        ZAV_RETURN_IF_ERROR(predictBlock(precursors, &indices[first], count), __LINE__);
    }
    Error outcome;
    outcome.addWarnings(remarks);
    return outcome;
}

QList<QList<FragmentPeak>> PeptidoformBatch::takeSpectra()
{
    return std::exchange(spectra, {});
}

Error PeptidoformBatch::bindTensors()
{
    const auto bind = [this](Tensor *tensor, const char *name) {
        return tensor->init(network.getGraph(), network.getStatus(), name);
    };
    ZAV_RETURN_IF_ERROR(bind(&peptidoformInput, peptidoformRows::NETWORK_INPUT), __LINE__);
    ZAV_RETURN_IF_ERROR(bind(&precursorInput, peptidoformNetwork::PRECURSORS), __LINE__);
    ZAV_RETURN_IF_ERROR(bind(&output, peptidoformNetwork::INTENSITIES), __LINE__);
    return NoError;
}

/// The precursors that can be read, those of one length in their order.
std::vector<qsizetype> PeptidoformBatch::selectByLength(const QList<PeptidoformPrecursor> &precursors)
{
    std::vector<qsizetype> indices;
    indices.reserve(precursors.size());
    UntrainedModifications untrained(trainedModifications());
    QString remark;
    for (qsizetype i = 0; i < precursors.size(); ++i) {
        const PeptidoformPrecursor &precursor = precursors.at(i);
        if (i == 0 || precursor.peptidoform != precursors.at(i - 1).peptidoform) {
            remark = remarkOn(precursor.peptidoform);
            if (remark.isEmpty())
                untrained.look(precursor.peptidoform);
        }
        if (remark.isEmpty() && isCharge(precursor.charge))
            indices.push_back(i);
        else
            remarks.append(remark.isEmpty() ? chargeRemark(precursor) : remark);
    }
    remarks.append(untrained.remarks());
    std::stable_sort(indices.begin(), indices.end(), [&precursors](qsizetype a, qsizetype b) {
        return precursors.at(a).peptidoform.length() < precursors.at(b).peptidoform.length();
    });
    return indices;
}

Error PeptidoformBatch::predictBlock(const QList<PeptidoformPrecursor> &precursors, const qsizetype *first,
                                     std::size_t count)
{
    ZAV_RETURN_IF_ERROR(fillInputs(precursors, first, count), __LINE__);
    ZAV_RETURN_IF_ERROR(network.run({&peptidoformInput, &precursorInput}, output), __LINE__);
    std::vector<float> intensities;
    ZAV_RETURN_IF_ERROR(output.getData<float>(&intensities), __LINE__);
    const int bondCount = precursors.at(first[count - 1]).peptidoform.length() - 1;
    const std::size_t perPrecursor = std::size_t{peptidoformIons::SERIES_COUNT} * static_cast<std::size_t>(bondCount);
    ZAV_RETURN_IF_ERROR(ErrorUtils::equal<std::size_t>(count * perPrecursor, intensities.size(), Failure), __LINE__);
    for (std::size_t i = 0; i < count; ++i) {
        const PeptidoformPrecursor &precursor = precursors.at(first[i]);
        if (i == 0 || precursor.peptidoform != precursors.at(first[i - 1]).peptidoform)
            assembler.take(precursor.peptidoform);
        spectra[first[i]] = assembler.assemble(precursor.charge, &intensities[i * perPrecursor]);
    }
    return NoError;
}

Error PeptidoformBatch::fillInputs(const QList<PeptidoformPrecursor> &precursors, const qsizetype *first,
                                   std::size_t count)
{
    std::vector<float> rows;
    std::vector<float> precursorRows;
    int peptidoformCount = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const PeptidoformPrecursor &precursor = precursors.at(first[i]);
        if (i == 0 || precursor.peptidoform != precursors.at(first[i - 1]).peptidoform) {
            rows.resize(rows.size() + peptidoformRows::SIZE);
            peptidoformRows::write(precursor.peptidoform, &rows[rows.size() - peptidoformRows::SIZE]);
            ++peptidoformCount;
        }
        precursorRows.insert(precursorRows.end(),
                             {static_cast<float>(peptidoformCount - 1), static_cast<float>(precursor.charge),
                              energyInput(precursor.collisionEnergy)});
    }
    ZAV_RETURN_IF_ERROR(peptidoformInput.setData<float>(std::move(rows)), __LINE__);
    ZAV_RETURN_IF_ERROR(precursorInput.setData<float>(std::move(precursorRows)), __LINE__);
    return NoError;
}

} // namespace zav
