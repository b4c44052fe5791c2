// SPDX-License-Identifier: Apache-2.0
#include "MzMlText.h"
#include "TraceList.h"

#include <limits>

namespace zav {
namespace {

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr char MINUTE[] = "UO:0000031";

struct SpectrumText
{
    QByteArray time;
    QList<double> mzs;
    QList<double> intensities;
    int msLevel = 1;
    QByteArray timeUnit = MINUTE;
    ArrayEncoding encoding = {false, true, {}}; // of the intensities
};

QByteArray spectrumXml(const SpectrumText &spectrum, int number)
{
    const QByteArray start = "<cvParam cvRef=\"MS\" accession=\"MS:1000016\" name=\"scan start time\" value=\"" +
                             spectrum.time + "\" unitCvRef=\"UO\" unitAccession=\"" + spectrum.timeUnit +
                             "\" unitName=\"x\"/>";
    return "<spectrum index=\"0\" id=\"scan=" + QByteArray::number(number) + "\" defaultArrayLength=\"" +
           QByteArray::number(spectrum.mzs.size()) +
           "\"><cvParam cvRef=\"MS\" accession=\"MS:1000511\" name=\"ms level\" value=\"" +
           QByteArray::number(spectrum.msLevel) + "\"/><scanList count=\"1\"><scan>" +
           (spectrum.time.isEmpty() ? QByteArray() : start) + "</scan></scanList><binaryDataArrayList count=\"2\">" +
           dataArray("MS:1000514", "m/z array", spectrum.mzs) +
           dataArray("MS:1000515", "intensity array", spectrum.intensities, spectrum.encoding, "MS:1000131") +
           "</binaryDataArrayList></spectrum>\n";
}

QByteArray run(const QList<SpectrumText> &spectra)
{
    QByteArray list = "<spectrumList count=\"" + QByteArray::number(spectra.size()) + "\">\n";
    for (int i = 0; i < spectra.size(); ++i)
        list += spectrumXml(spectra[i], i + 1);
    return mzMlDocument(list + "</spectrumList>");
}

struct MzMlExtraction : testing::Test
{
    TemporaryFiles files;

    TraceList extract(const QByteArray &content, const QList<ExtractionTarget> &targets) const
    {
        return TraceList::read(files, {files.write("a.mzML", content), {}, targets});
    }

    QList<QPointF> points(const QByteArray &content, const ExtractionTarget &target) const
    {
        const TraceList list = extract(content, {target});
        EXPECT_EQ(list.error, "");
        EXPECT_EQ(list.outcomes.size(), 1);
        return list.outcomes.isEmpty() ? QList<QPointF>() : list.outcomes[0].chromatogram.points;
    }
};

// Around m/z 500, 10 ppm are 0.005.
const QList<SpectrumText> SPECTRA = {{"1", {100, 499.996, 500.004, 600}, {1, 10, 20, 4}},
                                     {"1.5", {500}, {9999}, 2},
                                     {"2", {499.994, 500.006}, {30, 40}},
                                     {"3", {}, {}},
                                     {"4", {600, 500.001, 499.999, 300}, {1, 2, 3, 4}}};

TEST_F(MzMlExtraction, SumsTheWindowOfEachMs1Spectrum)
{
    const TraceList list = extract(run(SPECTRA), {{"YIC", 500, 10}});
    ASSERT_EQ(list.outcomes.size(), 1) << list.error;
    const Chromatogram &trace = list.outcomes[0].chromatogram;
    EXPECT_EQ(trace.id, "YIC");
    EXPECT_EQ(trace.timeUnit, "min");
    EXPECT_EQ(trace.intensityUnit, "counts");
    EXPECT_EQ(trace.points, (QList<QPointF>{{1, 30}, {2, 0}, {3, 0}, {4, 5}})); // the last spectrum is not in order
}

TEST_F(MzMlExtraction, WindowHoldsItsEnds)
{
    // 20 ppm of 500000 are 10, all numbers exact.
    EXPECT_EQ(points(run({{"1", {499989, 499990, 500010, 500011}, {1, 2, 4, 8}}}), {"t", 500000, 20}),
              (QList<QPointF>{{1, 6}}));
}

TEST_F(MzMlExtraction, ReadsAllTargetsInOnePassAndInTheirOrder)
{
    const TraceList list =
        extract(run(SPECTRA), {{"late", 600, 10, 3, INF}, {"range", 500, 20, 1, 2}, {"none", 500, 10, 5, 6}});
    ASSERT_EQ(list.outcomes.size(), 3) << list.error;
    EXPECT_EQ(list.outcomes[0].chromatogram.id, "late");
    EXPECT_EQ(list.outcomes[0].chromatogram.points, (QList<QPointF>{{3, 0}, {4, 1}}));
    EXPECT_EQ(list.outcomes[1].chromatogram.points, (QList<QPointF>{{1, 30}, {2, 70}}));
    EXPECT_EQ(list.outcomes[2].chromatogram.id, "none");
    EXPECT_TRUE(list.outcomes[2].chromatogram.points.isEmpty());
}

TEST_F(MzMlExtraction, TargetWithoutTimesIsTheWholeRun)
{
    const TraceList list = extract(run(SPECTRA), {{"whole", 500, 10}, {"before", 500, 10, -INF, 0.5}});
    ASSERT_EQ(list.outcomes.size(), 2) << list.error;
    EXPECT_EQ(list.outcomes[0].chromatogram.points.size(), 4);
    EXPECT_TRUE(list.outcomes[1].chromatogram.points.isEmpty()) << "its range lies before the run";
    EXPECT_EQ(list.outcomes[1].chromatogram.timeUnit, "min");
}

TEST_F(MzMlExtraction, TraceIsYieldedWhenItsRangeIsOver)
{
    const QByteArray whole = run(SPECTRA);
    const QByteArray torn = whole.left(whole.indexOf("scan=5") + 300);
    const std::string error = "cannot read a.mzML: it ends within spectrum 'scan=5'";
    const ExtractionTarget early = {"early", 500, 10, 1, 1.5};
    const ExtractionTarget late = {"late", 500, 10, 2, 2.5};
    const TraceList ascending = extract(torn, {early, late, {"whole", 500}});
    EXPECT_EQ(ascending.summary(files), (std::vector<std::string>{"early", "late"}));
    EXPECT_EQ(ascending.error, error);
    const TraceList waiting = extract(torn, {late, {"whole", 500}, early});
    EXPECT_EQ(waiting.summary(files), std::vector<std::string>{"late"}) << "those behind an open one wait";
    EXPECT_EQ(waiting.error, error);
    EXPECT_EQ(extract(torn, {early}).error, error) << "the rest of the file is read too";
}

TEST_F(MzMlExtraction, GzipThatIsCutBehindTheDocumentIsAnErrorOnlyWhereItIsCopied)
{
    const QByteArray whole = gzip(run(SPECTRA) + QByteArray(100000, ' '));
    const QString path = files.write("a.mzML.gz", whole.chopped(20));
    const QList<ExtractionTarget> targets = {{"t", 500, 10}};
    EXPECT_EQ(TraceList::read(files, {path, {}, targets}).error, "");
    EXPECT_EQ(TraceList::read(files, {path, {}, targets, true}).error,
              "cannot read a.mzML.gz: it ends within its gzipped data");
}

TEST_F(MzMlExtraction, TargetsInNoOrderOfTimeKeepTheirOrder)
{
    const QList<ExtractionTarget> targets = {{"c", 500, 10, 3, 4}, {"a", 500, 10, 1, 1}, {"d", 500, 10, 9, 9},
                                             {"b", 500, 10, 1, 2}, {"all", 500, 10},     {"z", 500, 10, 2, 3}};
    EXPECT_EQ(extract(run(SPECTRA), targets).summary(files),
              (std::vector<std::string>{"c", "a", "d", "b", "all", "z"}));
}

TEST_F(MzMlExtraction, SpectrumThatComesTooLateIsAnError)
{
    const QList<SpectrumText> spectra = {{"1", {500}, {1}}, {"3", {500}, {2}}, {"2", {500}, {3}}};
    const TraceList list = extract(run(spectra), {{"t", 500, 10, 1, 2}});
    EXPECT_EQ(list.summary(files), std::vector<std::string>{"t"});
    EXPECT_EQ(list.error, "a.mzML: spectrum 'scan=3': its scan start time is before that of a spectrum in front of it, "
                          "and the chromatogram of target 't' was closed there");
    EXPECT_EQ(points(run(spectra), {"t", 500}), (QList<QPointF>{{1, 1}, {3, 2}, {2, 3}})) << "still open";
}

// The reader's own way and that of ProteoWizard, which takes what is stored otherwise.
TEST_F(MzMlExtraction, EncodingMakesNoDifference)
{
    const auto pointsOf = [&](const ArrayEncoding &encoding) {
        return points(run({{"1", {499.999, 500.001, 501}, {0.1, 3, 7}, 1, MINUTE, encoding}}), {"t", 500});
    };
    const QList<QPointF> exact = {{1, 0.1 + 3.0}};
    const QList<QPointF> rounded = {{1, double(0.1F) + 3.0}};
    EXPECT_EQ(pointsOf({false, false, {}}), exact);
    EXPECT_EQ(pointsOf({true, false, {}}), exact);
    EXPECT_EQ(pointsOf({false, true, {}}), rounded);
    EXPECT_EQ(pointsOf({true, true, {}}), rounded);
    const QByteArray stranger = "<cvParam cvRef=\"MS\" accession=\"MS:1000523\" name=\"64-bit float\"/>"
                                "<cvParam cvRef=\"MS\" accession=\"MS:1000576\" name=\"no compression\"/>"
                                "<cvParam cvRef=\"MS\" accession=\"MS:1000786\" name=\"non-standard\"/>";
    EXPECT_EQ(pointsOf({false, false, stranger}), exact) << "by ProteoWizard";
    QByteArray withLength = run({{"1", {500}, {3}}});
    withLength.replace("<binaryDataArray ", "<binaryDataArray arrayLength=\"1\" ");
    EXPECT_EQ(points(withLength, {"t", 500}), (QList<QPointF>{{1, 3}})) << "by ProteoWizard";
}

TEST_F(MzMlExtraction, ThirdArrayIsNotInTheWay)
{
    QByteArray content = run({{"1", {500}, {3}}});
    const QByteArray third = dataArray("MS:1000786", "mobility", {9});
    content.replace("</binaryDataArrayList>", third + "</binaryDataArrayList>");
    EXPECT_EQ(points(content, {"t", 500}), (QList<QPointF>{{1, 3}}));
}

TEST_F(MzMlExtraction, OtherLevelsAreNotDecoded)
{
    QByteArray damaged = run(SPECTRA);
    const qsizetype ms2 = damaged.indexOf("scan=2");
    damaged.replace(damaged.indexOf("<binary>", ms2), 10, "<binary>!!");
    EXPECT_EQ(points(damaged, {"t", 500, 10}).size(), 4);
}

TEST_F(MzMlExtraction, MsLevelMayBeSaidByTheKindOfSpectrum)
{
    QByteArray content = run({SPECTRA[0]});
    content.replace("accession=\"MS:1000511\" name=\"ms level\" value=\"1\"",
                    "accession=\"MS:1000579\" name=\"MS1 spectrum\"");
    EXPECT_EQ(points(content, {"t", 500, 10}), (QList<QPointF>{{1, 30}}));
}

TEST_F(MzMlExtraction, CountIsThatOfTheTargets)
{
    const auto source = openChromatograms({files.write("a.mzML", run(SPECTRA)), {}, {{"a", 5}, {"b", 6}}});
    ASSERT_FALSE(source.hasError());
    EXPECT_EQ(source.value()->count(), 2);
}

TEST_F(MzMlExtraction, FileWithoutMs1SpectraIsAnError)
{
    EXPECT_EQ(extract(run({SPECTRA[1]}), {{"t", 500}}).error, "cannot read a.mzML: it holds no MS1 spectrum");
    EXPECT_EQ(extract(mzMlDocument(""), {{"t", 500}}).error, "cannot read a.mzML: it holds no MS1 spectrum");
}

TEST_F(MzMlExtraction, Ms1SpectrumThatCannotBeUsedIsAnErrorOfTheFile)
{
    const auto error = [&](const SpectrumText &second) {
        const TraceList list = extract(run({SPECTRA[0], second}), {{"t", 500}});
        EXPECT_TRUE(list.outcomes.isEmpty());
        return list.error;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(error({"", {1}, {1}}), "a.mzML: spectrum 'scan=2': it has no scan start time");
    EXPECT_EQ(error({"2", {1}, {1}, 1, "UO:0000010"}),
              "a.mzML: spectrum 'scan=2': its scan start time has another unit than those before");
    EXPECT_EQ(error({"2", {1, nan}, {1, 2}}), "a.mzML: spectrum 'scan=2': its peaks are not all finite");
    EXPECT_EQ(error({"2", {1, 2}, {1}}),
              "a.mzML: spectrum 'scan=2': expected array of size 2, but decoded array is actually size 1");
    SpectrumText bomb{"2", QList<double>(3'000'000, 500.0), QList<double>(3'000'000, 0.0)};
    bomb.encoding = {true, false, {}};
    EXPECT_EQ(error(bomb), "a.mzML: spectrum 'scan=2': an array of it inflates to more than 64 times its size");
    const QByteArray whole = run(SPECTRA);
    EXPECT_EQ(extract(whole.left(whole.indexOf("scan=4") + 300), {{"t", 500}}).error,
              "cannot read a.mzML: it ends within spectrum 'scan=4'");
    EXPECT_EQ(extract(QByteArray(whole).replace("MS:1000514", "MS:1000516"), {{"t", 500}}).error,
              "a.mzML: spectrum 'scan=1': it has no m/z or no intensity array");
}

} // namespace
} // namespace zav
