// SPDX-License-Identifier: Apache-2.0
//
// Door: observed times that calibrate the prediction of retention times, with the outputs of the network from the
// fuzzer. Promises: a calibrated time never falls as the index rises, is the same in any order of the pairs, and is the
// curve at the index of the mixed outputs; pairs that do not fit are invalid input; nothing leaks.
#include "RetentionTimeSupport.h"

#include <zav/RetentionTimeCalibration.h>

namespace zav::fuzz {
namespace {

struct Pairs
{
    QList<ObservedRetentionTime> observed;
    std::vector<float> values;
    std::size_t headCount = 1;
    bool isRun = false; // as of a chromatography, not any numbers
};

/// Any numbers; or outputs that rise from pair to pair, with noise, and times that rise or fall in stretches.
Pairs takePairs(FuzzedDataProvider *data)
{
    Pairs pairs;
    pairs.headCount = data->ConsumeIntegralInRange<std::size_t>(1, 4);
    pairs.isRun = data->ConsumeBool();
    const int count = data->ConsumeIntegralInRange(9, 50);
    double time = 0.0;
    double step = 0.0;
    for (int i = 0; i < count; ++i) {
        if (i % 8 == 0)
            step = data->ConsumeIntegral<qint8>() / 4.0;
        time += step;
        // Of one length, so that the network sees them in their order.
        pairs.observed.append({Peptidoform(QStringLiteral("PEPTIDEK")), pairs.isRun ? time : takeNumber(data)});
        for (std::size_t head = 0; head < pairs.headCount; ++head) {
            const double value = pairs.isRun ? 4.0 * i + data->ConsumeIntegral<qint8>() / 16.0 : takeNumber(data);
            pairs.values.push_back(static_cast<float>(value));
        }
    }
    return pairs;
}

Pairs reversed(const Pairs &pairs)
{
    Pairs other = pairs;
    std::reverse(other.observed.begin(), other.observed.end());
    const std::size_t each = pairs.headCount;
    for (std::size_t i = 0; i < pairs.values.size(); ++i)
        other.values[i] = pairs.values[pairs.values.size() - each - i / each * each + i % each];
    return other;
}

Result<RetentionTimeCalibration> fit(RetentionTimePredictor *predictor, const Pairs &pairs)
{
    setResults(pairs.values, pairs.headCount);
    return RetentionTimeCalibration::fit(predictor, pairs.observed);
}

QList<double> timesOf(const RetentionTimeCalibration &calibration)
{
    QList<double> times;
    for (double index = -600.0; index <= 600.0; index += 7.5)
        times.append(calibration.timeAt(index));
    return times;
}

void requireCalibration(RetentionTimePredictor *predictor, const RetentionTimeCalibration &calibration,
                        const Pairs &pairs)
{
    require(calibration.pairCount() >= 10 && calibration.pairCount() <= pairs.observed.size(), "pairs are counted");
    require(calibration.outlierCount() >= 0 && calibration.outlierCount() <= calibration.pairCount(),
            "outliers are pairs");
    require(!(calibration.width95() < 0), "a width is not negative");
    const QList<double> curve = timesOf(calibration);
    require(!pairs.isRun || std::is_sorted(curve.cbegin(), curve.cend()), "a calibrated time never falls");

    QList<Peptidoform> peptidoforms;
    for (const ObservedRetentionTime &pair : pairs.observed)
        peptidoforms.append(pair.peptidoform);
    QList<double> times;
    QList<QList<double>> heads;
    require(!calibration.predict(predictor, peptidoforms, &times).hasError() &&
                !predictor->predictHeads(peptidoforms, &heads).hasError(),
            "the pairs are predicted again");
    const Result<QList<double>> indices = calibration.indicesOf(heads);
    require(!indices.hasError() && indices.value().size() == times.size(), "every pair has an index");
    for (qsizetype i = 0; i < times.size(); ++i)
        require(bits(times[i]) == bits(calibration.timeAt(indices.value()[i])), "a time is the curve at the index");
}

void tryCalibration(RetentionTimePredictor *predictor, FuzzedDataProvider *data)
{
    const Pairs pairs = takePairs(data);
    const Result<RetentionTimeCalibration> calibration = fit(predictor, pairs);
    require(!calibration.hasError() || calibration.error().equals(InvalidInput),
            "pairs that do not fit are the caller's");
    if (!calibration.hasError())
        requireCalibration(predictor, calibration.value(), pairs);
    if (!pairs.isRun)
        return;
    const Result<RetentionTimeCalibration> other = fit(predictor, reversed(pairs));
    require(other.hasError() == calibration.hasError(), "pairs fit in any order");
    if (other.hasError())
        return;
    const QList<double> times = timesOf(calibration.value()), otherTimes = timesOf(other.value());
    for (qsizetype i = 0; i < times.size(); ++i)
        require(std::abs(times[i] - otherTimes[i]) <= 1e-6 * (1 + std::abs(times[i])),
                "the order of the pairs makes no difference");
}

} // namespace

void tryInput(const QByteArray &input)
{
    FuzzedDataProvider data = dataOf(input);
    withPredictor([&data](RetentionTimePredictor *predictor) { tryCalibration(predictor, &data); });
}

} // namespace zav::fuzz
