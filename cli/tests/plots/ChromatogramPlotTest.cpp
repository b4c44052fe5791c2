// SPDX-License-Identifier: Apache-2.0
#include "ChromatogramPlot.h"
#include "PictureApplication.h"
#include "SvgPicture.h"
#include "TemporaryFiles.h"

#include <QtGui/QImage>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <thread>
#include <vector>

namespace zav {
namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();

constexpr char TRACE[] = "#222222";
constexpr char BLUE[] = "#0072b2";
constexpr char SKY_BLUE[] = "#56b4e9";
constexpr char VERMILION[] = "#d55e00";

constexpr double HALF_A_LINE = 0.05; // page units: the places in a file are rounded to six figures

// Two triangles on a flat trace of 100 counts: 10 to 14 min with its tip of 900 at 12, 14 to 18 with 500 at 16.
ChromatogramPlotData twoPeaks()
{
    ChromatogramPlotData data;
    data.id = QStringLiteral("LGEYGFQNALIVR/2 y7");
    data.source = QStringLiteral("run.mzML, m/z 740.4 ± 10 ppm");
    data.points = {{8, 100}, {10, 100}, {12, 900}, {14, 100}, {16, 500}, {18, 100}, {20, 100}};
    data.timeUnit = QStringLiteral("min");
    data.intensityUnit = QStringLiteral("counts");
    data.peaks = {{10, 14, 12}, {14, 18, 16}};
    data.splits = {{14, 0.934}};
    return data;
}

// The places of an axis's ticks with their numbers, read back from the picture.
struct Axis
{
    double firstValue = 0;
    double firstPlace = 0;
    double perUnit = 0;

    double at(double value) const { return firstPlace + (value - firstValue) * perUnit; }
};

struct ChromatogramPlot : testing::Test
{
    TemporaryFiles files;

    SvgPicture draw(const ChromatogramPlotData &data)
    {
        const Error error = drawChromatogram(data, files.path("a.svg"));
        EXPECT_FALSE(error.hasError()) << error.toString().toStdString();
        return parseSvg(files.read("a.svg"));
    }

    // Two ticks of known number tell where the others are. Ticks are lines of 5 page units.
    static Axis axis(const SvgPicture &picture, bool isBottom, double firstValue, double secondValue)
    {
        QList<double> places;
        for (const SvgLine &line : picture.lines) {
            const QPointF length = line.to - line.from;
            if (isBottom && length == QPointF(0, 5))
                places.append(line.from.x());
            if (!isBottom && length == QPointF(5, 0))
                places.append(line.from.y());
        }
        std::sort(places.begin(), places.end());
        if (!isBottom)
            std::reverse(places.begin(), places.end()); // upward
        EXPECT_GE(places.size(), 2);
        if (places.size() < 2)
            return {};
        return {firstValue, places[0], (places[1] - places[0]) / (secondValue - firstValue)};
    }
};

TEST_F(ChromatogramPlot, SaysWhatItShowsInText)
{
    const SvgPicture picture = draw(twoPeaks());
    for (const char *text :
         {"LGEYGFQNALIVR/2 y7", "run.mzML, m/z 740.4 ± 10 ppm", "Retention time (min)", "Intensity (counts)", "12.00",
          "16.00", "0.93", "peak", "between its ends", "split, probability", "800", "20"})
        EXPECT_TRUE(picture.texts.contains(QString::fromUtf8(text))) << text;
    EXPECT_TRUE(picture.source.contains("<title>LGEYGFQNALIVR/2 y7</title>"));
}

TEST_F(ChromatogramPlot, TraceRunsThroughItsPointsWhereTheAxesSay)
{
    const ChromatogramPlotData data = twoPeaks();
    const SvgPicture picture = draw(data);
    ASSERT_TRUE(picture.texts.contains("8") && picture.texts.contains("10"));
    ASSERT_TRUE(picture.texts.contains("0") && picture.texts.contains("100"));
    const Axis time = axis(picture, true, 8, 10);
    const Axis intensity = axis(picture, false, 0, 100);
    const auto trace = std::find_if(picture.polylines.begin(), picture.polylines.end(),
                                    [](const SvgShape &line) { return line.color == TRACE; });
    ASSERT_NE(trace, picture.polylines.end());
    ASSERT_EQ(trace->points.size(), data.points.size());
    for (qsizetype i = 0; i < data.points.size(); ++i) {
        EXPECT_NEAR(trace->points[i].x(), time.at(data.points[i].x()), HALF_A_LINE);
        EXPECT_NEAR(trace->points[i].y(), intensity.at(data.points[i].y()), HALF_A_LINE);
    }
    EXPECT_GT(time.at(20) - time.at(8), 700);
    EXPECT_GT(intensity.at(0) - intensity.at(900), 250);
    EXPECT_EQ(picture.circles, data.points.size()); // so few points are seen one by one
}

TEST_F(ChromatogramPlot, PeaksAreShadedBetweenTheirLimitsAndOverTheLineBetweenTheirEnds)
{
    const SvgPicture picture = draw(twoPeaks());
    const Axis time = axis(picture, true, 8, 10);
    const Axis intensity = axis(picture, false, 0, 100);
    ASSERT_EQ(picture.areas.size(), 2);
    EXPECT_EQ(picture.areas[0].color, BLUE);
    EXPECT_EQ(picture.areas[1].color, SKY_BLUE);
    const QList<QPointF> &first = picture.areas[0].points;
    for (const QPointF &corner : {QPointF(10, 100), QPointF(12, 900), QPointF(14, 100)}) {
        const QPointF place(time.at(corner.x()), intensity.at(corner.y()));
        EXPECT_TRUE(std::any_of(first.begin(), first.end(), [&](const QPointF &point) {
            return (point - place).manhattanLength() < HALF_A_LINE;
        })) << corner.x();
    }
    QList<SvgLine> betweenEnds;
    for (const SvgLine &line : picture.lines) {
        if (line.color == BLUE && std::abs(line.from.y() - intensity.at(100)) < HALF_A_LINE)
            betweenEnds.append(line);
    }
    ASSERT_EQ(betweenEnds.size(), 2);
    EXPECT_NEAR(betweenEnds[0].from.x(), time.at(10), HALF_A_LINE);
    EXPECT_NEAR(betweenEnds[0].to.x(), time.at(14), HALF_A_LINE);
    int bands = 0;
    for (const SvgShape &rectangle : picture.rectangles) {
        if (rectangle.opacity < 0.5 && std::abs(rectangle.points[0].x() - time.at(14)) < HALF_A_LINE)
            bands += std::abs(rectangle.points[1].x() - time.at(18)) < HALF_A_LINE ? 1 : 0;
    }
    EXPECT_EQ(bands, 1);
}

TEST_F(ChromatogramPlot, SplitIsADashedLineAtItsTime)
{
    const SvgPicture picture = draw(twoPeaks());
    const QList<SvgLine> splits = picture.verticals(VERMILION);
    ASSERT_EQ(splits.size(), 1);
    EXPECT_TRUE(splits[0].isDashed);
    EXPECT_NEAR(splits[0].from.x(), axis(picture, true, 8, 10).at(14), HALF_A_LINE);
}

TEST_F(ChromatogramPlot, LegendNamesOnlyWhatIsDrawn)
{
    ChromatogramPlotData data = twoPeaks();
    data.splits.clear();
    EXPECT_FALSE(draw(data).texts.contains("split, probability"));
    EXPECT_TRUE(draw(data).texts.contains("peak"));
    data.peaks.clear();
    EXPECT_FALSE(draw(data).texts.contains("peak"));
}

TEST_F(ChromatogramPlot, UnknownUnitsAreLeftOut)
{
    ChromatogramPlotData data = twoPeaks();
    data.timeUnit.clear();
    data.intensityUnit.clear();
    const SvgPicture picture = draw(data);
    EXPECT_TRUE(picture.texts.contains("Retention time"));
    EXPECT_TRUE(picture.texts.contains("Intensity"));
}

TEST_F(ChromatogramPlot, LongIdentifierIsWrappedOnceAndKeepsItsEnd)
{
    ChromatogramPlotData data = twoPeaks();
    data.id = QStringLiteral("- SRM SIC Q1=651.83 Q3=790.4 sample=1 period=1 experiment=1 transition=12 ").repeated(6) +
              QStringLiteral("last=7");
    const QStringList texts = draw(data).texts;
    ASSERT_GE(texts.size(), 3);
    EXPECT_TRUE(texts[0].startsWith("- SRM SIC Q1=651.83 Q3=790.4"));
    EXPECT_TRUE(texts[1].endsWith("last=7"));
    EXPECT_TRUE(texts[1].contains(QChar(u'…')));
    EXPECT_EQ(texts[2], data.source);
    data.id = QString(100000, u'W'); // no blank to break at
    EXPECT_TRUE(draw(data).texts[1].contains(QChar(u'…')));
}

TEST_F(ChromatogramPlot, IdentifierOfAnyCharactersGivesAWellFormedFile)
{
    ChromatogramPlotData data = twoPeaks();
    data.id = QStringLiteral("a<b>&\"c\"\n\td") + QChar(1) + QChar(0xD800) + QChar(0xFFFF);
    const SvgPicture picture = draw(data);
    EXPECT_TRUE(picture.texts[0].startsWith("a<b>&\"c\" d"));
    EXPECT_FALSE(picture.source.contains('\x01'));
}

TEST_F(ChromatogramPlot, LongTraceKeepsItsLookInASmallFile)
{
    ChromatogramPlotData data = twoPeaks();
    data.points.clear();
    for (int i = 0; i < 100000; ++i)
        data.points.append({i * 0.001, 100 + i % 7 * 10.0});
    data.points[43210].setY(5000); // one point among 124 that share a pixel
    data.peaks = {{40, 50, 43.21}};
    const SvgPicture picture = draw(data);
    EXPECT_LT(picture.source.size(), 300000);
    double top = INFINITE;
    for (const SvgShape &line : picture.polylines) {
        for (const QPointF &point : line.points)
            top = std::min(top, point.y());
    }
    ASSERT_TRUE(picture.texts.contains("0") && picture.texts.contains("1000") && !picture.texts.contains("500"));
    EXPECT_NEAR(top, axis(picture, false, 0, 1000).at(5000), HALF_A_LINE);
    EXPECT_TRUE(picture.texts.contains("43.21"));
    EXPECT_EQ(picture.circles, 0);
}

TEST_F(ChromatogramPlot, PointsWithoutAPlaceBreakTheTraceAndAreCounted)
{
    ChromatogramPlotData data = twoPeaks();
    data.points[3].setY(NOT_A_NUMBER);
    data.points.append({INFINITE, 3});
    data.points.append({21, -INFINITE});
    const SvgPicture picture = draw(data);
    EXPECT_TRUE(picture.texts.contains("3 of 9 points are not finite"));
    EXPECT_EQ(std::count_if(picture.polylines.begin(), picture.polylines.end(),
                            [](const SvgShape &line) { return line.color == TRACE && line.points.size() == 3; }),
              2);
}

TEST_F(ChromatogramPlot, PeaksAndSplitsOutsideTheTraceAreNotDrawn)
{
    ChromatogramPlotData data = twoPeaks();
    data.peaks = {{-5, -1, -3}, {30, 40, 35}, {14, 10, 12}, {NOT_A_NUMBER, 12, 11}, {12, NOT_A_NUMBER, 13}};
    data.splits = {{-1, 0.9}, {99, 0.9}, {NOT_A_NUMBER, 0.9}, {INFINITE, 0.9}};
    const SvgPicture outside = draw(data);
    EXPECT_TRUE(outside.areas.isEmpty());
    EXPECT_TRUE(outside.verticals(VERMILION).isEmpty());
    data.peaks = {{-INFINITE, INFINITE, NOT_A_NUMBER}, {18, 500, 400}};
    data.splits = {{12, NOT_A_NUMBER}};
    const SvgPicture across = draw(data);
    EXPECT_EQ(across.areas.size(), 2);
    EXPECT_EQ(across.verticals(VERMILION).size(), 1);
    EXPECT_FALSE(across.texts.contains("nan"));
}

TEST_F(ChromatogramPlot, ManyPeaksAreLimitedAndThePictureSaysSo)
{
    ChromatogramPlotData data = twoPeaks();
    data.peaks.clear();
    for (int i = 0; i < 501; ++i)
        data.peaks.append({8 + i * 0.02, 8 + i * 0.02 + 0.015, 8 + i * 0.02 + 0.01});
    data.splits = QList<ChromatogramPlotSplit>(600, {12, 0.9});
    const SvgPicture picture = draw(data);
    EXPECT_TRUE(picture.texts.contains("500 of 501 peaks, 500 of 600 splits"));
    EXPECT_EQ(picture.verticals(VERMILION).size(), 500);
}

TEST_F(ChromatogramPlot, OddTracesAreDrawnInEveryFormat)
{
    const QList<QPointF> traces[] = {{},
                                     {{23.4, 1234}},
                                     {{1, 0}, {2, 0}, {3, 0}},
                                     {{5, 1}, {5, 2}, {5, 3}},
                                     {{3, 1}, {2, 7}, {1, 1}},
                                     {{1, -5}, {2, -9}, {3, -1}},
                                     {{NOT_A_NUMBER, 1}, {2, INFINITE}},
                                     {{1e308, 1e308}, {-1e300, -1e300}, {1e300, 1e300}},
                                     {{1e-320, 1e-320}, {2e-320, 3e-320}},
                                     {{1e9, 1}, {1e9 + 1e-3, 2}}};
    for (const QList<QPointF> &points : traces) {
        ChromatogramPlotData data = twoPeaks();
        data.points = points;
        for (const QPointF &point : points)
            data.peaks.append({point.x() - 1, point.x(), point.x()});
        draw(data);
        EXPECT_FALSE(drawChromatogram(data, files.path("a.png")).hasError());
        EXPECT_FALSE(drawChromatogram(data, files.path("a.pdf")).hasError());
    }
    ChromatogramPlotData empty;
    EXPECT_TRUE(draw(empty).texts.contains("no points"));
}

TEST_F(ChromatogramPlot, SinglePointIsADot)
{
    ChromatogramPlotData data = twoPeaks();
    data.points = {{23.4, 1234}};
    EXPECT_EQ(draw(data).circles, 1);
}

TEST_F(ChromatogramPlot, PngHasTwoPixelsForEachPageUnitAndItsColours)
{
    ASSERT_FALSE(drawChromatogram(twoPeaks(), files.path("a.PNG")).hasError());
    const QImage image = QImage::fromData(files.read("a.PNG"), "PNG");
    EXPECT_EQ(image.size(), QSize(1800, 920));
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::white));
    bool hasSplit = false;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width() / 2 + 100; ++x)
            hasSplit = hasSplit || image.pixelColor(x, y) == QColor(VERMILION);
    }
    EXPECT_TRUE(hasSplit);
}

TEST_F(ChromatogramPlot, PdfIsOnePageOfThePicturesSize)
{
    ASSERT_FALSE(drawChromatogram(twoPeaks(), files.path("a.pdf")).hasError());
    const QByteArray pdf = files.read("a.pdf");
    EXPECT_TRUE(pdf.startsWith("%PDF-"));
    EXPECT_TRUE(pdf.trimmed().endsWith("%%EOF"));
    EXPECT_TRUE(
        pdf.contains("/MediaBox [0 0 675.000000 345.000000]")); // 900 x 460 units of 1/96 inch in points of 1/72
    EXPECT_TRUE(pdf.contains("/Count 1"));
}

TEST_F(ChromatogramPlot, OtherEndingsAndPlacesThatCannotBeWrittenAreErrors)
{
    const Error ending = drawChromatogram(twoPeaks(), QStringLiteral("a.gif"));
    EXPECT_TRUE(ending.equals(InvalidInput));
    EXPECT_EQ(ending.message(), "a.gif: pictures are written to .svg, .png or .pdf files");
    for (const char *name : {"no/a.svg", "no/a.png", "no/a.pdf"}) {
        const Error error = drawChromatogram(twoPeaks(), files.path(name));
        EXPECT_TRUE(error.equals(Failure)) << name;
        EXPECT_TRUE(error.message().startsWith("cannot write " + files.path(name) + ": "))
            << error.message().toStdString();
    }
}

TEST_F(ChromatogramPlot, ThreadsDrawSideBySide)
{
    draw(twoPeaks());
    ASSERT_FALSE(drawChromatogram(twoPeaks(), files.path("a.png")).hasError());
    std::atomic<int> same = 0;
    const auto drawSome = [&](int thread) {
        for (int i = 0; i < 5; ++i) {
            for (const char *format : {"svg", "png"}) {
                const QString name = QStringLiteral("%1_%2.%3").arg(thread).arg(i).arg(QLatin1String(format));
                const Error error = drawChromatogram(twoPeaks(), files.path(name));
                const QString first = QStringLiteral("a.") + QLatin1String(format);
                same += !error.hasError() && files.read(name) == files.read(first) ? 1 : 0;
            }
        }
    };
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back(drawSome, thread);
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(same, 4 * 5 * 2);
}

TEST_F(ChromatogramPlot, SamePictureIsTheSameFile)
{
    draw(twoPeaks());
    const QByteArray first = files.read("a.svg");
    draw(twoPeaks());
    EXPECT_EQ(files.read("a.svg"), first);
    EXPECT_EQ(QDir(files.path(QString())).entryList(QDir::Files), QStringList{"a.svg"});
}

// Two triangles of 900 and 400 counts over a consensus of 600.
ChromatogramPlotData groupOfTwo()
{
    ChromatogramPlotData data = twoPeaks();
    data.id = QStringLiteral("LGEYGFQNALIVR 740.4");
    data.points = {{8, 100}, {12, 600}, {20, 100}};
    data.members = {{QStringLiteral("y7"), {{8, 100}, {12, 900}, {20, 100}}},
                    {QStringLiteral("y8"), {{8, 100}, {12, 400}, {22, 100}}}};
    return data;
}

TEST_F(ChromatogramPlot, MembersOfAGroupHaveTheirColoursOverTheConsensus)
{
    const SvgPicture picture = draw(groupOfTwo());
    QStringList colors;
    for (const SvgShape &line : picture.polylines)
        colors.append(line.color);
    EXPECT_EQ(colors, QStringList({TRACE, BLUE, VERMILION})) << "drawn in this order";
    for (const char *text : {"LGEYGFQNALIVR 740.4", "y7", "y8", "consensus, scaled to the traces", "12.00"})
        EXPECT_TRUE(picture.texts.contains(QString::fromUtf8(text))) << text;
    const Axis time = axis(picture, true, 8, 10);
    const Axis intensity = axis(picture, false, 0, 100);
    EXPECT_NEAR(picture.polylines[1].points[1].y(), intensity.at(900), HALF_A_LINE);
    EXPECT_NEAR(picture.polylines[2].points[2].x(), time.at(22), HALF_A_LINE) << "the axis holds all members";
    EXPECT_EQ(picture.circles, 6) << "points of members, not of the consensus";
}

TEST_F(ChromatogramPlot, LimitsOfAGroupAreShadedOnce)
{
    const SvgPicture picture = draw(groupOfTwo());
    const Axis time = axis(picture, true, 8, 10);
    EXPECT_TRUE(picture.areas.isEmpty());
    int bands = 0;
    for (const SvgShape &rectangle : picture.rectangles) {
        if (rectangle.opacity < 0.5 && std::abs(rectangle.points[0].x() - time.at(10)) < HALF_A_LINE)
            bands += std::abs(rectangle.points[1].x() - time.at(14)) < HALF_A_LINE ? 1 : 0;
    }
    EXPECT_EQ(bands, 1);
}

TEST_F(ChromatogramPlot, ManyMembersHaveDashesAndTheLegendNamesThirty)
{
    ChromatogramPlotData data = groupOfTwo();
    data.members.clear();
    for (int i = 0; i < 40; ++i)
        data.members.append({QStringLiteral("member %1").arg(i), {{8, 100}, {12, 100.0 + 10 * i}, {20, 100}}});
    const SvgPicture picture = draw(data);
    EXPECT_EQ(picture.polylines.size(), 41);
    EXPECT_EQ(picture.polylines[1].color, picture.polylines[7].color);
    EXPECT_TRUE(picture.source.contains("stroke-dasharray"));
    EXPECT_TRUE(picture.texts.contains("member 29"));
    EXPECT_FALSE(picture.texts.contains("member 30"));
    EXPECT_TRUE(picture.texts.contains("30 of 40 traces named"));
}

} // namespace
} // namespace zav
