// SPDX-License-Identifier: Apache-2.0
//
// Door: points for the splits of a trace, with the outputs of the network from the fuzzer.
// Promises: four splits at most, each a time of the trace with a probability of the network that is high enough, the
// nearest to 1 first; nothing leaks.
#include "PredictorSupport.h"

#include <zav/XicPeakSplitter.h>

namespace zav::fuzz {
namespace {

void requireSplits(const QList<std::pair<double, double>> &splits, const QList<QPointF> &points,
                   const std::vector<float> &values, double lowest)
{
    require(splits.size() <= 4, "there are four splits at most");
    double last = 0.0;
    for (const auto &[time, probability] : splits) {
        require(isTimeOf(points, time), "a split is a time of the trace");
        require(probability >= lowest, "a split is probable enough");
        require(std::find(values.begin(), values.end(), static_cast<float>(probability)) != values.end(),
                "its probability is the network's");
        require(std::abs(1.0 - probability) >= last, "the nearest to 1 comes first");
        last = std::abs(1.0 - probability);
    }
}

} // namespace

void tryInput(const QByteArray &input)
{
    FuzzedDataProvider data = dataOf(input);
    XicPeakSplitterOptions options;
    options.modelFilePath = fileWith("network.pb", "graph");
    options.maxPointCount = data.ConsumeIntegralInRange(201, 260);
    options.probabilityTolerance = data.ConsumeProbability<double>();
    options.smoothingPassCount = data.ConsumeIntegralInRange(0, 3);
    options.gaussianFilterSize = data.ConsumeIntegralInRange(1, 20);
    const bool anyTimes = data.ConsumeBool();
    const QList<QPointF> points = takePoints(&data, 400, anyTimes);
    const std::vector<float> values = takeFloats(&data, 300);
    runtime().operations = {{"init"}, {"import/img", 1, {-1, 1, 1}}, {"import/conv2d_19/Sigmoid"}};
    runtime().results = values;
    {
        XicPeakSplitter splitter;
        require(!splitter.init(options).hasError(), "options in their ranges are taken");
        const auto splits = splitter.splitXIC(points);
        if (!splits.hasError())
            requireSplits(splits.value(), points, values, 1.0 - options.probabilityTolerance);
    }
    requireNothingLives();
}

} // namespace zav::fuzz
