// SPDX-License-Identifier: Apache-2.0
#include <zav/RetentionTimePredictor.h>

#include "ErrorUtils.h"
#include "ListMemory.h"
#include "OutOfMemory.h"
#include "PeptidoformRows.h"
#include "RetentionTimePredictor_p.h"
#include "ReturnIfError.h"
#include "UntrainedModifications.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace zav {

namespace {

constexpr char SOURCE_FILE[] = "ml/src/RetentionTimePredictor";

constexpr double NOT_PREDICTED = std::numeric_limits<double>::quiet_NaN();

const Error notLoadedError(Failure, QStringLiteral("No network for retention times is loaded"));
const Error misfitError(Failure, QStringLiteral("The network is not one for retention times"));
const Error missingOutError(InvalidInput, QStringLiteral("There is no list for the prediction"));

} // namespace

QStringList retentionTimeNetwork::trainedModifications()
{
    static const QStringList trained =
        QStringLiteral("Acetyl@K Acetyl@N-term Biotin@K Butyryl@K Carbamidomethyl@C Crotonyl@K Deamidated@R Dimethyl@K "
                       "Dimethyl@R Formyl@K GG@K Malonyl@K Methyl@K Methyl@R Nitro@Y Oxidation@K Oxidation@M "
                       "Oxidation@P Phospho@S Phospho@T Phospho@Y Propionyl@K Succinyl@K Trimethyl@K")
            .split(QLatin1Char(' '));
    return trained;
}

Error RetentionTimePredictor::Private::init(const QString &networkPath)
{
    ZAV_RETURN_IF_ERROR(model.init(networkPath.toStdString(), {}), __LINE__);
    ZAV_RETURN_IF_ERROR(bindTensors(), __LINE__);
    initialised = true;
    return NoError;
}

Error RetentionTimePredictor::Private::bindTensors()
{
    input.emplace();
    output.emplace();
    ZAV_RETURN_IF_ERROR(input->init(model.getGraph(), model.getStatus(), peptidoformRows::NETWORK_INPUT), __LINE__);
    ZAV_RETURN_IF_ERROR(output->init(model.getGraph(), model.getStatus(), retentionTimeNetwork::OUTPUT), __LINE__);
    // Other sizes might hold the same number of values, and the rows of one peptidoform would run into the next.
    const std::vector<std::int64_t> expected{-1, peptidoformRows::ROW_COUNT, peptidoformRows::COLUMN_COUNT};
    ZAV_RETURN_IF_ERROR(ErrorUtils::equal(input->getShape(), expected, misfitError), __LINE__);
    return NoError;
}

Error RetentionTimePredictor::Private::predict(const QList<Peptidoform> &peptidoforms)
{
    ZAV_RETURN_IF_ERROR(ErrorUtils::equal(initialised, true, notLoadedError), __LINE__);
    ZAV_RETURN_IF_ERROR(bindTensors(), __LINE__);
    headCount = 0;
    heads.clear();
    Error outcome;
    const std::vector<qsizetype> indices = selectByLength(peptidoforms, &outcome);
    for (std::size_t first = 0; first < indices.size(); first += retentionTimeNetwork::PEPTIDOFORMS_PER_RUN) {
        const std::size_t count = std::min(retentionTimeNetwork::PEPTIDOFORMS_PER_RUN, indices.size() - first);
        ZAV_RETURN_IF_ERROR(predictBlock(peptidoforms, &indices[first], count), __LINE__);
    }
    return outcome;
}

/// Those that can be predicted, the short ones first; remarks on the others, and on what the network does not know.
std::vector<qsizetype> RetentionTimePredictor::Private::selectByLength(const QList<Peptidoform> &peptidoforms,
                                                                       Error *remarks) const
{
    UntrainedModifications untrained(retentionTimeNetwork::trainedModifications());
    std::vector<qsizetype> indices;
    indices.reserve(peptidoforms.size());
    for (qsizetype i = 0; i < peptidoforms.size(); ++i) {
        const Peptidoform &peptidoform = peptidoforms.at(i);
        if (peptidoformRows::problemOf(peptidoform).isEmpty()) {
            indices.push_back(i);
            untrained.look(peptidoform);
        } else {
            remarks->addWarning(peptidoformRows::unreadableRemark(peptidoform));
        }
    }
    remarks->addWarnings(untrained.remarks());
    std::stable_sort(indices.begin(), indices.end(), [&peptidoforms](qsizetype a, qsizetype b) {
        return peptidoforms.at(a).length() < peptidoforms.at(b).length();
    });
    return indices;
}

Error RetentionTimePredictor::Private::predictBlock(const QList<Peptidoform> &peptidoforms, const qsizetype *first,
                                                    std::size_t count)
{
    std::vector<float> rows(count * peptidoformRows::SIZE, 0.0F);
    for (std::size_t i = 0; i < count; ++i)
        peptidoformRows::write(peptidoforms.at(first[i]), &rows[i * peptidoformRows::SIZE]);
    ZAV_RETURN_IF_ERROR(input->setData<float>(std::move(rows)), __LINE__);
    ZAV_RETURN_IF_ERROR(model.run(*input, *output), __LINE__);
    std::vector<float> values;
    ZAV_RETURN_IF_ERROR(output->getData<float>(&values), __LINE__);
    ZAV_RETURN_IF_ERROR(keepHeads(values, first, count, peptidoforms.size()), __LINE__);
    return NoError;
}

/// Takes the heads of a block to the rows of its peptidoforms. Every block has the same number of heads.
Error RetentionTimePredictor::Private::keepHeads(const std::vector<float> &values, const qsizetype *first,
                                                 std::size_t count, std::size_t peptidoformCount)
{
    const std::size_t headsEach = values.size() / count;
    const std::vector<std::int64_t> expected{static_cast<std::int64_t>(count), static_cast<std::int64_t>(headsEach)};
    ZAV_RETURN_IF_ERROR(ErrorUtils::equal(output->getShape(), expected, misfitError), __LINE__);
    ZAV_RETURN_IF_ERROR(
        ErrorUtils::equal(headsEach > 0 && (headCount == 0 || headCount == headsEach), true, misfitError), __LINE__);
    if (headCount == 0) {
        headCount = headsEach;
        heads.assign(peptidoformCount * headCount, std::numeric_limits<float>::quiet_NaN());
    }
    for (std::size_t i = 0; i < count; ++i)
        std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(i * headCount), headCount,
                    heads.begin() + static_cast<std::ptrdiff_t>(first[i] * headCount));
    return NoError;
}

RetentionTimePredictor::RetentionTimePredictor() : d(std::make_unique<Private>()) {}

RetentionTimePredictor::~RetentionTimePredictor() = default;

Error RetentionTimePredictor::init(const QString &networkPath)
try {
    d = std::make_unique<Private>(); // nothing of the network before stays
    ZAV_RETURN_IF_ERROR(d->init(networkPath), __LINE__);
    return NoError;
} catch (const std::bad_alloc &) {
    return outOfMemory(Q_FUNC_INFO, SOURCE_FILE, __LINE__);
}

bool RetentionTimePredictor::isInit() const
{
    return d->initialised;
}

Error RetentionTimePredictor::predict(const QList<Peptidoform> &peptidoforms, QList<double> *out)
try {
    ZAV_RETURN_IF_ERROR(ErrorUtils::equal(out != nullptr, true, missingOutError), __LINE__);
    Error outcome = d->predict(peptidoforms);
    if (outcome.hasError())
        return std::move(outcome.ecatch(Q_FUNC_INFO, SOURCE_FILE, __LINE__));
    QList<double> times = listOf(peptidoforms.size(), NOT_PREDICTED);
    for (qsizetype i = 0; d->headCount > 0 && i < times.size(); ++i)
        times[i] = d->heads[i * d->headCount];
    *out = std::move(times);
    return outcome;
} catch (const std::bad_alloc &) {
    return outOfMemory(Q_FUNC_INFO, SOURCE_FILE, __LINE__);
}

Error RetentionTimePredictor::predictHeads(const QList<Peptidoform> &peptidoforms, QList<QList<double>> *out)
try {
    ZAV_RETURN_IF_ERROR(ErrorUtils::equal(out != nullptr, true, missingOutError), __LINE__);
    Error outcome = d->predict(peptidoforms);
    if (outcome.hasError())
        return std::move(outcome.ecatch(Q_FUNC_INFO, SOURCE_FILE, __LINE__));
    QList<QList<double>> rows = listOf<QList<double>>(peptidoforms.size());
    for (qsizetype i = 0; d->headCount > 0 && i < rows.size(); ++i) {
        const auto row = d->heads.cbegin() + static_cast<std::ptrdiff_t>(i * d->headCount);
        if (!peptidoformRows::problemOf(peptidoforms.at(i)).isEmpty())
            continue;
        rows[i] = listOf<double>(static_cast<qsizetype>(d->headCount));
        std::copy_n(row, d->headCount, rows[i].begin());
    }
    *out = std::move(rows);
    return outcome;
} catch (const std::bad_alloc &) {
    return outOfMemory(Q_FUNC_INFO, SOURCE_FILE, __LINE__);
}

} // namespace zav
