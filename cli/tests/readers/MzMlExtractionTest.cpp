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
           dataArray("MS:1000515", "intensity array", spectrum.intensities, {false, true, {}}, "MS:1000131") +
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
    const QByteArray whole = run(SPECTRA);
    EXPECT_EQ(extract(whole.left(whole.indexOf("scan=4") + 300), {{"t", 500}}).error,
              "cannot read a.mzML: it ends within spectrum 'scan=4'");
    EXPECT_EQ(extract(QByteArray(whole).replace("MS:1000514", "MS:1000516"), {{"t", 500}}).error,
              "a.mzML: spectrum 'scan=1': it has no m/z or no intensity array");
}

} // namespace
} // namespace zav
