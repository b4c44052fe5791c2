// SPDX-License-Identifier: Apache-2.0
#include "SpectrumPlot.h"
#include "PeptideMasses.h"
#include "PictureApplication.h"
#include "SvgPicture.h"
#include "TemporaryFiles.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QImage>

#include <algorithm>
#include <cmath>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#endif

namespace zav {
namespace {

const auto *const APPLICATION = testing::AddGlobalTestEnvironment(new PictureApplication);

constexpr char BLUE[] = "#0072b2";
constexpr char VERMILION[] = "#d55e00";
constexpr char PURPLE[] = "#a03c78";
constexpr char UNMATCHED_GREY[] = "#bebebe";

FragmentPeak ion(QChar type, int number, double mz, double intensity, int charge = 1, const QString &loss = {})
{
    FragmentPeak peak;
    peak.ionType = type;
    peak.ionNumber = number;
    peak.mz = mz;
    peak.intensity = intensity;
    peak.charge = charge;
    peak.neutralLoss = loss;
    return peak;
}

SpectrumPlotData peptidek()
{
    SpectrumPlotData data;
    data.peptidoform = Peptidoform(QStringLiteral("PEPTIDEK"));
    data.charge = 2;
    data.precursorMz = 464.7347;
    data.predicted = {ion(u'b', 2, 227.103, 0.5), ion(u'y', 3, 391.182, 1.0), ion(u'y', 6, 351.684, 0.25, 2),
                      ion(u'y', 5, 585.309, 0.4, 1, "-H2O")};
    return data;
}

SpectrumPlotData mirrored()
{
    SpectrumPlotData data = peptidek();
    data.observed = ObservedSpectrum{"run.mzML, scan 7", 464.7, 2, {{227.104, 30}, {391.183, 60}, {500, 15}}};
    data.comparison = compareSpectra({{}, data.peptidoform, 0, 0, data.predicted}, *data.observed);
    return data;
}

struct SpectrumPlot : testing::Test
{
    TemporaryFiles files;

    SvgPicture draw(const SpectrumPlotData &data)
    {
        const Error error = drawSpectrum(data, files.path("a.svg"));
        EXPECT_FALSE(error.hasError()) << error.toString().toStdString();
        return parseSvg(files.read("a.svg"));
    }
};

TEST_F(SpectrumPlot, SaysItsPeptidePrecursorAxesAndIonsInText)
{
    const SvgPicture picture = draw(peptidek());
    for (const char *text : {"2+, m/z 464.7347", "Predicted intensity (%)", "m/z", "100", "b2", "y3", "y6²⁺", "y5-H2O"})
        EXPECT_TRUE(picture.texts.contains(QString::fromUtf8(text))) << text;
    const QString letters = picture.texts.join(QString());
    EXPECT_TRUE(picture.source.contains("<title>PEPTIDEK/2</title>"));
    for (const QChar residue : QStringLiteral("PEPTIDEK"))
        EXPECT_TRUE(picture.texts.contains(QString(residue)));
}

TEST_F(SpectrumPlot, ModificationsAreMarkedWithTheirMassesAndNamed)
{
    SpectrumPlotData data = peptidek();
    data.peptidoform = Peptidoform::fromProForma(QStringLiteral("[Acetyl]-PEPT[Phospho]IDEK[-17.0265]")).value();
    data.collisionEnergy = 27.5;
    const SvgPicture picture = draw(data);
    EXPECT_TRUE(picture.texts.contains(QStringLiteral("2+, NCE 27.5, m/z 464.7347")));
    EXPECT_TRUE(picture.texts.contains(QStringLiteral("Acetyl N-term; Phospho T4; -17.0265 K8")));
    for (const char *mass : {"+42", "+80", "-17"})
        EXPECT_EQ(picture.texts.count(QLatin1String(mass)), 1) << mass;
    EXPECT_TRUE(picture.source.contains(PURPLE));
    EXPECT_FALSE(draw(peptidek()).source.contains(PURPLE)) << "a peptide without modifications has nothing to mark";
}

TEST_F(SpectrumPlot, LongModifiedPeptidesStayOnThePage)
{
    SpectrumPlotData data = peptidek();
    data.peptidoform = withCysteines(QString(52, u'C'), 57.021464);
    const SvgPicture picture = draw(data);
    EXPECT_EQ(picture.texts.count(QStringLiteral("+57")), 52);
    for (const QString &text : picture.texts)
        EXPECT_LT(text.size(), 160) << "the names are shortened to the width of the page";
}

// The axis tells where an m/z lies: its ticks and their numbers are read back, and give each peak's expected place.
TEST_F(SpectrumPlot, PeaksStandWhereTheAxisSaysAtTheirRelativeHeights)
{
    const SpectrumPlotData data = peptidek();
    const SvgPicture picture = draw(data);
    QList<double> tickXs;
    double bottom = 0;
    for (const SvgLine &line : picture.lines)
        bottom =
            std::max(bottom, line.from.y() == line.to.y() && line.to.x() - line.from.x() > 500 ? line.to.y() : 0.0);
    for (const SvgLine &line : picture.lines) {
        if (line.isVertical() && line.from.y() == bottom && line.to.y() > bottom)
            tickXs.append(line.from.x());
    }
    QList<double> tickMzs;
    for (const QString &text : picture.texts) {
        bool isNumber = false;
        const double number = text.toDouble(&isNumber);
        if (isNumber && number > 100) // above the percents, ion numbers and residues
            tickMzs.append(number);
    }
    std::sort(tickXs.begin(), tickXs.end());
    std::sort(tickMzs.begin(), tickMzs.end());
    ASSERT_EQ(tickXs.size(), tickMzs.size());
    ASSERT_GE(tickXs.size(), 3);
    const double scale = (tickXs.constLast() - tickXs.constFirst()) / (tickMzs.constLast() - tickMzs.constFirst());
    const auto expectedX = [&](double mz) { return tickXs.constFirst() + (mz - tickMzs.constFirst()) * scale; };

    const auto peakAt = [&](double mz, const char *color) {
        for (const SvgLine &line : picture.verticals(color)) {
            if (std::abs(line.from.x() - expectedX(mz)) < 0.05 && line.from.y() == bottom)
                return bottom - line.to.y();
        }
        return -1.0;
    };
    const double full = peakAt(391.182, VERMILION);
    EXPECT_GT(full, 200);
    EXPECT_NEAR(peakAt(227.103, BLUE), 0.5 * full, 0.05);
    EXPECT_NEAR(peakAt(351.684, VERMILION), 0.25 * full, 0.05);
    EXPECT_NEAR(peakAt(585.309, "#e8a673"), 0.4 * full, 0.05); // vermilion, 45 % of the way to white
}

TEST_F(SpectrumPlot, MarksTheBondsThatFragmentsComeFrom)
{
    // b2, y3, y6 2+ and no loss: numbers 2 below, 3 and 6 above, each once, besides no other ion numbers.
    const SvgPicture picture = draw(peptidek());
    for (const auto &[number, count] : {std::pair("2", 1), {"3", 1}, {"6", 1}, {"5", 0}, {"1", 0}, {"4", 0}, {"7", 0}})
        EXPECT_EQ(picture.texts.count(QString(number)), count) << number;
}

TEST_F(SpectrumPlot, MirrorPlotShowsTheObservedAboveThePredicted)
{
    const SvgPicture picture = draw(mirrored());
    EXPECT_TRUE(picture.texts.contains("Observed (%)"));
    EXPECT_TRUE(picture.texts.contains("Predicted (%)"));
    EXPECT_TRUE(picture.texts.contains("Observed: run.mzML, scan 7"));
    EXPECT_EQ(picture.texts.count("y3"), 2);
    // The predicted y6 and y5-H2O were not seen.
    EXPECT_EQ(picture.texts.count(QString::fromUtf8("y6²⁺")), 1);
    int above = 0;
    int below = 0;
    for (const SvgLine &line : picture.verticals(VERMILION)) {
        if (std::abs(line.to.y() - line.from.y()) > 30)
            (line.to.y() < line.from.y() ? above : below)++;
    }
    EXPECT_EQ(above, 1);
    EXPECT_EQ(below, 2);
    EXPECT_EQ(picture.verticals(UNMATCHED_GREY).size(), 1);
}

TEST_F(SpectrumPlot, MirrorPlotSaysHowWellTheSpectraAgree)
{
    SpectrumPlotData data = mirrored();
    data.comparison->spectralAngle = 0.8125;
    data.comparison->explainedPeaks = 2;
    data.comparison->observedPeaks = 3;
    data.comparison->explainedIntensity = 0.857;
    EXPECT_TRUE(draw(data).texts.contains("spectral angle 0.813, 2 of 3 peaks explained (86 % of the intensity)") ||
                draw(data).texts.contains("spectral angle 0.812, 2 of 3 peaks explained (86 % of the intensity)"));
}

TEST_F(SpectrumPlot, LegendNamesOnlyWhatIsDrawn)
{
    const SvgPicture single = draw(peptidek());
    EXPECT_TRUE(single.texts.contains("b"));
    EXPECT_TRUE(single.texts.contains("y"));
    EXPECT_FALSE(single.texts.contains("a"));
    EXPECT_FALSE(single.texts.contains("unmatched"));
    EXPECT_TRUE(draw(mirrored()).texts.contains("unmatched"));
}

TEST_F(SpectrumPlot, LabelStandsAboveTheIsotopeEnvelope)
{
    SpectrumPlotData data = peptidek();
    FragmentPeak isotope = data.predicted[0];
    isotope.isotope = 1;
    isotope.mz += 1.00335;
    isotope.intensity = 1.0;
    data.predicted.append(isotope);
    const SvgPicture picture = draw(data);
    EXPECT_EQ(picture.texts.count("b2"), 1);
    const QByteArray label = picture.source.left(picture.source.indexOf(">b2</text>"));
    const QByteArray y = label.mid(label.lastIndexOf(" y=\"") + 4);
    const double labelY = y.left(y.indexOf('"')).toDouble();
    double envelopeTop = 1e9;
    for (const SvgLine &line : picture.verticals("#73b1d5")) // blue, 45 % of the way to white
        envelopeTop = std::min(envelopeTop, line.to.y());
    EXPECT_LT(labelY, envelopeTop);
    EXPECT_GT(labelY, envelopeTop - 20);
}

TEST_F(SpectrumPlot, DrawsWhatHasNoPeaksAndTheShortestAndLongestPeptides)
{
    SpectrumPlotData empty = peptidek();
    empty.predicted.clear();
    EXPECT_TRUE(draw(empty).texts.contains("no peaks"));
    empty.observed = ObservedSpectrum{};
    empty.comparison = SpectrumComparison{};
    EXPECT_EQ(draw(empty).texts.count("no peaks"), 2);
    empty.peptidoform = Peptidoform(QStringLiteral("K"));
    EXPECT_TRUE(draw(empty).texts.contains("K"));
    empty.peptidoform = Peptidoform();
    draw(empty);
    SpectrumPlotData longest = peptidek();
    longest.peptidoform = Peptidoform(QString(52, u'W'));
    EXPECT_EQ(draw(longest).texts.count("W"), 52);
}

TEST_F(SpectrumPlot, SinglePeakStandsInTheMiddleOfAReadableAxis)
{
    SpectrumPlotData data = peptidek();
    data.predicted = {ion(u'y', 1, 147.113, 1)};
    const QList<SvgLine> peaks = draw(data).verticals(VERMILION);
    ASSERT_FALSE(peaks.isEmpty());
    EXPECT_NEAR(peaks.constLast().from.x(), (68 + 900 - 24) / 2.0, 1);
}

TEST_F(SpectrumPlot, PngHasTwoPixelsForEachPageUnitAndItsColours)
{
    ASSERT_FALSE(drawSpectrum(peptidek(), files.path("a.PNG")).hasError());
    const QImage image = QImage::fromData(files.read("a.PNG"), "PNG");
    EXPECT_EQ(image.size(), QSize(1800, 920));
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::white));
    bool hasBlue = false;
    bool hasVermilion = false;
    for (int x = 0; x < image.width(); ++x) {
        hasBlue = hasBlue || image.pixelColor(x, 800) == QColor(BLUE);
        hasVermilion = hasVermilion || image.pixelColor(x, 800) == QColor(VERMILION);
    }
    EXPECT_TRUE(hasBlue);
    EXPECT_TRUE(hasVermilion);
    ASSERT_FALSE(drawSpectrum(mirrored(), files.path("b.png")).hasError());
    EXPECT_EQ(QImage::fromData(files.read("b.png")).size(), QSize(1800, 1240));
}

TEST_F(SpectrumPlot, PdfIsOnePageOfThePicturesSize)
{
    ASSERT_FALSE(drawSpectrum(peptidek(), files.path("a.pdf")).hasError());
    const QByteArray pdf = files.read("a.pdf");
    EXPECT_TRUE(pdf.startsWith("%PDF-"));
    EXPECT_TRUE(pdf.trimmed().endsWith("%%EOF"));
    EXPECT_TRUE(
        pdf.contains("/MediaBox [0 0 675.000000 345.000000]")); // 900 x 460 units of 1/96 inch in points of 1/72
    EXPECT_TRUE(pdf.contains("/Count 1"));
}

TEST_F(SpectrumPlot, OtherEndingsAndPlacesThatCannotBeWrittenAreErrors)
{
    const Error ending = drawSpectrum(peptidek(), QStringLiteral("a.gif"));
    EXPECT_TRUE(ending.equals(InvalidInput));
    EXPECT_EQ(ending.message(), "a.gif: pictures are written to .svg, .png or .pdf files");
    EXPECT_TRUE(drawSpectrum(peptidek(), QStringLiteral("svg")).equals(InvalidInput));
    for (const char *name : {"no/a.svg", "no/a.png", "no/a.pdf"}) {
        const Error error = drawSpectrum(peptidek(), files.path(name));
        EXPECT_TRUE(error.equals(Failure)) << name;
        EXPECT_TRUE(error.message().startsWith("cannot write " + files.path(name) + ": "))
            << error.message().toStdString();
    }
}

#ifdef Q_OS_UNIX
TEST_F(SpectrumPlot, PictureThatFindsNoRoomIsSaidAndLeavesTheOlderOne)
{
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small{4096, before.rlim_max}; // less than any of them takes
    for (const char *name : {"a.svg", "a.png", "a.pdf"}) {
        files.write(name, "old");
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
        const Error error = drawSpectrum(peptidek(), files.path(name));
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
        EXPECT_EQ(error.message().toStdString(), "cannot write " + files.path(name).toStdString() + ": File too large");
        EXPECT_EQ(files.read(name), "old");
    }
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(QDir(files.path(QString())).entryList(QDir::Files).size(), 3);
}
#endif

TEST_F(SpectrumPlot, ReplacesAnOlderPictureAndLeavesNothingElseBehind)
{
    files.write("a.svg", "old");
    draw(peptidek());
    EXPECT_TRUE(files.read("a.svg").startsWith("<?xml"));
    EXPECT_EQ(QDir(files.path(QString())).entryList(QDir::Files), QStringList{"a.svg"});
}

TEST_F(SpectrumPlot, ApplicationNeedsNoWindowSystem)
{
    EXPECT_EQ(QGuiApplication::platformName(), "offscreen");
}

} // namespace
} // namespace zav
