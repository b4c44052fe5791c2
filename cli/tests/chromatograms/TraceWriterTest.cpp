// SPDX-License-Identifier: Apache-2.0
#include "TraceWriter.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <limits>

namespace zav {
namespace {

/// A trace of as many points as are asked for, in which nothing was found.
Trace emptyTrace(const QString &file, const QString &id, const QString &timeUnit, int points)
{
    Trace trace;
    trace.file = file;
    trace.chromatogram.id = id;
    trace.chromatogram.timeUnit = timeUnit;
    trace.chromatogram.points.resize(points);
    return trace;
}

/// A trace with a peak from 1.5 to 2.5.
Trace traceWithPeak(const QString &id, const QString &timeUnit)
{
    Trace trace = emptyTrace(QStringLiteral("a.mzML"), id, timeUnit, 40);
    trace.chromatogram.intensityUnit = QStringLiteral("counts");
    trace.findings.peaks = {{1.5, 2.5, 2, 1234567.5, 0.125, 0.1, 9}};
    return trace;
}

Trace traceWithSplits(const QString &file, const QString &id, const QString &timeUnit, const QList<TraceSplit> &splits)
{
    Trace trace = emptyTrace(file, id, timeUnit, 9);
    trace.findings.splits = splits;
    return trace;
}

std::string textOf(TraceWriter *writer, const Trace &trace)
{
    const Result<QByteArray> text = writer->text(trace);
    EXPECT_FALSE(text.hasError()) << text.error().message().toStdString();
    return text.hasError() ? std::string() : text.value().toStdString();
}

TEST(TraceWriter, TsvHasAHeaderWithTheUnitAndARowAPeak)
{
    const auto writer = makeTraceWriter(TraceFormat::Tsv, peakTable(), 0);
    EXPECT_EQ(textOf(writer.get(), traceWithPeak("x", "min")),
              "id\tstart_min\tend_min\tapex_min\theight\tarea\tarea_above_line\tpoints\n"
              "x\t1.50000\t2.50000\t2.00000\t1234567.5\t0.125\t0.1\t9\n");
    EXPECT_EQ(textOf(writer.get(), traceWithPeak("y", "min")),
              "y\t1.50000\t2.50000\t2.00000\t1234567.5\t0.125\t0.1\t9\n");
    EXPECT_EQ(writer->closing(), QByteArray());
}

TEST(TraceWriter, UnknownUnitLeavesTheColumnsPlain)
{
    const auto writer = makeTraceWriter(TraceFormat::Tsv, splitTable(), 0);
    EXPECT_EQ(textOf(writer.get(), traceWithSplits({}, "x", {}, {{3.25, 0.75}})),
              "id\tsplit\tprobability\nx\t3.25000\t0.7500\n");
}

TEST(TraceWriter, SeveralFilesAreNamedInARow)
{
    const auto writer = makeTraceWriter(TraceFormat::Tsv, splitTable(), 6);
    EXPECT_EQ(textOf(writer.get(), traceWithSplits("a.mzML", "x", "s", {{3, 0.5}, {4, 1}})),
              "file\tid\tsplit_s\tprobability\na.mzML\tx\t3.00000\t0.5000\na.mzML\tx\t4.00000\t1.0000\n");
}

TEST(TraceWriter, TraceWithoutRowsStillGivesTheHeader)
{
    const auto writer = makeTraceWriter(TraceFormat::Tsv, splitTable(), 0);
    EXPECT_EQ(textOf(writer.get(), traceWithSplits({}, "x", "min", {})), "id\tsplit_min\tprobability\n");
    EXPECT_EQ(textOf(writer.get(), traceWithSplits({}, "y", "min", {})), "");
}

TEST(TraceWriter, LaterTracesAreConvertedToTheUnitOfTheHeader)
{
    const auto writer = makeTraceWriter(TraceFormat::Tsv, peakTable(), 0);
    EXPECT_FALSE(textOf(writer.get(), traceWithPeak("x", "s")).empty());
    EXPECT_EQ(textOf(writer.get(), traceWithPeak("y", "min")),
              "y\t90.00000\t150.00000\t120.00000\t1234567.5\t7.5\t6\t9\n");
}

TEST(TraceWriter, UnknownUnitDoesNotGoWithAKnownOne)
{
    const auto writer = makeTraceWriter(TraceFormat::Tsv, peakTable(), 0);
    EXPECT_FALSE(textOf(writer.get(), traceWithPeak("x", "s")).empty());
    EXPECT_EQ(writer->text(traceWithPeak("y", "")).error().message(),
              "times are in an unknown unit, but the header says s");
}

TEST(TraceWriter, TabsAndLineEndsInAnIdDoNotBreakTheRow)
{
    const auto writer = makeTraceWriter(TraceFormat::Tsv, splitTable(), 0);
    EXPECT_EQ(textOf(writer.get(), traceWithSplits({}, "a\tb\nc", {}, {{3, 0.5}})),
              "id\tsplit\tprobability\na\\x09b\\x0ac\t3.00000\t0.5000\n");
}

TEST(TraceWriter, TableHasColumnsOfFixedWidthAndTheIdLast)
{
    const auto writer = makeTraceWriter(TraceFormat::Table, splitTable(), 8);
    EXPECT_EQ(textOf(writer.get(), traceWithSplits("a.tsv", "peak 1", "min", {{3, 0.5}})),
              "   split_min  probability  file      id\n"
              "     3.00000       0.5000  a.tsv     peak 1\n");
}

TEST(TraceWriter, JsonHoldsEveryTraceWithItsUnits)
{
    const auto writer = makeTraceWriter(TraceFormat::Json, peakTable(), 6);
    std::string text = textOf(writer.get(), traceWithPeak("x\t", "s"));
    text += textOf(writer.get(), emptyTrace("b.tsv", "y", {}, 3));
    text += writer->closing().toStdString();
    const nlohmann::json document = nlohmann::json::parse(text);
    const nlohmann::json &traces = document.at("traces");
    ASSERT_EQ(traces.size(), 2);
    EXPECT_EQ(traces[0], nlohmann::json::parse(R"({"file": "a.mzML", "id": "x\t", "time_unit": "s",
        "intensity_unit": "counts", "points": 40, "peaks": [{"start": 1.5, "end": 2.5, "apex": 2.0,
        "height": 1234567.5, "area": 0.125, "area_above_line": 0.1, "points": 9}]})"));
    EXPECT_EQ(traces[1], nlohmann::json::parse(R"({"file": "b.tsv", "id": "y", "time_unit": null,
        "intensity_unit": null, "points": 3, "peaks": []})"));
}

TEST(TraceWriter, JsonOfOneFileDoesNotNameIt)
{
    const auto writer = makeTraceWriter(TraceFormat::Json, splitTable(), 0);
    const std::string text = textOf(writer.get(), traceWithSplits("a.tsv", "x", "min", {{3, 0.5}}));
    const nlohmann::json trace = nlohmann::json::parse(text + writer->closing().toStdString()).at("traces").at(0);
    EXPECT_FALSE(trace.contains("file"));
    EXPECT_EQ(trace.at("splits"), nlohmann::json::parse(R"([{"split": 3.0, "probability": 0.5}])"));
}

/// A member of a group of two, with one peak.
Trace member(const QString &id, const QString &group, const TracePeak &peak)
{
    Trace trace = emptyTrace(QStringLiteral("a.tsv"), id, QStringLiteral("min"), 40);
    trace.group = group;
    trace.members = 2;
    trace.findings.peaks = {peak};
    return trace;
}

const double NONE = std::numeric_limits<double>::quiet_NaN();
const TracePeak LOUD = {1.5, 2.5, 2, 100, 20, 10, 9, 0.98765};
const TracePeak SILENT = {1.5, 2.5, NONE, 0, 0, 0, 9, NONE};

TEST(TraceWriter, TsvNamesTheGroupAndLeavesMissingValuesEmpty)
{
    const auto writer = makeTraceWriter(TraceFormat::Tsv, groupedPeakTable(), 0);
    EXPECT_EQ(textOf(writer.get(), member("y3", "AK 500", LOUD)),
              "id\tgroup\tmembers\tstart_min\tend_min\tapex_min\theight\tarea\tarea_above_line\tpoints\tshape\n"
              "y3\tAK 500\t2\t1.50000\t2.50000\t2.00000\t100\t20\t10\t9\t0.9877\n");
    EXPECT_EQ(textOf(writer.get(), member("y4", "AK 500", SILENT)),
              "y4\tAK 500\t2\t1.50000\t2.50000\t\t0\t0\t0\t9\t\n");
}

TEST(TraceWriter, JsonNamesTheGroupAndHasNullForMissingValues)
{
    const auto writer = makeTraceWriter(TraceFormat::Json, groupedPeakTable(), 0);
    std::string text = textOf(writer.get(), member("y4", "AK 500", SILENT));
    text += writer->closing().toStdString();
    EXPECT_EQ(nlohmann::json::parse(text).at("traces").at(0),
              nlohmann::json::parse(R"({"id": "y4", "group": "AK 500", "members": 2, "time_unit": "min",
        "intensity_unit": null, "points": 40, "peaks": [{"start": 1.5, "end": 2.5, "apex": null, "height": 0.0,
        "area": 0.0, "area_above_line": 0.0, "points": 9, "shape": null}]})"));
}

TEST(TraceWriter, SplitsOfAGroupHaveTheShapeOfTheTrace)
{
    const auto writer = makeTraceWriter(TraceFormat::Tsv, groupedSplitTable(), 0);
    Trace trace = traceWithSplits({}, "y3", "min", {{3, 0.5}, {4, 0.75}});
    trace.group = QStringLiteral("AK");
    trace.members = 3;
    trace.findings.shape = 0.5;
    EXPECT_EQ(textOf(writer.get(), trace), "id\tgroup\tmembers\tsplit_min\tprobability\tshape\n"
                                           "y3\tAK\t3\t3.00000\t0.5000\t0.5000\n"
                                           "y3\tAK\t3\t4.00000\t0.7500\t0.5000\n");
}

TEST(TraceWriter, TableShowsAGroupAsABlock)
{
    const auto writer = makeTraceWriter(TraceFormat::Table, groupedPeakTable(), 0);
    const std::string header = "   start_min     end_min    apex_min      height        area  area_above_line      "
                               "points       shape  id\n";
    const std::string numbers =
        "     1.50000     2.50000     2.00000         100          20               10           "
        "9      0.9877  ";
    EXPECT_EQ(textOf(writer.get(), member("y3", "AK", LOUD)), header + "\ngroup AK, 2 members\n" + numbers + "y3\n");
    EXPECT_EQ(textOf(writer.get(), member("y4", "AK", SILENT)),
              "     1.50000     2.50000           -           0           0                0           9           -  "
              "y4\n");
    Trace alone = member("TIC", "TIC", LOUD);
    alone.members = 1;
    EXPECT_EQ(textOf(writer.get(), alone), "\ngroup TIC, 1 member\n" + numbers + "TIC\n");
}

} // namespace
} // namespace zav
