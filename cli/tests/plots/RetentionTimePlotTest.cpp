// SPDX-License-Identifier: Apache-2.0
#include "RetentionTimePlot.h"
#include "PictureApplication.h"
#include "SvgPicture.h"
#include "TemporaryFiles.h"

#include <QtGui/QImage>

#include <cmath>
#include <limits>

namespace zav {
namespace {

constexpr char BLUE[] = "#0072b2";
constexpr char VERMILION[] = "#d55e00";
constexpr char SKY_BLUE[] = "#56b4e9";
constexpr char TEXT_GREY[] = "#222222";

/// Pairs on the line 10 + 0.5 x, one of them 8 above it.
RetentionTimePlotData lineWithOneFarPair()
{
    RetentionTimePlotData data;
    data.source = QStringLiteral("observed.tsv");
    for (int index = 0; index <= 100; index += 5)
        data.pairs.append({double(index), 10 + 0.5 * index + (index == 50 ? 8 : 0)});
    data.timeAt = [](double index) { return 10 + 0.5 * index; };
    data.width95 = 6;
    data.outlierCount = 1;
    return data;
}

struct RetentionTimePlot : testing::Test
{
    TemporaryFiles files;

    SvgPicture draw(const RetentionTimePlotData &data)
    {
        const Error error = drawRetentionTimes(data, files.path("a.svg"));
        EXPECT_FALSE(error.hasError()) << error.toString().toStdString();
        return parseSvg(files.read("a.svg"));
    }

    static const SvgShape &only(const QList<SvgShape> &shapes, const char *color)
    {
        const auto found = std::find_if(shapes.begin(), shapes.end(),
                                        [&](const SvgShape &shape) { return shape.color == QLatin1String(color); });
        static const SvgShape none;
        EXPECT_NE(found, shapes.end());
        return found == shapes.end() ? none : *found;
    }
};

TEST_F(RetentionTimePlot, SaysItsFiguresSourceAndAxesInText)
{
    const SvgPicture picture = draw(lineWithOneFarPair());
    for (const char *text : {"21 pairs, 1 outlier, 95 % of the others within ±3 of the curve", "observed.tsv",
                             "Observed time", "Predicted index (about iRT)", "fitted curve", "95 %", "outside"})
        EXPECT_TRUE(picture.texts.contains(QString::fromUtf8(text))) << text;
}

TEST_F(RetentionTimePlot, DrawsEachPairAndMarksTheOneOutsideTheBand)
{
    const SvgPicture picture = draw(lineWithOneFarPair());
    EXPECT_EQ(picture.circles, 21);
    EXPECT_TRUE(picture.source.contains(BLUE));
    EXPECT_TRUE(picture.source.contains(VERMILION));
}

TEST_F(RetentionTimePlot, DrawsTheBandAroundTheCurve)
{
    const SvgPicture picture = draw(lineWithOneFarPair());
    const SvgShape &curve = only(picture.polylines, TEXT_GREY);
    const SvgShape &band = only(picture.areas, SKY_BLUE);
    ASSERT_GT(curve.points.size(), 100);
    // From left to right and rising, that is with falling y on the page.
    for (qsizetype i = 1; i < curve.points.size(); ++i) {
        EXPECT_GT(curve.points[i].x(), curve.points[i - 1].x());
        EXPECT_LT(curve.points[i].y(), curve.points[i - 1].y());
    }
    // The curve spans 53 units of time over its height on the page; half the band is 3.
    const double unit = (curve.points.first().y() - curve.points.last().y()) / (0.5 * 106);
    EXPECT_NEAR(curve.points.first().y() - band.points.first().y(), 3 * unit, 0.1);
    EXPECT_NEAR(band.points.at(band.points.size() - 2).y() - curve.points.first().y(), 3 * unit, 0.3);
}

TEST_F(RetentionTimePlot, CountsPairsThatLieFarOutside)
{
    RetentionTimePlotData data = lineWithOneFarPair();
    data.pairs.append({50, 1e9});
    data.pairs.append({std::numeric_limits<double>::quiet_NaN(), 20});
    const SvgPicture picture = draw(data);
    EXPECT_EQ(picture.circles, 21);
    EXPECT_TRUE(picture.texts.contains("2 of 23 pairs are outside the picture"));
}

TEST_F(RetentionTimePlot, DrawsPairsThatShareAPixelOnce)
{
    RetentionTimePlotData data = lineWithOneFarPair();
    for (int i = 0; i < 10000; ++i)
        data.pairs.append({25.0, 22.5});
    EXPECT_EQ(draw(data).circles, 21);
}

TEST_F(RetentionTimePlot, DrawsWithoutPairs)
{
    RetentionTimePlotData data = lineWithOneFarPair();
    data.pairs.clear();
    EXPECT_EQ(draw(data).circles, 0);
}

TEST_F(RetentionTimePlot, WritesAnImage)
{
    ASSERT_FALSE(drawRetentionTimes(lineWithOneFarPair(), files.path("a.png")).hasError());
    EXPECT_EQ(QImage(files.path("a.png")).size(), QSize(1520, 1240));
    EXPECT_EQ(drawRetentionTimes(lineWithOneFarPair(), files.path("a.gif")).code(), InvalidInput);
}

} // namespace
} // namespace zav
