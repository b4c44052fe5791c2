// SPDX-License-Identifier: Apache-2.0
#include "SplitSearch.h"

#include "PredictorPool.h"
#include "SimulatedTraces.h"

#include <zav/XicPeakSplitter.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace zav {
namespace {

using Pairs = QList<std::pair<double, double>>;

/// A splitter without a network: the lowest points that have `room` points on each side and lie below half of the tops
/// beside them, at most four. Notes the sizes of what it was asked.
class LowestPoints
{
public:
    explicit LowestPoints(int room) : m_room(room) {}

    SplitSearch::Splitter splitter()
    {
        return [this](const QList<QPointF> &points) { return Result<Pairs>(splits(points)); };
    }

    QList<qsizetype> asked; ///< numbers of points

private:
    Pairs splits(const QList<QPointF> &points)
    {
        asked.append(points.size());
        Pairs found;
        for (qsizetype i = m_room; i + m_room < points.size() && found.size() < 4; ++i) {
            if (isValley(points, i))
                found.append({points[i].x(), 0.9});
        }
        return found;
    }

    bool isValley(const QList<QPointF> &points, qsizetype i) const
    {
        double left = 0;
        double right = 0;
        for (qsizetype k = 1; k <= m_room; ++k) {
            left = std::max(left, points[i - k].y());
            right = std::max(right, points[i + k].y());
        }
        const double y = points[i].y();
        return y < points[i - 1].y() && y <= points[i + 1].y() && y < 0.5 * std::min(left, right);
    }

    int m_room;
};

/// Peaks of width 1 in 20 `spacing` apart, the first at half of it, so that valleys are at multiples of `spacing`.
QList<QPointF> crowd(int peaks, int spacing)
{
    QList<QPointF> points;
    for (int i = 0; i < peaks * spacing; ++i)
        points.append({0.5 * i, std::pow(std::sin(3.14159265358979 * (i + 0.01) / spacing), 2) + 0.01});
    return points;
}

QList<double> timesOf(const Result<QList<TraceSplit>> &splits)
{
    QList<double> times;
    for (const TraceSplit &split : splits.value())
        times.append(split.time);
    return times;
}

TEST(SplitSearch, ShortTraceIsAskedOnceAtItsOwnPoints)
{
    LowestPoints lowest(20);
    const auto splits = SplitSearch(512, 4096, 0.8, lowest.splitter()).splitsOf(crowd(3, 100));
    EXPECT_EQ(timesOf(splits), (QList<double>{50, 100}));
    EXPECT_EQ(splits.value().first().probability, 0.9);
    EXPECT_EQ(lowest.asked, QList<qsizetype>{300});
}

TEST(SplitSearch, PiecesAreAskedAgainWhereTheSplitterGaveAllItCan)
{
    LowestPoints lowest(12);
    const auto splits = SplitSearch(512, 4096, 0.8, lowest.splitter()).splitsOf(crowd(12, 40));
    QList<double> valleys;
    for (int i = 1; i < 12; ++i)
        valleys.append(20.0 * i);
    EXPECT_EQ(timesOf(splits), valleys);
}

TEST(SplitSearch, LongTraceIsAveragedToTheCoarsestScaleFirst)
{
    LowestPoints lowest(20);
    const auto splits = SplitSearch(500, 4000, 0.8, lowest.splitter()).splitsOf(crowd(2, 1000));
    ASSERT_EQ(splits.value().size(), 1);
    EXPECT_NEAR(splits.value().first().time, 500, 2); // four points were one
    // Both pieces, of 1,000 and 1,001 points, are searched at the finer scales and stay whole.
    EXPECT_EQ(lowest.asked, (QList<qsizetype>{500, 500, 1000, 501, 1001}));
}

TEST(SplitSearch, FinerScalesAreReadWhereTheCoarseOnesShowNothing)
{
    // 12 points a peak are one point and a half of 8 averaged ones: the valleys show at the finest scale alone.
    LowestPoints lowest(5);
    const auto splits = SplitSearch(64, 4096, 0.8, lowest.splitter()).splitsOf(crowd(40, 12));
    EXPECT_EQ(timesOf(splits).size(), 39);
    EXPECT_EQ(lowest.asked.first(), 60); // 480 points, eight a mean
}

TEST(SplitSearch, TraceLongerThanTheNetworkIsReadInWindowsThatLoseAndRepeatNothing)
{
    LowestPoints lowest(10);
    const QList<QPointF> points = crowd(40, 30);
    const auto splits = SplitSearch(2000, 2000, 0.8, lowest.splitter()).splitsOf(points);
    LowestPoints narrow(10);
    // The coarsest scale is the only one: 1,200 points in windows of 100.
    const auto windows = SplitSearch(100, 100, 0.8, narrow.splitter()).splitsOf(points);
    EXPECT_EQ(timesOf(splits).size(), 39);
    EXPECT_EQ(timesOf(windows), timesOf(splits));
    EXPECT_LE(*std::max_element(narrow.asked.begin(), narrow.asked.end()), 100);
}

TEST(SplitSearch, SplitOfAnAveragedTraceSettlesInTheLowestPointNearby)
{
    QList<QPointF> points = crowd(2, 1000);
    const auto splits = SplitSearch(100, 4000, 0.8, LowestPoints(10).splitter()).splitsOf(points);
    ASSERT_EQ(splits.value().size(), 1);
    EXPECT_NEAR(splits.value().first().time, 500, 1.5); // 20 points were one
}

TEST(SplitSearch, FinerViewOfAPieceMustBeSurer)
{
    // In every view the middle; of the finer ones with the probability that is tried.
    for (const double probability : {0.79, 0.8}) {
        int looks = 0;
        const auto middle = [&](const QList<QPointF> &points) {
            return Result<Pairs>(Pairs{{points[points.size() / 2].x(), ++looks == 1 ? 0.5 : probability}});
        };
        const auto splits = SplitSearch(500, 4000, 0.8, middle).splitsOf(crowd(1, 1000));
        EXPECT_EQ(splits.value().size(), probability < 0.8 ? 1 : 3) << probability;
    }
}

TEST(SplitSearch, PiecesKeepTheScaleAtWhichTheSplitterGaveAllItCan)
{
    LowestPoints lowest(8);
    const auto splits = SplitSearch(480, 4000, 0.8, lowest.splitter()).splitsOf(crowd(12, 80));
    EXPECT_EQ(timesOf(splits).size(), 11);
    // 960 points, two a mean; then the 640 behind the fourth split, still two a mean.
    EXPECT_EQ(lowest.asked.mid(0, 2), (QList<qsizetype>{480, 320}));
}

TEST(SplitSearch, FewerThanFivePointsAreNotAsked)
{
    LowestPoints lowest(1);
    for (int count = 0; count < 5; ++count) {
        const auto splits = SplitSearch(512, 4096, 0.8, lowest.splitter()).splitsOf(crowd(1, 4).mid(0, count));
        EXPECT_TRUE(splits.value().isEmpty()) << count;
    }
    EXPECT_TRUE(lowest.asked.isEmpty());
}

TEST(SplitSearch, EndsWhereTheSplitterSplitsEverything)
{
    // Every point of a view, its ends included.
    const auto everything = [](const QList<QPointF> &points) {
        Pairs found;
        for (qsizetype i = 0; i < std::min<qsizetype>(points.size(), 4); ++i)
            found.append({points[i].x(), 1.0});
        return Result<Pairs>(found);
    };
    const auto splits = SplitSearch(64, 256, 0.8, everything).splitsOf(crowd(10, 100));
    ASSERT_FALSE(splits.hasError());
    QList<double> times = timesOf(splits);
    EXPECT_GT(times.size(), 100);
    EXPECT_EQ(std::adjacent_find(times.begin(), times.end()), times.end());
}

TEST(SplitSearch, ErrorOfTheSplitterEndsTheSearch)
{
    int asked = 0;
    const auto failing = [&asked](const QList<QPointF> &points) -> Result<Pairs> {
        if (++asked == 2)
            return Error(Failure, QStringLiteral("broken"));
        return Pairs{{points[points.size() / 2].x(), 0.9}};
    };
    const auto splits = SplitSearch(100, 4000, 0.8, failing).splitsOf(crowd(2, 1000));
    ASSERT_TRUE(splits.hasError());
    EXPECT_EQ(splits.error().message(), QStringLiteral("broken"));
    EXPECT_EQ(asked, 2);
}

/// With the shipped network: peaks of these many points, three clear valleys, noise of a hundredth.
class ScaledSplits : public ::testing::TestWithParam<int>
{};

TEST_P(ScaledSplits, ClearValleysAreFoundWhateverTheScale)
{
    const int width = GetParam();
    QList<SimulatedPeak> peaks;
    for (int i = 0; i < 4; ++i)
        peaks.append({(1.5 + i) * width, 1000, width / 5.0});
    const QList<QPointF> points = simulatedTrace(6 * width, peaks);
    PredictorPool<XicPeakSplitter, XicPeakSplitterOptions> pool({}, QStringLiteral(ZAV_MODELS "/xic_split.pb"), 0);
    const SplitSearch search(NETWORK_SIZES.front(), NETWORK_SIZES.back(), 0.8, [&pool](const QList<QPointF> &view) {
        return pool.predictor(pool.sizeFor(view.size())).value()->splitXIC(view);
    });
    const auto splits = search.splitsOf(points);
    ASSERT_FALSE(splits.hasError());
    ASSERT_EQ(splits.value().size(), 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(splits.value()[i].time, (2 + i) * width, std::max(1.0, 0.1 * width));
}

INSTANTIATE_TEST_SUITE_P(PointsAPeak, ScaledSplits, ::testing::Values(8, 20, 50, 120, 300, 1000, 3000));

} // namespace
} // namespace zav
