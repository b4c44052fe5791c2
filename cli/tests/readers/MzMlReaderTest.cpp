// SPDX-License-Identifier: Apache-2.0
#include "MzMlText.h"
#include "ObservedSpectrumFile.h"
#include "SpectrumFile.h"
#include "TemporaryFiles.h"

#include <algorithm>
#include <limits>

namespace zav {
namespace {

struct SpectrumText
{
    QByteArray id;
    int msLevel = 2;
    QList<double> mzs = {100.5, 200.25};
    QList<double> intensities = {20, 1000};
    bool isCompressed = false;
};

QByteArray spectrumXml(const SpectrumText &spectrum, int index)
{
    return "<spectrum index=\"" + QByteArray::number(index) + "\" id=\"" + spectrum.id + "\" defaultArrayLength=\"" +
           QByteArray::number(spectrum.mzs.size()) +
           "\"><cvParam cvRef=\"MS\" accession=\"MS:1000511\" name=\"ms level\" value=\"" +
           QByteArray::number(spectrum.msLevel) +
           "\"/><precursorList count=\"1\"><precursor><selectedIonList count=\"1\"><selectedIon>"
           "<cvParam cvRef=\"MS\" accession=\"MS:1000744\" name=\"selected ion m/z\" value=\"643.25\"/>"
           "<cvParam cvRef=\"MS\" accession=\"MS:1000041\" name=\"charge state\" value=\"3\"/>"
           "</selectedIon></selectedIonList><activation/></precursor></precursorList><binaryDataArrayList "
           "count=\"2\">" +
           dataArray("MS:1000514", "m/z array", spectrum.mzs, {spectrum.isCompressed}) +
           dataArray("MS:1000515", "intensity array", spectrum.intensities, {spectrum.isCompressed}) +
           "</binaryDataArrayList></spectrum>\n";
}

QByteArray mzMl(const QList<SpectrumText> &spectra)
{
    QByteArray list = "<spectrumList count=\"" + QByteArray::number(spectra.size()) + "\">\n";
    for (int i = 0; i < spectra.size(); ++i)
        list += spectrumXml(spectra[i], i);
    return mzMlDocument(list + "</spectrumList>");
}

struct MzMlReader : testing::Test
{
    TemporaryFiles files;

    Result<ObservedSpectrum> read(const QByteArray &content, const QString &scan = QString(),
                                  const QString &name = QStringLiteral("a.mzML"))
    {
        return readObservedSpectrum(files.write(name, content), scan);
    }

    // The message without the folder, which differs between runs.
    std::string message(const Result<ObservedSpectrum> &result) const
    {
        return files.withoutFolder(result.error().message());
    }
};

const QList<QPointF> TWO_PEAKS = {{100.5, 20}, {200.25, 1000}};

TEST_F(MzMlReader, GivesPrecursorAndPeaksOfPlainAndZlibArrays)
{
    for (const bool isCompressed : {false, true}) {
        const auto spectrum = read(mzMl({{"scan=7", 2, {100.5, 200.25}, {20, 1000}, isCompressed}}));
        ASSERT_FALSE(spectrum.hasError()) << spectrum.error().toString().toStdString();
        EXPECT_EQ(spectrum.value().title, "a.mzML, scan 7");
        EXPECT_EQ(spectrum.value().precursorMz, 643.25);
        EXPECT_EQ(spectrum.value().precursorCharge, 3);
        EXPECT_EQ(spectrum.value().peaks, TWO_PEAKS);
    }
}

TEST_F(MzMlReader, GivesTheSameFromAGzippedFile)
{
    const auto spectrum = read(gzip(mzMl({{"scan=7"}})), {}, "a.mzML.gz");
    ASSERT_FALSE(spectrum.hasError()) << spectrum.error().toString().toStdString();
    EXPECT_EQ(spectrum.value().peaks, TWO_PEAKS);
}

TEST_F(MzMlReader, SortsPeaksAndDropsThoseWithoutIntensity)
{
    EXPECT_EQ(read(mzMl({{"scan=7", 2, {200.25, 300, 100.5, 400}, {1000, 0, 20, -3}}})).value().peaks, TWO_PEAKS);
}

const QList<SpectrumText> RUN = {{"function=1 scan=11", 1},
                                 {"function=1 scan=12", 2, {1}, {1}},
                                 {"function=2 scan=12", 2, {2}, {2}},
                                 {"function=1 scan=13", 2, {3}, {3}}};

TEST_F(MzMlReader, ScanIsFoundByNativeIdScanNumberAndIndex)
{
    EXPECT_EQ(read(mzMl(RUN), "function=2 scan=12").value().peaks.constFirst().x(), 2);
    EXPECT_EQ(read(mzMl(RUN), "13").value().peaks.constFirst().x(), 3);
    EXPECT_EQ(read(mzMl(RUN), "index=1").value().peaks.constFirst().x(), 1);
    EXPECT_EQ(read(mzMl({{"spectrum=5"}, {"spectrum=6", 2, {9}, {9}}}), "1").value().peaks.constFirst().x(), 9);
}

TEST_F(MzMlReader, ManyScansOfOneFileAreEachTheirOwn)
{
    const QStringList scans = {"13", "function=2 scan=12", "14", "11", "12", "index=1", "", "13"};
    for (const char *name : {"a.mzML", "a.mzML.gz"}) {
        const QByteArray content = mzMl(RUN);
        const QString path = files.write(name, QString(name).endsWith("gz") ? gzip(content) : content);
        const auto spectra = ObservedSpectra::open(path, scans);
        ASSERT_FALSE(spectra.hasError()) << files.withoutFolder(spectra.error().message());
        QList<double> mzs;
        for (qsizetype i = 0; i < scans.size(); ++i) {
            const SpectrumOutcome outcome = spectra.value()->read(i).value();
            EXPECT_EQ(outcome.problem.message(), spectra.value()->problem(i).message());
            if (!scans[i].isEmpty()) {
                EXPECT_EQ(outcome.problem.message(), readObservedSpectrum(path, scans[i]).error().message());
            }
            mzs.append(outcome.problem.hasError() ? 0 : outcome.spectrum.peaks.constFirst().x());
        }
        EXPECT_EQ(mzs, (QList<double>{3, 2, 0, 0, 0, 1, 0, 3}));
    }
}

TEST_F(MzMlReader, FileThatFailsIsNoProblemOfOneSpectrum)
{
    const QString path = files.write("a.mzML", mzMl(RUN));
    const auto spectra = ObservedSpectra::open(path, {"13", "99"});
    ASSERT_FALSE(spectra.hasError());
    ASSERT_TRUE(QFile(path).resize(0));
    EXPECT_EQ(files.withoutFolder(spectra.value()->read(0).error().message()),
              "cannot read a.mzML: it is cut short: it ends within <spectrumList>");
    EXPECT_TRUE(spectra.value()->read(1).value().problem.message().contains("has no spectrum '99'"));
}

TEST_F(MzMlReader, ScanThatCannotBeUsedIsRefused)
{
    EXPECT_EQ(message(read(mzMl(RUN))), "a.mzML: holds 3 MS2 spectra: choose one with --scan");
    EXPECT_EQ(message(read(mzMl(RUN), "12")), "a.mzML: '12' names 2 spectra: give a native id or index=N");
    EXPECT_EQ(message(read(mzMl(RUN), "11")), "a.mzML: spectrum '11' is a survey spectrum (MS1), not MS/MS");
    EXPECT_EQ(message(read(mzMl(RUN), "14")), "a.mzML: has no spectrum '14': it holds 4 spectra, scan 11 to 13");
    EXPECT_EQ(message(read(mzMl({{"scan=1", 1}}))), "a.mzML: holds no MS2 spectrum");
}

TEST_F(MzMlReader, DamagedFilesAreErrorsThatNameTheFile)
{
    const QByteArray whole = mzMl({{"scan=7"}});
    EXPECT_EQ(message(read("")), "cannot read a.mzML: it is empty");
    EXPECT_EQ(message(readObservedSpectrum(files.path("no.mzML"), {})),
              "cannot read no.mzML: No such file or directory");
    EXPECT_EQ(message(read("hello\n")), "cannot read a.mzML: it is not mzML: it holds no XML element");
    EXPECT_EQ(message(read(whole.left(whole.size() / 2))), "cannot read a.mzML: it ends within spectrum 'scan=7'");
    EXPECT_EQ(message(read(QByteArray(whole).replace("<spectrum index", "<broken<spectrum index"))),
              "cannot read a.mzML: it is damaged: </spectrum> closes no open element");
    EXPECT_TRUE(read(gzip(whole).left(150), {}, "a.mzML.gz").hasError());
}

TEST_F(MzMlReader, DamagedPeaksAreErrorsThatNameTheSpectrum)
{
    EXPECT_EQ(message(read(mzMl({{"scan=7", 2, {100, 0}, {1, 2}}}))),
              "a.mzML: spectrum 'scan=7': peak 2 has no finite m/z above 0 and intensity");
    EXPECT_EQ(message(read(mzMl({{"scan=7", 2, {100, std::numeric_limits<double>::quiet_NaN()}, {1, 2}}}))),
              "a.mzML: spectrum 'scan=7': peak 2 has no finite m/z above 0 and intensity");
    EXPECT_TRUE(message(read(mzMl({{"scan=7", 2, {100, 200}, {1}}}))).starts_with("a.mzML: spectrum 'scan=7': "));
    QByteArray damaged = mzMl({{"scan=7", 2, {100.5, 200.25}, {20, 1000}, true}});
    damaged.insert(damaged.indexOf("<binary>") + 12, "!!!!");
    EXPECT_TRUE(message(read(damaged)).starts_with("a.mzML: spectrum 'scan=7': ")) << message(read(damaged));
    const QByteArray unclosed = mzMl({{"scan=7"}}).replace("</spectrum>", "</spectre>");
    EXPECT_EQ(message(read(unclosed)), "a.mzML: spectrum 'scan=7': its end tag is missing");
}

TEST_F(MzMlReader, DamagedSpectrumSpoilsNoOther)
{
    QByteArray content = mzMl({{"scan=7"}, {"scan=8"}});
    content.insert(content.indexOf("<binary>") + 12, "!!!!");
    EXPECT_TRUE(read(content, "7").hasError());
    EXPECT_EQ(read(content, "8").value().peaks, TWO_PEAKS);
}

TEST_F(MzMlReader, TagWithoutAQuoteIsNotDecoded)
{
    QByteArray content = mzMl({{"scan=7"}, {"scan=8"}});
    content.replace(content.indexOf("cvRef=\"MS\"", content.indexOf("<spectrum ")), 10, "cvRef=MS");
    const auto file = openSpectrumFile(files.write("a.mzML", content));
    ASSERT_FALSE(file.hasError()) << file.error().message().toStdString();
    for (int time = 0; time < 2; ++time) {
        const Error problem = file.value()->spectrum(0).value().problem;
        EXPECT_EQ(files.withoutFolder(problem.message()), "a.mzML: spectrum 'scan=7': it holds a tag that is not XML");
        EXPECT_EQ(file.value()->msLevel(0).error().message(), problem.message());
        EXPECT_EQ(file.value()->spectrum(1).value().spectrum.peaks, TWO_PEAKS);
    }
}

TEST_F(MzMlReader, ArrayThatInflatesFarBeyondItsSizeIsNotDecoded)
{
    const QList<double> zeros(20'000'000 / 8);
    EXPECT_EQ(message(read(mzMl({{"scan=7", 2, zeros, zeros, true}}))),
              "a.mzML: spectrum 'scan=7': an array of it inflates to more than 64 times its size");
}

TEST_F(MzMlReader, LevelMayBeSaidByAGroupAndByTheKindOfSpectrum)
{
    const QByteArray level = "<cvParam cvRef=\"MS\" accession=\"MS:1000511\" name=\"ms level\" value=\"2\"/>";
    QByteArray content = mzMl({{"scan=7"}, {"scan=8"}, {"scan=9"}});
    content.replace(content.indexOf(level), level.size(), "<referenceableParamGroupRef ref=\"g\"/>");
    content.replace(content.lastIndexOf(level), level.size(),
                    "<cvParam cvRef=\"MS\" accession=\"MS:1000579\" name=\"MS1 spectrum\"/>");
    content.insert(content.indexOf("<run"),
                   "<referenceableParamGroupList count=\"1\"><referenceableParamGroup id=\"g\">" + level +
                       "</referenceableParamGroup></referenceableParamGroupList>");
    const auto file = openSpectrumFile(files.write("a.mzML", content));
    ASSERT_FALSE(file.hasError()) << file.error().message().toStdString();
    EXPECT_EQ(file.value()->msLevel(0).value(), 2);
    EXPECT_EQ(file.value()->msLevel(1).value(), 2);
    EXPECT_EQ(file.value()->msLevel(2).value(), 1);
}

TEST_F(MzMlReader, WrongIndexDoesNoHarm)
{
    for (const QByteArray offset : {"1", "99999999", "-5", "x"}) {
        const QByteArray index = "<index name=\"spectrum\"><offset idRef=\"scan=7\">" + offset + "</offset></index>";
        EXPECT_EQ(read(indexedMzMl(mzMl({{"scan=7"}}), index, offset)).value().peaks, TWO_PEAKS);
        EXPECT_EQ(read(indexedMzMl(mzMl({{"scan=7"}}), index)).value().peaks, TWO_PEAKS);
    }
}

TEST_F(MzMlReader, FileOfChromatogramsAloneHoldsNoSpectrum)
{
    const QByteArray index = "<index name=\"chromatogram\"><offset idRef=\"TIC\">300</offset></index>";
    EXPECT_EQ(message(read(indexedMzMl(mzMl({}), index))), "cannot read a.mzML: it holds no spectrum");
}

// A measured file. What is expected stands in the file's own metadata, written by the instrument's software.
TEST_F(MzMlReader, RealFileAgreesWithItsOwnMetadata)
{
    const auto result = readObservedSpectrum(QStringLiteral(ZAV_TEST_DATA_DIR "/LQSRPAAPPAPGPGQLTLR.mzML"), {});
    ASSERT_FALSE(result.hasError()) << result.error().toString().toStdString();
    const ObservedSpectrum &spectrum = result.value();
    EXPECT_EQ(spectrum.title, "LQSRPAAPPAPGPGQLTLR.mzML, scan 30069");
    EXPECT_DOUBLE_EQ(spectrum.precursorMz, 643.034396630915);
    EXPECT_EQ(spectrum.precursorCharge, 3);
    ASSERT_EQ(spectrum.peaks.size(), 299);
    // Stored as 32-bit floats.
    EXPECT_NEAR(spectrum.peaks.constFirst().x(), 110.05583190918, 1e-5);
    EXPECT_NEAR(spectrum.peaks.constLast().x(), 1494.1669921875, 1e-4);
    const auto base = std::max_element(spectrum.peaks.begin(), spectrum.peaks.end(),
                                       [](const QPointF &a, const QPointF &b) { return a.y() < b.y(); });
    EXPECT_NEAR(base->x(), 938.5416722, 1e-4);
    EXPECT_NEAR(base->y(), 9.045039e06, 1);
}

} // namespace
} // namespace zav
