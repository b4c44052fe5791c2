// SPDX-License-Identifier: Apache-2.0
#include <zav/RetentionTimeCalibration.h>

#include "ErrorUtils.h"
#include "ListMemory.h"
#include "RetentionTimeFit.h"
#include "ReturnIfError.h"

#include <zav/RetentionTimePredictor.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace zav {

namespace {

constexpr char SOURCE_FILE[] = "ml/src/RetentionTimeCalibration";

const Error missingPredictorError(InvalidInput, QStringLiteral("There is no predictor"));
const Error missingOutError(InvalidInput, QStringLiteral("There is no list for the prediction"));

Error timeError(const QList<ObservedRetentionTime> &pairs)
{
    const auto wrong = std::find_if(pairs.cbegin(), pairs.cend(),
                                    [](const ObservedRetentionTime &pair) { return !std::isfinite(pair.time); });
    if (wrong == pairs.cend())
        return NoError;
    return {InvalidInput, QStringLiteral("The time of %1 is not finite").arg(wrong->peptidoform.toProForma())};
}

Error countError(qsizetype pairCount)
{
    if (pairCount >= RetentionTimeCalibration::FEWEST_PAIRS)
        return NoError;
    return {InvalidInput, QStringLiteral("A calibration needs %1 pairs that can be predicted, not %2")
                              .arg(RetentionTimeCalibration::FEWEST_PAIRS)
                              .arg(pairCount)};
}

Error headError(qsizetype count, Eigen::Index expected)
{
    if (count == 0 || count == expected)
        return NoError;
    return {InvalidInput,
            QStringLiteral("The network has %1 outputs, that of the calibration had %2").arg(count).arg(expected)};
}

bool isPredicted(const QList<double> &heads)
{
    return !heads.isEmpty() &&
           std::all_of(heads.cbegin(), heads.cend(), [](double head) { return std::isfinite(head); });
}

/// The rows that are predicted, as a matrix; `rows` says which they are.
Eigen::MatrixXd matrixOf(const QList<QList<double>> &heads, QList<qsizetype> *rows)
{
    for (qsizetype i = 0; i < heads.size(); ++i) {
        if (isPredicted(heads.at(i)))
            rows->append(i);
    }
    Eigen::MatrixXd matrix(rows->size(), rows->isEmpty() ? 0 : heads.at(rows->first()).size());
    for (qsizetype i = 0; i < rows->size(); ++i)
        matrix.row(i) = Eigen::Map<const Eigen::RowVectorXd>(heads.at(rows->at(i)).constData(), matrix.cols());
    return matrix;
}

} // namespace

class RetentionTimeCalibration::Private
{
public:
    RetentionTimeFit fit;
};

RetentionTimeCalibration::RetentionTimeCalibration(std::shared_ptr<const Private> fitted) : d(std::move(fitted)) {}

Result<RetentionTimeCalibration> RetentionTimeCalibration::fit(RetentionTimePredictor *predictor,
                                                               const QList<ObservedRetentionTime> &pairs)
{
    ZAV_RETURN_IF_ERROR(ErrorUtils::equal(predictor != nullptr, true, missingPredictorError), __LINE__);
    ZAV_RETURN_IF_ERROR(timeError(pairs), __LINE__);
    ZAV_RETURN_IF_ERROR(countError(pairs.size()), __LINE__);
    QList<Peptidoform> peptidoforms;
    for (const ObservedRetentionTime &pair : pairs)
        peptidoforms.append(pair.peptidoform);
    QList<QList<double>> predicted;
    const Error prediction = predictor->predictHeads(peptidoforms, &predicted);
    ZAV_RETURN_IF_ERROR(prediction, __LINE__);

    QList<qsizetype> rows;
    const Eigen::MatrixXd heads = matrixOf(predicted, &rows);
    ZAV_RETURN_IF_ERROR(countError(rows.size()), __LINE__);
    Eigen::VectorXd times(rows.size());
    std::transform(rows.cbegin(), rows.cend(), times.begin(), [&pairs](qsizetype row) { return pairs.at(row).time; });
    Result<RetentionTimeFit> fitted = RetentionTimeFit::fit(heads, times);
    ZAV_RETURN_IF_ERROR(fitted, __LINE__);
    Result<RetentionTimeCalibration> calibration =
        RetentionTimeCalibration(std::make_shared<const Private>(Private{std::move(fitted).value()}));
    calibration.addWarnings(prediction.warnings());
    return calibration;
}

Error RetentionTimeCalibration::predict(RetentionTimePredictor *predictor, const QList<Peptidoform> &peptidoforms,
                                        QList<double> *times) const
{
    ZAV_RETURN_IF_ERROR(ErrorUtils::equal(predictor != nullptr, true, missingPredictorError), __LINE__);
    ZAV_RETURN_IF_ERROR(ErrorUtils::equal(times != nullptr, true, missingOutError), __LINE__);
    QList<QList<double>> heads;
    Error outcome = predictor->predictHeads(peptidoforms, &heads);
    if (outcome.hasError())
        return std::move(outcome.ecatch(Q_FUNC_INFO, SOURCE_FILE, __LINE__));
    Result<QList<double>> indices = indicesOf(heads);
    ZAV_RETURN_IF_ERROR(indices, __LINE__);
    *times = std::move(indices).value();
    std::transform(times->begin(), times->end(), times->begin(), [this](double index) { return timeAt(index); });
    return outcome;
}

Result<QList<double>> RetentionTimeCalibration::indicesOf(const QList<QList<double>> &heads) const
{
    for (const QList<double> &row : heads)
        ZAV_RETURN_IF_ERROR(headError(row.size(), d->fit.headCount()), __LINE__);
    QList<qsizetype> rows;
    const Eigen::MatrixXd predicted = matrixOf(heads, &rows);
    QList<double> indices = listOf(heads.size(), std::numeric_limits<double>::quiet_NaN());
    if (rows.isEmpty())
        return indices;
    const Eigen::VectorXd mixed = d->fit.indicesOf(predicted);
    for (qsizetype i = 0; i < rows.size(); ++i)
        indices[rows.at(i)] = mixed[i];
    return indices;
}

double RetentionTimeCalibration::timeAt(double index) const
{
    return d->fit.timeAt(index);
}

double RetentionTimeCalibration::width95() const
{
    return d->fit.width95();
}

int RetentionTimeCalibration::pairCount() const
{
    return d->fit.pairCount();
}

int RetentionTimeCalibration::outlierCount() const
{
    return d->fit.outlierCount();
}

} // namespace zav
