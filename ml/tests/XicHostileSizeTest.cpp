// SPDX-License-Identifier: Apache-2.0
//
// Chromatograms of one to twenty thousand points whose times descend, stand still or are no numbers, through the
// walk, the network's limits and the splits. Ten million points are a benchmark's matter.
#include "XicBaselineLimitsDetectorFixture.h"

#include <zav/XicPeakSplitter.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace zav {
namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();

struct Hostility
{
    const char *name;
    double (*time)(int index);
    double (*intensity)(int index, int count);
};

double ascending(int index)
{
    return 0.5 * index;
}

double descending(int index)
{
    return -0.5 * index;
}

double standingStill(int /*index*/)
{
    return 7;
}

double onePeak(int index, int count)
{
    const double distance = (index - 0.5 * count) / (0.05 * count + 1);
    return 1000 * std::exp(-0.5 * distance * distance);
}

const Hostility HOSTILITIES[] = {
    {"AscendingTimes", ascending, onePeak},
    {"DescendingTimes", descending, onePeak},
    {"EqualTimes", standingStill, onePeak},
    {"TimesToAndFro", [](int index) { return index % 2 == 0 ? 0.5 * index : -0.5 * index; }, onePeak},
    {"TimesThatAreNoNumbers", [](int /*index*/) { return NOT_A_NUMBER; }, onePeak},
    {"InfiniteTimes", [](int index) { return index % 2 == 0 ? INFINITE : -INFINITE; }, onePeak},
    {"IntensitiesThatAreNoNumbers", ascending, [](int /*index*/, int /*count*/) { return NOT_A_NUMBER; }},
    {"InfiniteIntensities", ascending, [](int index, int /*count*/) { return index % 3 == 0 ? INFINITE : -INFINITE; }},
    {"OneInfiniteIntensity", ascending,
     [](int index, int count) { return index == count / 2 ? INFINITE : onePeak(index, count); }},
    {"LargestIntensities", ascending,
     [](int index, int /*count*/) { return (index % 2 == 0 ? 1 : -1) * std::numeric_limits<double>::max(); }},
    {"NoIntensity", ascending, [](int /*index*/, int /*count*/) { return 0.0; }},
    {"SawTeeth", ascending, [](int index, int /*count*/) { return index % 2 == 0 ? 1000.0 : 0.0; }},
};

class XicHostileSizeTest : public testing::TestWithParam<Hostility>
{
protected:
    void SetUp() override
    {
        XicBaselineLimitsDetectorOptions limitsOptions;
        limitsOptions.modelFilePath = network.write(Network::identity());
        limitsOptions.maxPointCount = LENGTH;
        ASSERT_FALSE(detector.init(limitsOptions).hasError());
        XicPeakSplitterOptions splitOptions;
        splitOptions.modelFilePath = limitsOptions.modelFilePath;
        splitOptions.maxPointCount = LENGTH;
        ASSERT_FALSE(splitter.init(splitOptions).hasError());
    }

    static QList<QPointF> trace(const Hostility &hostility, int count)
    {
        QList<QPointF> points;
        for (int i = 0; i < count; ++i)
            points.append({hostility.time(i), hostility.intensity(i, count)});
        return points;
    }

    static bool isTimeOf(const QList<QPointF> &points, double time)
    {
        return std::any_of(points.begin(), points.end(), [&](const QPointF &point) {
            return point.x() == time || (std::isnan(point.x()) && std::isnan(time));
        });
    }

    // Limits are times of the trace, or the trace's order is refused.
    static void expectLimits(const Hostility &hostility, const QList<QPointF> &points, const Intervals &limits)
    {
        if (limits.hasError()) {
            EXPECT_EQ(limits.error().message(), QStringLiteral("Start is greater than end"));
            EXPECT_TRUE(limits.error().equals(InvalidInput));
            EXPECT_FALSE(hostility.time == ascending || hostility.time == standingStill);
            return;
        }
        EXPECT_LE(limits.value().size(), LENGTH);
        for (const Interval<double> &peak : limits.value()) {
            ASSERT_FALSE(peak.start > peak.end);
            ASSERT_TRUE(isTimeOf(points, peak.start) && isTimeOf(points, peak.end));
        }
    }

    Network network;
    XicBaselineLimitsDetector detector;
    XicPeakSplitter splitter;
};

TEST_P(XicHostileSizeTest, AnswersAreTimesOfTheTraceWhateverItsLength)
{
    for (const int count : {1, 2, 3, 4, 5, 6, 7, LENGTH - 200, LENGTH - 1, LENGTH, LENGTH + 1, 20000}) {
        SCOPED_TRACE(count);
        const QList<QPointF> points = trace(GetParam(), count);
        expectLimits(GetParam(), points, detector.integrateXIC(points));
        expectLimits(GetParam(), points, detector.integrateXIC(points, NO_HINT, 0));
        expectLimits(GetParam(), points, detector.integrateXIC(points, 3.25, 0));
        const Result<QList<std::pair<double, double>>> splits = splitter.splitXIC(points);
        ASSERT_FALSE(splits.hasError()) << splits.error().toString().toStdString();
        EXPECT_LE(splits.value().size(), 4);
        for (const auto &split : splits.value())
            EXPECT_TRUE(isTimeOf(points, split.first));
    }
}

INSTANTIATE_TEST_SUITE_P(Traces, XicHostileSizeTest, testing::ValuesIn(HOSTILITIES),
                         [](const auto &hostility) { return std::string(hostility.param.name); });

TEST_F(XicBaselineLimitsDetectorTest, DescendingTimesWithinAPeakAreRefusedByWalkAndNetwork)
{
    initialise();
    QList<QPointF> points = Network::chromatogram(markedAt({10, 11, 12}));
    std::for_each(points.begin(), points.end(), [](QPointF &point) { point.setX(-point.x()); });
    const QString message = QStringLiteral("Start is greater than end");
    expectFailure(InvalidInput, message, {}, detector.integrateXIC(points));
    expectFailure(InvalidInput, message, {}, detector.integrateXIC(points, NO_HINT, 0));
}

TEST_F(XicBaselineLimitsDetectorTest, EqualTimesGiveLimitsWithoutExtent)
{
    initialise();
    QList<QPointF> points = Network::chromatogram(markedAt({10, 11, 12}));
    std::for_each(points.begin(), points.end(), [](QPointF &point) { point.setX(7); });
    for (const Intervals &limits : {detector.integrateXIC(points), detector.integrateXIC(points, NO_HINT, 0)}) {
        ASSERT_FALSE(limits.hasError());
        ASSERT_EQ(limits.value().size(), 1);
        EXPECT_EQ(limits.value().first().start, 7);
        EXPECT_EQ(limits.value().first().end, 7);
    }
}

TEST_F(XicBaselineLimitsDetectorTest, IntensitiesThatAreNoNumbersHoldNoPeak)
{
    initialise();
    for (const int count : {6, LENGTH}) {
        const QList<QPointF> points = Network::chromatogram(std::vector<double>(count, NOT_A_NUMBER));
        expectIntervals({}, detector.integrateXIC(points, NO_HINT, 0));
        expectIntervals({}, detector.integrateXIC(points));
    }
}

TEST_F(XicBaselineLimitsDetectorTest, SinglePointHoldsNoPeak)
{
    initialise();
    for (const double intensity : {0.0, 1.0, 1e300, -5.0, INFINITE, NOT_A_NUMBER}) {
        expectIntervals({}, detector.integrateXIC({{1, intensity}}, NO_HINT, 0));
        expectIntervals({}, detector.integrateXIC({{1, intensity}}));
    }
}

} // namespace
} // namespace zav
