// SPDX-License-Identifier: Apache-2.0
//
// Door: peptidoforms for the prediction of retention times, with the outputs of the network from the fuzzer.
// Promises: each peptidoform has its own outputs, the first of them its time; what cannot be read has none, and a
// warning; a failure leaves the output as it was; nothing leaks.
#include "PeptidoformSupport.h"
#include "RetentionTimeSupport.h"

#include <zav/RetentionTimePredictor.h>

namespace zav::fuzz {
namespace {

using Heads = QList<QList<double>>;

QByteArray bytesOf(const Heads &heads)
{
    QByteArray bytes;
    for (const QList<double> &row : heads)
        bytes += bits(row);
    return bytes;
}

/// The values as the network gives them: a row each, the short peptidoforms first.
Heads naiveHeads(const QList<Peptidoform> &peptidoforms, const std::vector<float> &values, std::size_t headCount)
{
    std::vector<qsizetype> order;
    for (qsizetype i = 0; i < peptidoforms.size(); ++i) {
        if (peptidoformRows::problemOf(peptidoforms[i]).isEmpty())
            order.push_back(i);
    }
    std::stable_sort(order.begin(), order.end(),
                     [&](qsizetype a, qsizetype b) { return peptidoforms[a].length() < peptidoforms[b].length(); });
    Heads heads(peptidoforms.size());
    for (std::size_t row = 0; row < order.size(); ++row) {
        for (std::size_t i = 0; i < headCount; ++i)
            heads[order[row]].append(values[row * headCount + i]);
    }
    return heads;
}

void tryPeptidoforms(RetentionTimePredictor *predictor, FuzzedDataProvider *data)
{
    QList<Peptidoform> peptidoforms;
    for (int left = data->ConsumeIntegralInRange(0, 5); left > 0; --left)
        peptidoforms.append(takePeptidoform(data));
    const auto headCount = data->ConsumeIntegralInRange<std::size_t>(1, 4);
    const auto readable =
        static_cast<std::size_t>(std::count_if(peptidoforms.cbegin(), peptidoforms.cend(), [](const Peptidoform &each) {
            return peptidoformRows::problemOf(each).isEmpty();
        }));
    const std::size_t rows = data->ConsumeBool() ? readable : data->ConsumeIntegralInRange<std::size_t>(0, 6);
    const std::vector<float> values = repeated(takeFloats(data, 24), rows * headCount);
    setResults(values, headCount);

    const Heads before = {{-1.0}};
    Heads heads = before;
    const Error error = predictor->predictHeads(peptidoforms, &heads);
    QList<double> times = {-1.0};
    const Error single = predictor->predict(peptidoforms, &times);
    require(error.hasError() == (readable > 0 && rows != readable), "a network has to give as many rows as it took");
    require(single.hasError() == error.hasError(), "times fail where all outputs do");
    if (error.hasError()) {
        require(heads == before && times == QList<double>{-1.0}, "a failure leaves the output as it was");
        return;
    }
    require(bytesOf(heads) == bytesOf(naiveHeads(peptidoforms, values, headCount)), "each has its own outputs");
    require(error.warnings().isEmpty() == false || static_cast<qsizetype>(readable) == peptidoforms.size(),
            "what cannot be read is told");
    require(times.size() == heads.size(), "there is a time for every peptidoform");
    for (qsizetype i = 0; i < times.size(); ++i)
        require(heads[i].isEmpty() ? std::isnan(times[i]) : bits(times[i]) == bits(heads[i].first()),
                "the first output is the time");
}

} // namespace

void tryInput(const QByteArray &input)
{
    FuzzedDataProvider data = dataOf(input);
    withPredictor([&data](RetentionTimePredictor *predictor) { tryPeptidoforms(predictor, &data); });
}

} // namespace zav::fuzz
