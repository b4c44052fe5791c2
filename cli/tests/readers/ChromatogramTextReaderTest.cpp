// SPDX-License-Identifier: Apache-2.0
#include "MzMlText.h"
#include "TraceList.h"

#include <cstdio>

namespace zav {
namespace {

using Strings = std::vector<std::string>;

struct ChromatogramText : testing::Test
{
    TemporaryFiles files;

    TraceList read(const QString &name, const QByteArray &content) const
    {
        return TraceList::read(files, {files.write(name, content), {}, {}});
    }

    std::vector<std::string> summary(const QString &name, const QByteArray &content) const
    {
        const TraceList list = read(name, content);
        EXPECT_EQ(list.error, "");
        return list.summary(files);
    }
};

const QList<QPointF> THREE_POINTS = {{1.5, 10}, {2, 0}, {2.5, 1e3}};

TEST_F(ChromatogramText, TableWithoutIdsIsOneTrace)
{
    const TraceList list = read("a.tsv", "rt\tintensity\n1.5\t10\n2\t0\n2.5\t1e3\n");
    ASSERT_EQ(list.outcomes.size(), 1);
    const Chromatogram &trace = list.outcomes[0].chromatogram;
    EXPECT_EQ(trace.id, "1");
    EXPECT_EQ(trace.points, THREE_POINTS);
    EXPECT_EQ(trace.timeUnit, "");
    EXPECT_EQ(trace.intensityUnit, "");
    EXPECT_EQ(list.error, "");
}

TEST_F(ChromatogramText, TableGivesATraceForEachRunOfAnId)
{
    const TraceList list = read("a.tsv", "id\trt\tintensity\na\t1\t5\na\t2\t6\nb c\t-1\t-7.5\n");
    ASSERT_EQ(list.outcomes.size(), 2);
    EXPECT_EQ(list.outcomes[0].chromatogram.id, "a");
    EXPECT_EQ(list.outcomes[0].chromatogram.points, (QList<QPointF>{{1, 5}, {2, 6}}));
    EXPECT_EQ(list.outcomes[1].chromatogram.id, "b c");
    EXPECT_EQ(list.outcomes[1].chromatogram.points, (QList<QPointF>{{-1, -7.5}}));
}

TEST_F(ChromatogramText, TableIsReadWhateverItsColumnOrderLineEndsAndComments)
{
    const QByteArray plain = "note\tIntensity\tID\tRT\nx\t10\ta\t1.5\ny\t0\ta\t2\n\t+1e3\ta\t 2.5 \textra\n";
    for (const QByteArray &content :
         {plain, QByteArray(plain).replace("\n", "\r\n"), "\xEF\xBB\xBF" + plain, plain.chopped(1),
          "# from a test\n\n" + QByteArray(plain).replace("\ny\t", "\n\n# half way\ny\t")}) {
        const TraceList list = read("a.tsv", content);
        ASSERT_EQ(list.outcomes.size(), 1) << content.toStdString();
        EXPECT_EQ(list.outcomes[0].chromatogram.points, THREE_POINTS) << content.toStdString();
    }
}

TEST_F(ChromatogramText, TableRowThatIsNoNumberBreaksItsTraceAlone)
{
    const QByteArray table = "id\trt\tintensity\na\t1\t5\nb\t1\tnan\nb\t2\t6\nc\tx\t1\nd\t1\t1e999\ne\t1\nf\t1\t2\n";
    EXPECT_EQ(summary("a.tsv", table), (Strings{"a", "a.tsv, line 3: intensity 'nan' is not a finite number",
                                                "a.tsv, line 5: rt 'x' is not a finite number",
                                                "a.tsv, line 6: intensity '1e999' is not a finite number",
                                                "a.tsv, line 7: intensity '' is not a finite number", "f"}));
    EXPECT_EQ(read("a.tsv", table).outcomes[1].chromatogram.id, "b");
}

TEST_F(ChromatogramText, TableWhoseIdComesBackIsRefusedThere)
{
    const TraceList list = read("a.tsv", "id\trt\tintensity\na\t1\t5\nb\t1\t5\na\t2\t5\nc\t1\t1\n");
    EXPECT_EQ(list.summary(files), (Strings{"a", "b"}));
    EXPECT_EQ(list.error, "a.tsv, line 4: the rows of id 'a' are not together");
}

TEST_F(ChromatogramText, TableThatIsNoneIsRefused)
{
    EXPECT_EQ(read("a.tsv", "").error, "cannot read a.tsv: it is empty");
    EXPECT_EQ(read("a.tsv", "\n# only a comment\n").error, "cannot read a.tsv: it holds no table");
    EXPECT_EQ(read("a.tsv", "rt\tintensity\n").error,
              "cannot read a.tsv: it holds no chromatogram (a heading without rows)");
    EXPECT_EQ(read("a.tsv", "rt,intensity\n1,2\n").error,
              "a.tsv, line 1: the heading has no column 'rt' (columns are separated by tabs)");
    EXPECT_EQ(read("a.tsv", "rt\tid\n1\ta\n").error,
              "a.tsv, line 1: the heading has no column 'intensity' (columns are separated by tabs)");
    EXPECT_EQ(read("a.tsv", "rt\tintensity\tRT\n1\t2\t3\n").error, "a.tsv, line 1: the heading has two columns 'rt'");
    EXPECT_EQ(read("a.tsv", "id\trt\tintensity\n\t1\t2\n").error, "a.tsv, line 2: the row has no id");
    EXPECT_EQ(read("a.tsv", "rt\tintensity\n" + QByteArray(2000000, '1')).error,
              "a.tsv, line 2: the line is longer than 1048576 bytes");
}

TEST_F(ChromatogramText, ByteOrderMarkAloneIsNoId)
{
    EXPECT_EQ(read("a.tsv", "id\trt\tintensity\n\xEF\xBB\xBF\t1\t2\n").error, "a.tsv, line 2: the row has no id");
}

TEST_F(ChromatogramText, LongTableIsReadAcrossThePiecesOfItsFile)
{
    constexpr int TRACES = 300;
    constexpr int POINTS = 500; // 2 MB in all, several pieces
    QByteArray table = "id\trt\tintensity\n";
    for (int i = 0; i < TRACES * POINTS; ++i)
        table += "trace" + QByteArray::number(i / POINTS) + '\t' + QByteArray::number(i) + '\t' +
                 QByteArray::number(3 * i) + '\n';
    for (const TraceList &list : {read("a.tsv", table), read("a.tsv.gz", gzip(table))}) {
        ASSERT_EQ(list.outcomes.size(), TRACES) << list.error;
        for (int i = 0; i < TRACES * POINTS; ++i)
            ASSERT_EQ(list.outcomes[i / POINTS].chromatogram.points[i % POINTS], QPointF(i, 3 * i));
    }
}

TEST_F(ChromatogramText, JsonLinesGiveIdsPointsAndUnit)
{
    const TraceList list = read("a.jsonl", "{\"id\": \"a\", \"rt\": [1.5, 2, 2.5], \"intensity\": [10, 0, 1e3]}\n\n"
                                           "{\"rt\": [], \"intensity\": [], \"rt_unit\": \"min\", \"more\": {}}\r\n"
                                           "{\"id\": 17, \"rt\": [1], \"intensity\": [2], \"rt_unit\": \"s\"}");
    EXPECT_EQ(list.summary(files), (Strings{"a", "2", "17"}));
    EXPECT_EQ(list.error, "");
    EXPECT_EQ(list.outcomes[0].chromatogram.points, THREE_POINTS);
    EXPECT_EQ(list.outcomes[0].chromatogram.timeUnit, "");
    EXPECT_TRUE(list.outcomes[1].chromatogram.points.isEmpty());
    EXPECT_EQ(list.outcomes[1].chromatogram.timeUnit, "min");
    EXPECT_EQ(list.outcomes[2].chromatogram.timeUnit, "s");
}

TEST_F(ChromatogramText, JsonLineThatCannotBeUsedBreaksItsTraceAlone)
{
    EXPECT_EQ(summary("a.jsonl",
                      "{\"id\": \"a\", \"rt\": [1, 2], \"intensity\": [1]}\n{\"rt\": [1]}\n{\"rt\": 1}\n"
                      "{\"rt\": [1, null], \"intensity\": [1, 2]}\n{\"rt\": [1e999], \"intensity\": [1]}\n[1]\n"
                      "{\"rt\": [1], \"intensity\": [NaN]}\n{\"rt\": [1], \"intensity\": [1], \"rt_unit\": \"h\"}\n"
                      "{\"rt\": [1], \"intensity\": [1]\n{\"rt\": [1], \"intensity\": [1]}\n"),
              (Strings{"a.jsonl, line 1: 'rt' has 2 values and 'intensity' 1", "a.jsonl, line 2: has no 'intensity'",
                       "a.jsonl, line 3: 'rt' is not a list", "a.jsonl, line 4: 'rt', value 2, is not a finite number",
                       "a.jsonl, line 5: expected a JSON object on the line",
                       "a.jsonl, line 6: expected a JSON object on the line",
                       "a.jsonl, line 7: expected a JSON object on the line",
                       "a.jsonl, line 8: 'rt_unit' is neither \"min\" nor \"s\"",
                       "a.jsonl, line 9: expected a JSON object on the line", "10"}));
}

TEST_F(ChromatogramText, FileThatIsNoJsonLinesIsRefused)
{
    EXPECT_EQ(read("a.jsonl", "").error, "cannot read a.jsonl: it is empty");
    EXPECT_EQ(read("a.jsonl", "\n\n").error, "cannot read a.jsonl: it holds no chromatogram");
    EXPECT_EQ(read("a.jsonl", "rt\tintensity\n1\t2\n").error, "a.jsonl, line 1: expected a JSON object on the line");
}

TEST_F(ChromatogramText, GzippedTextIsReadWhereverItIs)
{
    const QByteArray table = "rt\tintensity\n1.5\t10\n2\t0\n2.5\t1e3\n";
    // Two members, as `cat a.gz b.gz` makes them, and what gzip passes over behind them.
    for (const QByteArray &content : {gzip(table), gzip(table.left(20)) + gzip(table.mid(20)), gzip(table) + "\0\0"}) {
        for (const char *name : {"a.tsv.gz", "a.tsv"}) {
            const TraceList list = read(name, content);
            ASSERT_EQ(list.outcomes.size(), 1) << list.error;
            EXPECT_EQ(list.outcomes[0].chromatogram.points, THREE_POINTS);
        }
    }
    EXPECT_EQ(summary("a.jsonl.gz", gzip("{\"id\": \"a\", \"rt\": [1], \"intensity\": [1]}\n")), (Strings{"a"}));
}

TEST_F(ChromatogramText, DamagedGzipIsAnErrorOfTheFile)
{
    const QByteArray whole = gzip("rt\tintensity\n1\t2\n2\t3\n");
    EXPECT_EQ(read("a.tsv.gz", whole.chopped(12)).error, "cannot read a.tsv.gz: it ends within its gzipped data");
    EXPECT_EQ(read("a.tsv.gz", whole.left(2)).error, "cannot read a.tsv.gz: it ends within its gzipped data");
    QByteArray damaged = whole;
    damaged[damaged.size() - 6] = static_cast<char>(damaged[damaged.size() - 6] + 1); // of its checksum
    EXPECT_EQ(read("a.tsv.gz", damaged).error, "cannot read a.tsv.gz: it is damaged gzip: incorrect data check");
    const QByteArray empty = QByteArray::fromHex("1f8b080000000000000303000000000000000000"); // of no bytes
    EXPECT_EQ(read("a.tsv.gz", empty).error, "cannot read a.tsv.gz: it is empty");
}

TEST_F(ChromatogramText, RequestThatNoFileCanSatisfyIsInvalidInput)
{
    const auto code = [&](const ChromatogramRequest &request) { return openChromatograms(request).error().code(); };
    EXPECT_EQ(code({files.write("a.mgf", "x"), {}, {}}), InvalidInput);
    EXPECT_EQ(code({files.path("a.tsv"), "csv", {}}), InvalidInput);
    EXPECT_EQ(code({files.write("a.tsv", "rt\tintensity\n1\t2\n"), {}, {{"t", 500, 10}}}), InvalidInput);
    EXPECT_EQ(TraceList::read(files, {files.path("no.tsv"), {}, {}}).error,
              "cannot read no.tsv: No such file or directory");
    EXPECT_EQ(TraceList::read(files, {files.path(""), "tsv", {}}).error, "cannot read : it is a folder");
    EXPECT_EQ(TraceList::read(files, {files.write("a.dat", "rt\tintensity\n1\t2\n"), "tsv", {}}).outcomes.size(), 1);
}

TEST_F(ChromatogramText, StandardInputTellsItsFormatByItsStart)
{
    const auto readStandardInput = [&](const QByteArray &content, const QString &format = QString()) {
        EXPECT_NE(std::freopen(files.write("in", content).toLocal8Bit().constData(), "rb", stdin), nullptr);
        return TraceList::read(files, {"-", format, {}});
    };
    EXPECT_EQ(readStandardInput("id\trt\tintensity\nx\t1\t2\n").summary(files), (Strings{"x"}));
    EXPECT_EQ(readStandardInput(" {\"id\": \"y\", \"rt\": [1], \"intensity\": [2]}\n").summary(files), (Strings{"y"}));
    EXPECT_EQ(readStandardInput("{\"id\": \"y\"}", "tsv").error,
              "standard input, line 1: the heading has no column 'rt' (columns are separated by tabs)");
    EXPECT_EQ(readStandardInput("rt\tintensity\n1\tx\n").summary(files).front(),
              "standard input, line 2: intensity 'x' is not a finite number");
    EXPECT_EQ(readStandardInput("").error, "cannot read standard input: it is empty");
}

} // namespace
} // namespace zav
