// SPDX-License-Identifier: Apache-2.0
#include "TraceStream.h"

#include "MzMlText.h"
#include "SimulatedRun.h"
#include "TemporaryFiles.h"

#include <string>
#include <vector>

namespace zav {
namespace {

using Strings = std::vector<std::string>;

/// One point each, whose intensity tells the trace.
QByteArray jsonTrace(const QByteArray &id, const QByteArray &group, int intensity)
{
    return "{\"id\": \"" + id + "\", \"group\": \"" + group + "\", \"rt\": [1], \"intensity\": [" +
           QByteArray::number(intensity) + "]}\n";
}

struct TraceStreaming : testing::Test
{
    TemporaryFiles files;

    /// Each group as `number name: id=intensity id=intensity`, with the number of the trace in front of the id; then
    /// the message of the error that ended the stream.
    Strings groupsOf(const QStringList &names, const QList<ExtractionTarget> &targets = {}) const
    {
        QStringList paths;
        for (const QString &name : names)
            paths.append(files.path(name));
        TraceStream stream(paths, targets);
        stream.group({});
        Error error = stream.open();
        Strings groups;
        while (!error.hasError()) {
            Result<std::optional<TraceGroup>> next = stream.next();
            error = next.error();
            if (next.hasError() || !next.value())
                break;
            groups.push_back(text(*next.value()));
        }
        if (error.hasError())
            groups.push_back(files.withoutFolder(error.message()));
        return groups;
    }

    static std::string text(const TraceGroup &group)
    {
        std::string text = std::to_string(group.number) + ' ' + group.name.toStdString() + ':';
        for (const Trace &trace : group.traces) {
            EXPECT_EQ(trace.group, group.name);
            EXPECT_EQ(trace.members, group.traces.size());
            text += ' ' + std::to_string(trace.number) + trace.chromatogram.id.toStdString();
            text += trace.isBroken ? "!" : '=' + std::to_string(int(trace.chromatogram.points.value(0).y()));
        }
        return text;
    }
};

TEST_F(TraceStreaming, ScatteredTracesComeGroupByGroup)
{
    const QByteArray lines = jsonTrace("a", "P", 1) + jsonTrace("b", "Q", 2) + "# a comment\n\n" +
                             jsonTrace("c", "P", 3) + "{\"id\": \"torn\"}\n" + jsonTrace("d", "Q", 4) +
                             jsonTrace("e", "P", 5);
    const Strings expected = {"1 P: 1a=1 3c=3 6e=5", "2 Q: 2b=2 5d=4", "3 torn: 4torn!"};
    files.write("a.jsonl", lines);
    EXPECT_EQ(groupsOf({"a.jsonl"}), expected);
    files.write("b.jsonl.gz", gzip(lines));
    EXPECT_EQ(groupsOf({"b.jsonl.gz"}), expected);
}

TEST_F(TraceStreaming, RowsOfATableComeGroupByGroup)
{
    files.write("a.tsv",
                "rt\tintensity\tid\tgroup\n1\t10\ta\tP\n2\t11\ta\tP\n\n1\t20\tb\tQ\n1\t30\tc\tP\n1\t40\td\t\n");
    EXPECT_EQ(groupsOf({"a.tsv"}), (Strings{"1 P: 1a=10 3c=30", "2 Q: 2b=20", "3 d: 4d=40"}));
}

TEST_F(TraceStreaming, TraceWhoseRowsNameTwoGroupsIsBroken)
{
    files.write("a.tsv", "rt\tintensity\tid\tgroup\n1\t10\ta\tP\n2\t11\ta\tQ\n1\t20\tb\tQ\n");
    EXPECT_EQ(groupsOf({"a.tsv"}), (Strings{"1 a: 1a!", "2 Q: 2b=20"}));
}

TEST_F(TraceStreaming, GroupsEndWithTheirFileAndNumbersGoOn)
{
    files.write("a.jsonl", jsonTrace("a", "P", 1) + jsonTrace("b", "Q", 2));
    files.write("b.jsonl", jsonTrace("c", "P", 3) + jsonTrace("d", "P", 4));
    EXPECT_EQ(groupsOf({"a.jsonl", "b.jsonl"}), (Strings{"1 P: 1a=1", "2 Q: 2b=2", "3 P: 3c=3 4d=4"}));
}

/// A chromatogram with the precursor's isolation target, and of a peptide where `peptide` is given.
QByteArray mzMlTrace(const QByteArray &id, const QByteArray &target, double intensity, const QByteArray &peptide = {})
{
    const QByteArray activation =
        peptide.isEmpty() ? QByteArray()
                          : "<activation><userParam name=\"peptide_sequence\" value=\"" + peptide + "\"/></activation>";
    const auto window = [](const QByteArray &mz) {
        return "<isolationWindow><cvParam cvRef=\"MS\" accession=\"MS:1000827\" name=\"isolation window target m/z\" "
               "value=\"" +
               mz + "\"/></isolationWindow>";
    };
    return "<chromatogram index=\"0\" id=\"" + id + "\" defaultArrayLength=\"2\"><precursor>" + window(target) +
           activation + "</precursor><product>" + window("700") + "</product><binaryDataArrayList count=\"2\">" +
           dataArray("MS:1000595", "time array", {1, 2}, {}, "UO:0000031") +
           dataArray("MS:1000515", "intensity array", {intensity, 0}) + "</binaryDataArrayList></chromatogram>\n";
}

QByteArray mzMlWith(const QList<QByteArray> &traces)
{
    return mzMlDocument("<chromatogramList count=\"" + QByteArray::number(traces.size()) + "\">" +
                        traces.join(QByteArray()) + "</chromatogramList>");
}

TEST_F(TraceStreaming, PrecursorsOfMzMlComeTogether)
{
    const QByteArray document =
        mzMlWith({mzMlTrace("a", "500.001", 1, "AK"), mzMlTrace("b", "600", 2), mzMlTrace("c", "500.005", 3, "AK"),
                  mzMlTrace("d", "500.001", 4, "C&amp;K"), mzMlTrace("e", "600", 5), mzMlTrace("f", "x", 6)});
    const Strings expected = {"1 AK 500.001: 1a=1 3c=3", "2 m/z 600: 2b=2 5e=5", "3 C&K 500.001: 4d=4", "4 f: 6f=6"};
    files.write("a.mzML", document);
    EXPECT_EQ(groupsOf({"a.mzML"}), expected);
    files.write("b.mzML.gz", gzip(document));
    EXPECT_EQ(groupsOf({"b.mzML.gz"}), expected);
}

TEST_F(TraceStreaming, DamagedTraceOfMzMlDoesNotSpoilItsNeighbours)
{
    QByteArray torn = mzMlTrace("torn", "500", 7);
    torn.replace("</chromatogram>", "");
    files.write("a.mzML", mzMlWith({mzMlTrace("a", "500", 1), torn, mzMlTrace("b", "500", 2)}));
    EXPECT_EQ(groupsOf({"a.mzML"}), (Strings{"1 m/z 500: 1a=1 3b=2", "2 torn: 2torn!"}));
}

TEST_F(TraceStreaming, TargetsComeInTheGroupsOfTheirList)
{
    files.write("a.mzML", SimulatedRun().addSpectrum(1, {{500, 5}, {600, 6}, {700, 7}}).document());
    ExtractionTarget first;
    first.id = QStringLiteral("x");
    first.mz = 500;
    first.group = QStringLiteral("P");
    ExtractionTarget second = first;
    second.id = QStringLiteral("y");
    second.mz = 600;
    second.group = QString();
    ExtractionTarget third = first;
    third.id = QStringLiteral("z");
    third.mz = 700;
    EXPECT_EQ(groupsOf({"a.mzML"}, {first, second, third}), (Strings{"1 P: 1x=5 3z=7", "2 y: 2y=6"}));
}

TEST_F(TraceStreaming, CutFileIsAnErrorBeforeAnyGroup)
{
    const QByteArray whole = mzMlWith({mzMlTrace("a", "500", 1), mzMlTrace("b", "500", 2)});
    files.write("a.mzML", whole.left(whole.size() - 20));
    EXPECT_EQ(groupsOf({"a.mzML"}),
              (Strings{"cannot read a.mzML: it is cut short: it ends within <chromatogramList>"}));
}

TEST_F(TraceStreaming, FileThatTellsNoPrecursorIsToldOfOnce)
{
    files.write("a.tsv", "rt\tintensity\tid\n1\t10\ta\n1\t20\tb\n");
    TraceStream stream({files.path("a.tsv")}, {});
    stream.group({});
    ASSERT_FALSE(stream.open().hasError());
    EXPECT_EQ(stream.count(), 2);
    Result<std::optional<TraceGroup>> first = stream.next();
    ASSERT_TRUE(!first.hasError() && first.value());
    EXPECT_EQ(files.withoutFolder(first.value()->note),
              "a.tsv: nothing tells which traces belong together, so each is read alone");
    Result<std::optional<TraceGroup>> second = stream.next();
    ASSERT_TRUE(!second.hasError() && second.value());
    EXPECT_TRUE(second.value()->note.isEmpty());
}

TEST_F(TraceStreaming, WithoutGroupsEachTraceIsAlone)
{
    TraceStream stream({files.write("a.jsonl", jsonTrace("a", "P", 1) + jsonTrace("b", "P", 2))}, {});
    ASSERT_FALSE(stream.open().hasError());
    for (const char *id : {"a", "b"}) {
        Result<std::optional<TraceGroup>> group = stream.next();
        ASSERT_TRUE(!group.hasError() && group.value());
        EXPECT_FALSE(group.value()->isGrouped());
        ASSERT_EQ(group.value()->traces.size(), 1);
        EXPECT_EQ(group.value()->traces[0].chromatogram.id, id);
    }
}

} // namespace
} // namespace zav
