// SPDX-License-Identifier: Apache-2.0
#include "MzMlText.h"
#include "TraceList.h"

#include <cmath>
#include <cstdio>
#include <limits>

namespace zav {
namespace {

using Strings = std::vector<std::string>;

constexpr char MINUTE[] = "UO:0000031";
constexpr char SECOND[] = "UO:0000010";
constexpr char NUMPRESS_LINEAR[] = "<cvParam cvRef=\"MS\" accession=\"MS:1000523\" name=\"64-bit float\"/>"
                                   "<cvParam cvRef=\"MS\" accession=\"MS:1002312\" name=\"numpress linear\"/>";
constexpr char COUNTS[] = "MS:1000131";

struct ChromatogramText
{
    QByteArray id;
    QList<double> times = {1.5, 2, 2.25};
    QList<double> intensities = {10, 0, 2000};
    ArrayEncoding encoding = {};
    QByteArray timeUnit = MINUTE;
    QByteArray kind = "<cvParam cvRef=\"MS\" accession=\"MS:1001473\" name=\"SRM chromatogram\"/>";
};

const QList<QPointF> THREE_POINTS = {{1.5, 10}, {2, 0}, {2.25, 2000}};

QByteArray chromatogramXml(const ChromatogramText &chromatogram)
{
    return "<chromatogram index=\"0\" id=\"" + chromatogram.id + "\" defaultArrayLength=\"" +
           QByteArray::number(chromatogram.times.size()) + "\">" + chromatogram.kind +
           "<userParam name=\"dwell time\" value=\"1\"/><binaryDataArrayList count=\"2\">" +
           dataArray("MS:1000595", "time array", chromatogram.times, chromatogram.encoding, chromatogram.timeUnit) +
           dataArray("MS:1000515", "intensity array", chromatogram.intensities, chromatogram.encoding, COUNTS) +
           "</binaryDataArrayList></chromatogram>\n";
}

QByteArray listXml(const QList<QByteArray> &chromatograms)
{
    return "<chromatogramList count=\"" + QByteArray::number(chromatograms.size()) + "\">\n" +
           chromatograms.join(QByteArray()) + "</chromatogramList>";
}

QByteArray threeTraces()
{
    return listXml({chromatogramXml({"a"}), chromatogramXml({"b"}), chromatogramXml({"c"})});
}

struct MzMlChromatograms : testing::Test
{
    TemporaryFiles files;

    TraceList read(const QByteArray &content, const QString &name = QStringLiteral("a.mzML")) const
    {
        return TraceList::read(files, {files.write(name, content), {}, {}});
    }

    // What reading yields when the middle one of three has been changed.
    Strings withMiddle(QByteArray middle) const
    {
        const TraceList list = read(mzMlDocument(listXml({chromatogramXml({"a"}), middle, chromatogramXml({"c"})})));
        EXPECT_EQ(list.error, "");
        return list.summary(files);
    }
};

TEST_F(MzMlChromatograms, GivePointsAndUnitsOfEveryPrecision)
{
    for (const bool isCompressed : {false, true}) {
        for (const bool isFloat32 : {false, true}) {
            const TraceList list = read(mzMlDocument(listXml({chromatogramXml(
                {"Q1=5 &amp; &quot;Q3&quot;=&#55;", {1.5, 2, 2.25}, {10, 0, 2000}, {isCompressed, isFloat32, {}}})})));
            ASSERT_EQ(list.outcomes.size(), 1) << list.error;
            const Chromatogram &trace = list.outcomes[0].chromatogram;
            EXPECT_EQ(trace.id, "Q1=5 & \"Q3\"=7");
            EXPECT_EQ(trace.points, THREE_POINTS);
            EXPECT_EQ(trace.timeUnit, "min");
            EXPECT_EQ(trace.intensityUnit, "counts");
        }
    }
}

TEST_F(MzMlChromatograms, TimeUnitIsTheFiles)
{
    const TraceList list = read(mzMlDocument(listXml(
        {chromatogramXml({"s", {1}, {2}, {}, SECOND}), chromatogramXml({"none", {1}, {2}, {}, QByteArray()})})));
    ASSERT_EQ(list.outcomes.size(), 2);
    EXPECT_EQ(list.outcomes[0].chromatogram.timeUnit, "s");
    EXPECT_EQ(list.outcomes[1].chromatogram.timeUnit, "");
}

TEST_F(MzMlChromatograms, EveryKindCountsAndOneWithoutPointsToo)
{
    const QByteArray newTerm = "<cvParam cvRef=\"MS\" accession=\"MS:1999999\" name=\"younger than any reader\"/>";
    const TraceList list = read(mzMlDocument(listXml(
        {chromatogramXml({"TIC", {1}, {2}, {}, MINUTE, "<cvParam cvRef=\"MS\" accession=\"MS:1000235\" name=\"x\"/>"}),
         chromatogramXml({"new", {1}, {2}, {}, MINUTE, newTerm}), chromatogramXml({"empty", {}, {}}),
         "<chromatogram index=\"3\" id=\"bare\" defaultArrayLength=\"0\"/>", chromatogramXml({""})})));
    EXPECT_EQ(list.error, "");
    EXPECT_EQ(list.summary(files), (Strings{"TIC", "new", "empty", "bare", "5"}));
    EXPECT_TRUE(list.outcomes[2].chromatogram.points.isEmpty());
    EXPECT_TRUE(list.outcomes[3].chromatogram.points.isEmpty());
}

TEST_F(MzMlChromatograms, ParametersMayStandInGroups)
{
    const QByteArray groups =
        "<referenceableParamGroupList count=\"2\"><referenceableParamGroup id=\"storage\">\n"
        "<cvParam cvRef=\"MS\" accession=\"MS:1000523\" name=\"64-bit float\"></cvParam>\n"
        "<cvParam cvRef=\"MS\" accession=\"MS:1000574\" name=\"zlib compression\"/></referenceableParamGroup>\n"
        "<referenceableParamGroup id=\"empty\"/></referenceableParamGroupList>\n";
    const ArrayEncoding byGroup = {true, false, "<referenceableParamGroupRef ref=\"storage\"/>"};
    const ArrayEncoding unknown = {true, false, "<referenceableParamGroupRef ref=\"nowhere\"/>"};
    const TraceList list = read(mzMlDocument(listXml({chromatogramXml({"a", {1.5, 2, 2.25}, {10, 0, 2000}, byGroup}),
                                                      chromatogramXml({"b", {1.5, 2, 2.25}, {10, 0, 2000}, unknown})}),
                                             groups));
    ASSERT_EQ(list.outcomes.size(), 2) << list.error;
    EXPECT_EQ(list.outcomes[0].chromatogram.points, THREE_POINTS);
    EXPECT_EQ(list.summary(files)[1],
              "a.mzML: chromatogram 'b': it refers to parameter group 'nowhere', which the file does not have");
}

TEST_F(MzMlChromatograms, IntegersAreReadToo)
{
    // 1, 2, 3 and 10, 20, 30 as little-endian 32-bit and 64-bit integers.
    const auto array = [](const char *type, const char *kind, const QByteArray &bytes) {
        const QByteArray text = bytes.toBase64();
        return "<binaryDataArray encodedLength=\"" + QByteArray::number(text.size()) +
               "\"><cvParam cvRef=\"MS\" accession=\"" + type + "\" name=\"x\"/>" +
               "<cvParam cvRef=\"MS\" accession=\"MS:1000576\" name=\"x\"/><cvParam cvRef=\"MS\" accession=\"" + kind +
               "\" name=\"x\"/><binary>" + text + "</binary></binaryDataArray>";
    };
    const QByteArray times = QByteArray::fromHex("010000000200000003000000");
    const QByteArray intensities = QByteArray::fromHex("0a0000000000000014000000000000001e00000000000000");
    const TraceList list = read(mzMlDocument(
        listXml({"<chromatogram index=\"0\" id=\"a\" defaultArrayLength=\"3\"><binaryDataArrayList count=\"2\">" +
                 array("MS:1000519", "MS:1000595", times) + array("MS:1000522", "MS:1000515", intensities) +
                 "</binaryDataArrayList></chromatogram>"})));
    ASSERT_EQ(list.summary(files), Strings{"a"}) << list.error;
    EXPECT_EQ(list.outcomes[0].chromatogram.points, (QList<QPointF>{{1, 10}, {2, 20}, {3, 30}}));
}

// Encoded by the authors' own library (see data/README.md): times 10, 10.05, ... and a rounded Gaussian.
TEST_F(MzMlChromatograms, NumpressArraysGiveTheNumbersThatWereEncoded)
{
    constexpr double TIME_TOLERANCE = 2e-9; // half a step of the fixed point that the encoder chose
    constexpr double SLOF_TOLERANCE = 1e-4; // relative; 16 bits for the logarithm of values up to 3000
    const TraceList list = TraceList::read(files, {QStringLiteral(ZAV_TEST_DATA_DIR "/numpress.mzML"), {}, {}});
    ASSERT_EQ(list.summary(files), (Strings{"pic", "pic+zlib", "slof", "slof+zlib"})) << list.error;
    for (const TraceOutcome &outcome : list.outcomes) {
        const bool isExact = outcome.chromatogram.id.startsWith("pic");
        ASSERT_EQ(outcome.chromatogram.points.size(), 40);
        for (int i = 0; i < 40; ++i) {
            const QPointF point = outcome.chromatogram.points[i];
            const double intensity = std::round(20 + 3000 * std::exp(-std::pow((i - 17.5) / 4, 2)));
            EXPECT_NEAR(point.x(), 10 + 0.05 * i, TIME_TOLERANCE);
            EXPECT_NEAR(point.y(), intensity, isExact ? 0 : SLOF_TOLERANCE * intensity);
        }
    }
}

TEST_F(MzMlChromatograms, AreReadGzippedIndexedAndFromStandardInput)
{
    const QByteArray plain = mzMlDocument(threeTraces());
    const QByteArray latin1 = QByteArray(plain).replace("utf-8", "ISO-8859-1").replace("id=\"b\"", "id=\"\xB5g\"");
    for (const QByteArray &content :
         {plain, gzip(plain), indexedMzMl(plain, ""), "\xEF\xBB\xBF" + plain, QByteArray(plain).replace("\n", "\r\n"),
          QByteArray(plain).replace("<run", "<!-- <chromatogram> --><run"), latin1}) {
        const TraceList list = read(content);
        EXPECT_EQ(list.error, "");
        ASSERT_EQ(list.outcomes.size(), 3);
        EXPECT_EQ(list.outcomes[2].chromatogram.points, THREE_POINTS);
    }
    EXPECT_EQ(read(gzip(plain), "a.mzML.gz").outcomes.size(), 3);
    EXPECT_EQ(read(latin1).outcomes[1].chromatogram.id, QStringLiteral("\u00B5g"));
    ASSERT_NE(std::freopen(files.write("in", plain).toLocal8Bit().constData(), "rb", stdin), nullptr);
    EXPECT_EQ(TraceList::read(files, {"-", {}, {}}).outcomes.size(), 3);
}

TEST_F(MzMlChromatograms, WrongIndexDoesNoHarm)
{
    const QByteArray plain = mzMlDocument(threeTraces());
    for (const QByteArray offset : {"1", "600", "99999999", "-5", "x"}) {
        const QByteArray index = "<index name=\"chromatogram\"><offset idRef=\"a\">" + offset + "</offset></index>";
        EXPECT_EQ(read(indexedMzMl(plain, index)).summary(files), (Strings{"a", "b", "c"}));
        EXPECT_EQ(read(indexedMzMl(plain, index, offset)).summary(files), (Strings{"a", "b", "c"}));
    }
}

TEST_F(MzMlChromatograms, CountIsWhatTheFileDeclares)
{
    const auto source = openChromatograms({files.write("a.mzML", mzMlDocument(threeTraces())), {}, {}});
    ASSERT_FALSE(source.hasError());
    EXPECT_EQ(source.value()->count(), 3);
}

TEST_F(MzMlChromatograms, DamagedOneSpoilsNoOther)
{
    const QByteArray whole = chromatogramXml({"b", {1.5, 2, 2.25}, {10, 0, 2000}, {true, false, {}}});
    const auto problem = [&](const QByteArray &middle) {
        const Strings summary = withMiddle(middle);
        EXPECT_EQ(summary.size(), 3U);
        EXPECT_EQ(summary.front(), "a");
        EXPECT_EQ(summary.back(), "c");
        const std::string prefix = "a.mzML: chromatogram 'b': ";
        EXPECT_TRUE(summary.size() == 3 && summary[1].starts_with(prefix)) << testing::PrintToString(summary);
        return summary.size() == 3 ? summary[1].substr(std::min(prefix.size(), summary[1].size())) : std::string();
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(problem(chromatogramXml({"b", {1, nan}, {1, 2}})), "point 2 is not finite");
    EXPECT_EQ(problem(chromatogramXml({"b", {1, 2}, {HUGE_VAL, 2}})), "point 1 is not finite");
    EXPECT_EQ(problem(chromatogramXml({"b", {1, 2}, {1, 2, 3}})),
              "expected array of size 2, but decoded array is actually size 3");
    EXPECT_EQ(problem(QByteArray(whole).replace("encodedLength=\"", "encodedLength=\"1")), "encoded lengths differ");
    EXPECT_EQ(problem(QByteArray(whole).replace("MS:1000515", "MS:1000516")), "it has no intensity array");
    EXPECT_EQ(problem(QByteArray(whole).replace("MS:1000595", "MS:1000516")), "it has no time array");
    EXPECT_EQ(problem(QByteArray(whole).replace("</chromatogram>", "")), "its end tag is missing");
    EXPECT_NE(problem(QByteArray(whole).replace("<binary>eJ", "<binary>!!")), "");
    EXPECT_NE(problem(QByteArray(whole).replace("MS:1000574", "MS:1003780")), ""); // zstd
    QByteArray numpress = chromatogramXml({"b", {1.5, 2, 2.25}, {10, 0, 2000}, {false, false, NUMPRESS_LINEAR}});
    numpress.replace(numpress.indexOf("encodedLength=\"32\""), 18, "encodedLength=\"4\"");
    const qsizetype first = numpress.indexOf("<binary>");
    numpress.replace(first, numpress.indexOf("</binary>") - first, "<binary>AAAA");
    EXPECT_EQ(problem(numpress), "error in numpress linear decompression");
    EXPECT_NE(problem(QByteArray(whole).replace("</binaryDataArray>", "</binarydataArray>")), "");
    EXPECT_NE(problem(QByteArray(whole).replace("MS:1000523", "MS:1000574")), ""); // no precision
}

TEST_F(MzMlChromatograms, ArrayThatInflatesFarBeyondItsSizeIsNotDecoded)
{
    const QList<double> zeros(3'000'000, 0.0); // 24 MB in 24 KB
    EXPECT_EQ(withMiddle(chromatogramXml({"b", zeros, zeros, {true, false, {}}}))[1],
              "a.mzML: chromatogram 'b': an array of it inflates to more than 64 times its size");
    // Whatever it is said to be.
    QByteArray hidden = chromatogramXml({"b", zeros, zeros, {true, false, {}}});
    hidden.replace("MS:1000574", "MS:1000576");
    EXPECT_EQ(withMiddle(hidden)[1],
              "a.mzML: chromatogram 'b': an array of it inflates to more than 64 times its size");
}

TEST_F(MzMlChromatograms, CharacterReferencesMoveNoArray)
{
    QByteArray xml = chromatogramXml({"b", {1.5, 2, 2.25}, {10, 0, 2000}, {true, false, {}}});
    xml.replace("<userParam", "&#55;<userParam").replace("<binaryDataArrayList", "&#x37;&#<binaryDataArrayList");
    EXPECT_EQ(withMiddle(xml)[1], "b");
    const QList<double> zeros(3'000'000, 0.0);
    xml = chromatogramXml({"b", zeros, zeros, {true, false, {}}}).replace("<userParam", "&#55;<userParam");
    EXPECT_EQ(withMiddle(xml)[1], "a.mzML: chromatogram 'b': an array of it inflates to more than 64 times its size");
}

TEST_F(MzMlChromatograms, TagWithoutAQuoteIsNotDecoded)
{
    QByteArray xml = chromatogramXml({"b"});
    xml.replace("\"MS:1000515\"", "MS:1000515");
    EXPECT_EQ(withMiddle(xml)[1], "a.mzML: chromatogram 'b': it holds a tag that is not XML");
    const QByteArray group = "<referenceableParamGroup id=\"g\"><cvParam accession=MS:1/></referenceableParamGroup>";
    EXPECT_EQ(read(mzMlDocument(threeTraces(), group)).error, "cannot read a.mzML: it holds a tag that is not XML");
}

TEST_F(MzMlChromatograms, GroupsOfParametersHaveAnEnd)
{
    const auto group = [](const char *id, int count) {
        return QByteArray("<referenceableParamGroup id=\"") + id + "\">" +
               QByteArray("<cvParam accession=\"MS:1000576\"/>").repeated(count) + "</referenceableParamGroup>";
    };
    const QByteArray error = "cannot read a.mzML: it has parameter groups without end";
    EXPECT_EQ(read(mzMlDocument(threeTraces(), group("g", 400))).error, "");
    EXPECT_EQ(read(mzMlDocument(threeTraces(), group("g", 600))).error, error.toStdString());
    EXPECT_EQ(read(mzMlDocument(threeTraces(), group("g", 400) + group("g", 400))).error, error.toStdString());
    QByteArray many;
    for (int i = 0; i < 10'001; ++i)
        many += group(QByteArray::number(i).constData(), 1);
    EXPECT_EQ(read(mzMlDocument(threeTraces(), many)).error, error.toStdString());
}

TEST_F(MzMlChromatograms, ArraysOfUnequalLengthAreTold)
{
    // Each array says its own length, which a chromatogram allows.
    QByteArray xml = chromatogramXml({"b", {1, 2}, {1, 2, 3}});
    const qsizetype second = xml.lastIndexOf("<binaryDataArray ");
    xml.insert(second + 17, "arrayLength=\"3\" ");
    EXPECT_EQ(withMiddle(xml)[1], "a.mzML: chromatogram 'b': its time array holds 2 values, its intensity array 3");
}

TEST_F(MzMlChromatograms, FileThatEndsTooEarlyGivesItsWholeTracesAndAnError)
{
    const QByteArray whole = mzMlDocument(threeTraces());
    const TraceList within = read(whole.left(whole.indexOf("id=\"c\"") + 100));
    EXPECT_EQ(within.summary(files), (Strings{"a", "b"}));
    EXPECT_EQ(within.error, "cannot read a.mzML: it ends within chromatogram 'c'");
    const TraceList behind = read(whole.left(whole.indexOf("</run>")));
    EXPECT_EQ(behind.summary(files), (Strings{"a", "b", "c"}));
    EXPECT_EQ(behind.error, "cannot read a.mzML: it is cut short: it ends within <run>");
    EXPECT_EQ(read(whole.left(whole.indexOf("<cvList"))).error,
              "cannot read a.mzML: it is cut short: it ends within <mzML>");
    EXPECT_EQ(read(gzip(whole).chopped(20), "a.mzML.gz").error,
              "cannot read a.mzML.gz: it ends within its gzipped data");
}

TEST_F(MzMlChromatograms, FileThatIsNoMzMlIsRefused)
{
    EXPECT_EQ(read("").error, "cannot read a.mzML: it is empty");
    EXPECT_EQ(read("hello\n").error, "cannot read a.mzML: it is not mzML: it holds no XML element");
    EXPECT_EQ(read("<?xml version=\"1.0\"?><mzXML><msRun/></mzXML>").error,
              "cannot read a.mzML: it is not mzML: its outermost element is <mzXML>");
    EXPECT_EQ(read("<mzML><run></chromatogramList></run></mzML>").error,
              "cannot read a.mzML: it is damaged: </chromatogramList> closes no open element");
    EXPECT_EQ(read("<mzML " + QByteArray(3 << 20, 'x')).error, "cannot read a.mzML: it is not XML: a tag has no end");
    EXPECT_EQ(read("<mzML>" + QByteArray("<a>").repeated(200)).error,
              "cannot read a.mzML: it is not mzML: its elements nest too deeply");
    EXPECT_EQ(read(QByteArray("\xFF\xFE<\0m\0", 6)).error,
              "cannot read a.mzML: it is UTF-16; only UTF-8 and Latin-1 are read");
    EXPECT_EQ(read(mzMlDocument("")).error, "cannot read a.mzML: it holds no chromatogram");
    EXPECT_EQ(
        read(mzMlDocument("<spectrumList count=\"2\"></spectrumList>")).error,
        "cannot read a.mzML: it holds no chromatogram; name an m/z to extract chromatograms from its MS1 spectra");
}

} // namespace
} // namespace zav
