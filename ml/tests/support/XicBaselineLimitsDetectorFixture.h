// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramNetwork.h"
#include "Trail.h"
#include "XicBaselineLimitsDetector_p.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace zav {

/// The unit tests' view of Private.
class XicBaselineLimitsDetectorInspector
{
public:
    using Private = XicBaselineLimitsDetector::Private;
    static Private &of(XicBaselineLimitsDetector &detector) { return *detector.d; }
};

using Network = ChromatogramNetwork;
using Intervals = Result<QList<Interval<double>>>;

inline constexpr double NO_HINT = -1.0;
inline constexpr int LENGTH = 256;

inline QStringList linesOf(const Error &error)
{
    QStringList lines;
    for (const CaughtAt &place : error.trail())
        lines.append(place.sourceFile.section(QLatin1Char('/'), -1) + QLatin1Char(':') + QString::number(place.line));
    return lines;
}

class XicBaselineLimitsDetectorTest : public ::testing::Test
{
protected:
    /// Raw intensities, so that the network's probabilities are the intensities over their maximum.
    XicBaselineLimitsDetectorOptions plainOptions(const GraphDefBuilder &graph)
    {
        XicBaselineLimitsDetectorOptions options;
        options.modelFilePath = network.write(graph);
        options.maxPointCount = LENGTH;
        options.smoothingPassCount = 0;
        options.probabilityTolerance = 0.5;
        return options;
    }

    void initialise(const XicBaselineLimitsDetectorOptions &options)
    {
        const Error error = detector.init(options);
        ASSERT_FALSE(error.hasError()) << error.toString().toStdString();
    }

    void initialise(const GraphDefBuilder &graph = Network::identity()) { initialise(plainOptions(graph)); }

    Intervals found(const std::vector<double> &intensities, double hint = NO_HINT, int retryDepth = 0)
    {
        return detector.integrateXIC(Network::chromatogram(intensities), hint, retryDepth);
    }

    XicBaselineLimitsDetectorInspector::Private &inside() { return XicBaselineLimitsDetectorInspector::of(detector); }

    Network network;
    XicBaselineLimitsDetector detector;
};

/// 1 at the indices, 0 elsewhere.
inline std::vector<double> markedAt(const std::vector<int> &indices, int size = 40)
{
    std::vector<double> values(size, 0.0);
    for (const int index : indices)
        values[index] = 1.0;
    return values;
}

inline void expectIntervals(const std::vector<std::pair<int, int>> &expected, const Intervals &actual)
{
    ASSERT_FALSE(actual.hasError()) << actual.error().toString().toStdString();
    ASSERT_EQ(static_cast<qsizetype>(expected.size()), actual.value().size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(Network::timeOf(expected[i].first), actual.value()[i].start) << "interval " << i;
        EXPECT_EQ(Network::timeOf(expected[i].second), actual.value()[i].end) << "interval " << i;
    }
}

inline void expectFailure(ErrorCode code, const QString &message, const QStringList &lines, const Intervals &actual)
{
    ASSERT_TRUE(actual.hasError());
    EXPECT_EQ(code, actual.error().code());
    EXPECT_EQ(message, actual.error().message());
    const QStringList all = linesOf(actual.error());
    EXPECT_EQ(lines, all.mid(all.size() - lines.size())) << actual.error().toString();
}

} // namespace zav
