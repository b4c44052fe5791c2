// SPDX-License-Identifier: Apache-2.0
//
// Measured spectra from MGF files and plain tables.
#include "MzMlText.h"
#include "ObservedSpectrumFile.h"
#include "TemporaryFiles.h"

namespace zav {
namespace {

struct PeakTextReader : testing::Test
{
    TemporaryFiles files;

    Result<ObservedSpectrum> read(const QString &name, const QByteArray &content, const QString &scan = QString())
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

TEST_F(PeakTextReader, TableGivesItsPeaksByAscendingMz)
{
    const auto spectrum = read("a.tsv", "200.25\t1e3\n100.5\t20\n");
    ASSERT_FALSE(spectrum.hasError()) << spectrum.error().toString().toStdString();
    EXPECT_EQ(spectrum.value().peaks, TWO_PEAKS);
    EXPECT_EQ(spectrum.value().title, "a.tsv");
    EXPECT_EQ(spectrum.value().precursorMz, 0);
}

TEST_F(PeakTextReader, TableMayHaveAHeadingCommentsBlankLinesWindowsEndsAndMoreColumns)
{
    const auto spectrum =
        read("a.TSV", "\xEF\xBB\xBF# by hand\r\nm/z\tintensity\tion\r\n\r\n100.5\t20\ty1\r\n200.25 1000\r\n");
    ASSERT_FALSE(spectrum.hasError()) << spectrum.error().toString().toStdString();
    EXPECT_EQ(spectrum.value().peaks, TWO_PEAKS);
}

TEST_F(PeakTextReader, PeaksOfIntensityZeroAreLeftOut)
{
    EXPECT_EQ(read("a.txt", "50 0\n100.5 20\n200.25 1000\n60 0.0\n").value().peaks, TWO_PEAKS);
}

TEST_F(PeakTextReader, TableNamesTheLineItCannotRead)
{
    EXPECT_EQ(message(read("a.tsv", "m/z\tintensity\n100\t1\nnonsense\n")),
              "a.tsv, line 3: expected m/z and intensity");
    EXPECT_EQ(message(read("a.tsv", "100,5\t1\n")), "a.tsv, line 1: expected m/z and intensity");
    EXPECT_EQ(message(read("a.tsv", "100\n")), "a.tsv, line 1: expected m/z and intensity");
    EXPECT_EQ(message(read("a.tsv", "m/z i\nmore words\n")), "a.tsv, line 2: expected m/z and intensity");
}

TEST_F(PeakTextReader, ValuesThatAreNoPeakAreRefused)
{
    for (const char *line : {"nan 1", "inf 1", "0 1", "-5 1", "100 -1", "100 nan", "100 inf"})
        EXPECT_EQ(message(read("a.tsv", QByteArray("1 1\n") + line)), "a.tsv, line 2: expected m/z and intensity")
            << line;
}

TEST_F(PeakTextReader, EmptyTableIsAnError)
{
    EXPECT_EQ(message(read("a.tsv", "")), "cannot read a.tsv: it holds no peaks");
    EXPECT_EQ(message(read("a.tsv", "m/z\tintensity\n")), "cannot read a.tsv: it holds no peaks");
}

TEST_F(PeakTextReader, FileThatIsNoTextIsRefusedWithoutReadingItWhole)
{
    EXPECT_EQ(message(read("a.tsv", QByteArray(1 << 20, '\1'))), "a.tsv, line 1: the line is longer than 65536 bytes");
}

TEST_F(PeakTextReader, MissingFileFolderAndUnknownEndingAreErrors)
{
    EXPECT_EQ(message(readObservedSpectrum(files.path("no.mgf"), {})), "cannot read no.mgf: No such file or directory");
    EXPECT_TRUE(readObservedSpectrum(files.path("no.mgf"), {}).error().equals(Failure));
    EXPECT_EQ(message(readObservedSpectrum(files.path("."), {})),
              ".: spectra are read from files that end in .mzML, .mzML.gz, .mgf, .tsv or .txt");
    const auto raw = read("a.raw", "x");
    EXPECT_EQ(message(raw), "a.raw: spectra are read from files that end in .mzML, .mzML.gz, .mgf, .tsv or .txt");
    EXPECT_TRUE(raw.error().equals(InvalidInput));
    QDir(files.path(QString())).mkdir("folder.mgf");
    EXPECT_EQ(message(readObservedSpectrum(files.path("folder.mgf"), {})), "cannot read folder.mgf: it is a folder");
}

const QByteArray ONE_SPECTRUM = "# search: none\nCOM=a run\nCHARGE=2+ and 3+\n\n"
                                "BEGIN IONS\nTITLE=first = best\nPEPMASS=643.0344 3061\nCHARGE=3+\nSCANS=30069-30071\n"
                                "RTINSECONDS=6497.1\n200.25 1000 1+\n100.5 20\nEND IONS\n";

TEST_F(PeakTextReader, MgfGivesTitlePrecursorAndPeaks)
{
    const auto spectrum = read("a.mgf", ONE_SPECTRUM);
    ASSERT_FALSE(spectrum.hasError()) << spectrum.error().toString().toStdString();
    EXPECT_EQ(spectrum.value().title, "first = best");
    EXPECT_EQ(spectrum.value().precursorMz, 643.0344);
    EXPECT_EQ(spectrum.value().precursorCharge, 3);
    EXPECT_EQ(spectrum.value().peaks, TWO_PEAKS);
}

TEST_F(PeakTextReader, MgfWithWindowsEndsReadsTheSame)
{
    EXPECT_EQ(read("a.mgf", QByteArray(ONE_SPECTRUM).replace("\n", "\r\n")).value().peaks, TWO_PEAKS);
}

const QByteArray THREE_SPECTRA = "BEGIN IONS\nTITLE=a\nSCANS=11\nMSLEVEL=1\n1 1\nEND IONS\n"
                                 "BEGIN IONS\nTITLE=b\nSCANS=12\n2 1\nEND IONS\n"
                                 "BEGIN IONS\nTITLE=c\nSCANS=13\n3 1\n4 1\nEND IONS\n";

TEST_F(PeakTextReader, ScanIsFoundByTitleScanNumberAndIndex)
{
    for (const char *scan : {"c", "13", "index=2"}) {
        const auto spectrum = read("a.mgf", THREE_SPECTRA, scan);
        ASSERT_FALSE(spectrum.hasError()) << scan << ' ' << spectrum.error().toString().toStdString();
        EXPECT_EQ(spectrum.value().title, "c");
        EXPECT_EQ(spectrum.value().peaks.size(), 2);
    }
}

TEST_F(PeakTextReader, GzippedContentIsReadTheSame)
{
    EXPECT_EQ(read("a.mgf", gzip(THREE_SPECTRA), "b").value().peaks, (QList<QPointF>{{2, 1}}));
    EXPECT_EQ(read("a.tsv", gzip("100.5 20\n200.25 1000\n")).value().peaks, TWO_PEAKS);
}

TEST_F(PeakTextReader, ManyScansOfOneFileAreEachTheirOwn)
{
    const QStringList scans = {"b", "12", "13", "99", "b"};
    for (const bool isGzipped : {false, true}) {
        const QString path = files.write("a.mgf", isGzipped ? gzip(THREE_SPECTRA) : THREE_SPECTRA);
        const auto spectra = ObservedSpectra::open(path, scans);
        ASSERT_FALSE(spectra.hasError());
        for (qsizetype i = 0; i < scans.size(); ++i) {
            const auto one = readObservedSpectrum(path, scans[i]);
            const auto same = spectra.value()->read(i);
            ASSERT_EQ(same.value().problem.message(), one.error().message());
            EXPECT_EQ(one.hasError(), scans[i] == QStringLiteral("99"));
            if (!one.hasError()) {
                EXPECT_EQ(same.value().spectrum.title, one.value().title);
                EXPECT_EQ(same.value().spectrum.peaks, one.value().peaks);
            }
        }
    }
}

TEST_F(PeakTextReader, FileThatEndsEarlierThanBeforeHasChanged)
{
    const QByteArray filler(1 << 20, '\n'); // so that the end is read again
    const QString path = files.write("a.mgf", filler + THREE_SPECTRA);
    const auto spectra = ObservedSpectra::open(path, {"c"});
    ASSERT_FALSE(spectra.hasError());
    for (const qint64 size : {filler.size() + THREE_SPECTRA.lastIndexOf("END IONS"), qsizetype(0)}) {
        ASSERT_TRUE(QFile(path).resize(size));
        EXPECT_EQ(files.withoutFolder(spectra.value()->read(0).error().message()),
                  "cannot read a.mgf: it has changed since it was opened");
    }
}

TEST_F(PeakTextReader, WithoutScanNumbersANumberIsTheIndexFromZero)
{
    QByteArray content = THREE_SPECTRA;
    content.replace("SCANS", "RAWFILE");
    EXPECT_EQ(read("a.mgf", content, "1").value().title, "b");
}

TEST_F(PeakTextReader, WithoutAScanSeveralSpectraAreCountedAndRefused)
{
    const auto spectrum = read("a.mgf", THREE_SPECTRA);
    EXPECT_EQ(message(spectrum), "a.mgf: holds 2 MS2 spectra: choose one with --scan");
    EXPECT_TRUE(spectrum.error().equals(InvalidInput));
}

TEST_F(PeakTextReader, ScanThatIsNotThereIsRefusedWithWhatThereIs)
{
    EXPECT_EQ(message(read("a.mgf", THREE_SPECTRA, "99")),
              "a.mgf: has no spectrum '99': it holds 3 spectra, scan 11 to 13");
    EXPECT_EQ(message(read("a.mgf", THREE_SPECTRA, "index=3")),
              "a.mgf: has no spectrum 'index=3': it holds 3 spectra, scan 11 to 13");
    EXPECT_EQ(message(read("a.tsv", "1 1\n", "7")), "a.tsv: has no spectrum '7': it holds 1 spectrum, index 0 to 0");
}

TEST_F(PeakTextReader, SurveySpectrumAndAmbiguousScanAreRefused)
{
    EXPECT_EQ(message(read("a.mgf", THREE_SPECTRA, "11")),
              "a.mgf: spectrum '11' is a survey spectrum (MS1), not MS/MS");
    QByteArray twice = THREE_SPECTRA;
    twice.replace("SCANS=12", "SCANS=13");
    EXPECT_EQ(message(read("a.mgf", twice, "13")), "a.mgf: '13' names 2 spectra: give a native id or index=N");
}

TEST_F(PeakTextReader, DamagedMgfNamesTheLine)
{
    EXPECT_EQ(message(read("a.mgf", "hello\n")), "cannot read a.mgf: it holds no spectrum (no line BEGIN IONS)");
    EXPECT_EQ(message(read("a.mgf", "")), "cannot read a.mgf: it holds no spectrum (no line BEGIN IONS)");
    EXPECT_EQ(message(read("a.mgf", "BEGIN IONS\n1 2\n")),
              "a.mgf, line 2: the file ends within a spectrum (no END IONS)");
    EXPECT_EQ(message(read("a.mgf", "BEGIN IONS\n1 2\nBEGIN IONS\n1 2\nEND IONS\n")),
              "a.mgf, line 3: BEGIN IONS before the END IONS of the spectrum above");
    EXPECT_EQ(message(read("a.mgf", "BEGIN IONS\nPEPMASS=heavy\n1 2\nEND IONS\n")),
              "a.mgf, line 2: PEPMASS is not a number");
    EXPECT_EQ(message(read("a.mgf", "BEGIN IONS\nTITLE=x\n1 2\n1;2\nEND IONS\n")),
              "a.mgf, line 4: expected m/z and intensity");
}

TEST_F(PeakTextReader, SpectrumWithoutPeaksIsAnEmptySpectrum)
{
    const auto spectrum = read("a.mgf", "BEGIN IONS\nTITLE=x\nEND IONS\n");
    ASSERT_FALSE(spectrum.hasError());
    EXPECT_TRUE(spectrum.value().peaks.isEmpty());
}

} // namespace
} // namespace zav
