// SPDX-License-Identifier: Apache-2.0
#include "TraceReportFile.h"
#include "PackedPoints.h"
#include "ReportText.h"
#include "TemporaryFiles.h"

#include <gtest/gtest.h>

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace zav {
namespace {

using nlohmann::json;

ReportHeading heading()
{
    ReportHeading heading;
    heading.rowsName = "peaks";
    heading.files = {QStringLiteral("run.mzML")};
    heading.columns = {{"start", true}, {"height", false}};
    return heading;
}

ReportEntry entry(const QString &id, const QList<QPointF> &points)
{
    ReportEntry entry;
    entry.timeUnit = QStringLiteral("min");
    entry.intensityUnit = QStringLiteral("counts");
    entry.traces = {{id, points, {{"1.50000", "7"}, {"3.00000", {}}}, {QStringLiteral("a remark")}, {}}};
    entry.peaks = {{1.5, 2, 1.75}, {3, 4, 3.5}};
    return entry;
}

class TraceReportFileTest : public ::testing::Test
{
protected:
    QByteArray write(const QList<ReportEntry> &entries, const QString &name = QStringLiteral("a.html")) const
    {
        TraceReportFile file(m_files.path(name), heading());
        for (const ReportEntry &each : entries)
            EXPECT_FALSE(file.add(each).hasError());
        EXPECT_FALSE(QFileInfo::exists(m_files.path(name))) << "it appears when it is complete";
        EXPECT_FALSE(file.finish().hasError());
        return m_files.read(name);
    }

    TemporaryFiles m_files;
};

TEST_F(TraceReportFileTest, HoldsWhatWasAdded)
{
    const ReportText report(write({entry("SRM 1", {{1, 10}, {1.5, 20}, {2, 5}})}));
    EXPECT_EQ(report.heading.at("rows"), "peaks");
    EXPECT_EQ(report.heading.at("files"), json({"run.mzML"}));
    EXPECT_EQ(report.heading.at("columns"),
              json::parse(R"([{"name": "start", "isTime": true}, {"name": "height", "isTime": false}])"));
    EXPECT_EQ(report.heading.at("isGrouped"), false);
    ASSERT_EQ(report.entries.size(), 1);
    EXPECT_EQ(report.entries[0], json::parse(R"({"block": 0, "at": 0, "file": 0, "timeUnit": "min",
        "intensityUnit": "counts", "peaks": [[1.5, 2.0, 1.75], [3.0, 4.0, 3.5]],
        "traces": [{"id": "SRM 1", "points": 3, "rows": [["1.50000", "7"], ["3.00000", ""]],
                    "remarks": ["a remark"]}]})"));
    EXPECT_EQ(report.series(report.entries[0]), QList<QList<QPointF>>({{{1, 10}, {1.5, 20}, {2, 5}}}));
}

TEST_F(TraceReportFileTest, GroupHasItsConsensusInFrontOfItsTraces)
{
    ReportEntry group = entry("y3", {{1, 4}, {2, 8}});
    group.group = QStringLiteral("AK 500");
    group.consensus = {{1, 16}, {2, 32}};
    group.traces.append({QStringLiteral("y4"), {{1, 2}}, {}, {}, QStringLiteral("it is broken")});
    group.peaks.clear();
    group.splits = {{1.25, 0.75}};
    group.remarks = {QStringLiteral("of the group")};
    const ReportText report(write({entry("alone", {{7, 7}}), group}));
    const json &read = report.entries.at(1);
    EXPECT_EQ(read.at("group"), "AK 500");
    EXPECT_EQ(read.at("splits"), json::parse("[[1.25, 0.75]]"));
    EXPECT_EQ(read.at("remarks"), json({"of the group"}));
    EXPECT_EQ(read.at("traces").at(1), json::parse(R"({"id": "y4", "points": 1, "problem": "it is broken"})"));
    EXPECT_EQ(report.series(read), QList<QList<QPointF>>({{{1, 16}, {2, 32}}, {{1, 4}, {2, 8}}, {{1, 2}}}));
}

TEST_F(TraceReportFileTest, HostileTextIsDataOnly)
{
    const QStringList hostile = {"</script><script>alert(1)</script>",
                                 "<!--<script>",
                                 "]]>",
                                 "\"},{\"",
                                 "a&lt;b&amp;",
                                 "\\u003c\\",
                                 QString("nul") + QChar(0) + "\t\n\r\x1b[2J",
                                 QString(QChar(0x202e)) + "evil",
                                 QString(QChar(0xd800)) + "half",
                                 "<img src=x onerror=alert(1)>",
                                 "'sha256-",
                                 "@data@\n",
                                 "@script@",
                                 QString(QChar(0x2028))};
    QList<ReportEntry> entries;
    for (const QString &id : hostile) {
        entries.append(entry(id, {{1, 1}}));
        entries.last().group = id;
        entries.last().timeUnit = id;
        entries.last().remarks = {id};
    }
    const QByteArray plain = write({entry("plain", {{1, 1}})}, "plain.html");
    const QByteArray page = write(entries);
    const ReportText report(page);
    ASSERT_EQ(report.entries.size(), std::size_t(hostile.size()));
    for (qsizetype i = 0; i < hostile.size(); ++i) {
        const json &read = report.entries[std::size_t(i)];
        const std::string expected = hostile[i].toStdString();
        for (const json &text :
             {read.at("traces")[0].at("id"), read.at("group"), read.at("timeUnit"), read.at("remarks")[0]})
            EXPECT_EQ(text, expected) << i;
    }
    // Nothing of it reached the markup.
    for (const char *piece : {"<script", "</script", "<!--", "<img"})
        EXPECT_EQ(page.count(piece), plain.count(piece)) << piece;
    EXPECT_EQ(report.entries[6].at("traces")[0].at("cell"), "nul\\x00\\x09\\x0a\\x0d\\x1b[2J");
}

/// The content of the only element with that start.
QByteArray between(const QByteArray &page, const QByteArray &start, const QByteArray &end)
{
    const qsizetype from = page.indexOf(start) + start.size();
    EXPECT_EQ(page.count(start), 1) << start.toStdString();
    return page.mid(from, page.indexOf(end, from) - from);
}

TEST_F(TraceReportFileTest, PolicyAllowsThePagesOwnStyleAndScriptOnly)
{
    const QByteArray page = write({entry("a", {{1, 1}})});
    const QByteArray policy = between(page, "<meta http-equiv=\"Content-Security-Policy\" content=\"", "\">");
    const auto allowed = [](const QByteArray &text) {
        return "'sha256-" + QCryptographicHash::hash(text, QCryptographicHash::Sha256).toBase64() + '\'';
    };
    EXPECT_EQ(policy, "default-src 'none'; style-src " + allowed(between(page, "<style>", "</style>")) +
                          "; script-src " + allowed(between(page, "<script>", "</script>")) +
                          "; base-uri 'none'; form-action 'none'");
    EXPECT_LT(page.indexOf(policy), page.indexOf("<style>")) << "a policy holds for what stands behind it";
    EXPECT_FALSE(page.contains("https://"));
    EXPECT_EQ(page.count("http://"), 1) << "the name of SVG";
    EXPECT_FALSE(page.contains("innerHTML"));
    EXPECT_FALSE(page.contains("@data@"));
}

TEST_F(TraceReportFileTest, ManyEntriesAreWrittenInBlocks)
{
    QList<ReportEntry> entries;
    for (int i = 0; i < 500; ++i) {
        QList<QPointF> points;
        for (int j = 0; j < 200 + i % 7; ++j)
            points.append({double(j), double(i * 1000 + j)});
        entries.append(entry(QString::number(i), points));
    }
    const QByteArray page = write(entries);
    const ReportText report(page);
    EXPECT_GT(report.blocks.size(), 2);
    ASSERT_EQ(report.entries.size(), 500);
    for (std::size_t i = 0; i < 500; ++i) {
        EXPECT_EQ(report.entries[i].at("traces")[0].at("id"), std::to_string(i));
        EXPECT_EQ(report.series(report.entries[i]).first(), entries[qsizetype(i)].traces[0].points);
    }
    EXPECT_EQ(page, write(entries, "b.html")) << "equal entries make equal files";
    entries.last().traces[0].points[3].ry() += 1;
    const ReportText other(write(entries, "c.html"));
    EXPECT_NE(report.ending.at("digest"), other.ending.at("digest"));
}

TEST_F(TraceReportFileTest, LongTraceIsSaidToBeThinned)
{
    const ReportText report(write({entry("a", QList<QPointF>(MOST_REPORTED_POINTS + 1, {1, 1}))}));
    EXPECT_EQ(report.entries[0].at("traces")[0].at("points"), MOST_REPORTED_POINTS + 1);
    EXPECT_EQ(report.entries[0].at("traces")[0].at("thinned"), true);
    EXPECT_LE(report.series(report.entries[0])[0].size(), MOST_REPORTED_POINTS);
}

TEST_F(TraceReportFileTest, NoFileAppearsWithoutEntriesOrWithoutItsEnd)
{
    {
        TraceReportFile empty(m_files.path("a.html"), heading());
        EXPECT_FALSE(empty.finish().hasError());
        TraceReportFile unfinished(m_files.path("b.html"), heading());
        EXPECT_FALSE(unfinished.add(entry("a", {{1, 1}})).hasError());
    }
    EXPECT_TRUE(QDir(m_files.path({})).entryList(QDir::Files | QDir::Hidden).isEmpty());
    TraceReportFile nowhere(m_files.path("nowhere/a.html"), heading());
    EXPECT_TRUE(nowhere.add(entry("a", {{1, 1}})).hasError());
}

} // namespace
} // namespace zav
