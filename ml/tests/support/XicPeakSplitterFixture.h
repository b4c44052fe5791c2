// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramNetwork.h"
#include "Trail.h"
#include "XicPeakSplitter_p.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace zav {

/// The unit tests' view of Private.
class XicPeakSplitterInspector
{
public:
    using Private = XicPeakSplitter::Private;
    static Private &of(XicPeakSplitter &splitter) { return *splitter.d; }
};

using Network = ChromatogramNetwork;
using Splits = Result<QList<std::pair<double, double>>>;

inline constexpr int LENGTH = 256;

/// The lines of the trail that belong to the splitter.
inline QList<int> splitterLinesOf(const Error &error)
{
    QList<int> lines;
    for (const CaughtAt &place : error.trail()) {
        if (place.sourceFile == QStringLiteral("ml/src/XicPeakSplitter"))
            lines.append(place.line);
    }
    return lines;
}

class XicPeakSplitterTest : public ::testing::Test
{
protected:
    /// Raw intensities, so that the network's probabilities are the intensities over their maximum.
    XicPeakSplitterOptions plainOptions(const GraphDefBuilder &graph, double probabilityTolerance = 0.25)
    {
        XicPeakSplitterOptions options;
        options.modelFilePath = network.write(graph);
        options.maxPointCount = LENGTH;
        options.smoothingPassCount = 0;
        options.probabilityTolerance = probabilityTolerance;
        return options;
    }

    void initialise(const XicPeakSplitterOptions &options)
    {
        const Error error = splitter.init(options);
        ASSERT_FALSE(error.hasError()) << error.toString().toStdString();
    }

    /// With a network that always answers these probabilities, 0 behind them.
    void initialise(std::vector<float> probabilities, double probabilityTolerance = 0.25)
    {
        probabilities.resize(LENGTH, 0.0F);
        initialise(plainOptions(Network::constant(probabilities), probabilityTolerance));
    }

    Splits splitFlat(int size = 20) { return splitter.splitXIC(Network::chromatogram(std::vector<double>(size, 1.0))); }

    XicPeakSplitterInspector::Private &inside() { return XicPeakSplitterInspector::of(splitter); }

    Network network;
    XicPeakSplitter splitter;
};

inline void expectSplits(const std::vector<std::pair<int, float>> &expected, const Splits &actual)
{
    ASSERT_FALSE(actual.hasError()) << actual.error().toString().toStdString();
    ASSERT_EQ(static_cast<qsizetype>(expected.size()), actual.value().size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(Network::timeOf(expected[i].first), actual.value()[i].first) << "split " << i;
        EXPECT_EQ(static_cast<double>(expected[i].second), actual.value()[i].second) << "split " << i;
    }
}

inline void expectFailure(const QList<int> &lines, const Splits &actual)
{
    ASSERT_TRUE(actual.hasError());
    EXPECT_TRUE(actual.error().equals(Failure));
    EXPECT_TRUE(actual.error().message().isEmpty());
    EXPECT_EQ(lines, splitterLinesOf(actual.error())) << actual.error().toString();
}

} // namespace zav
