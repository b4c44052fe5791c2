// SPDX-License-Identifier: Apache-2.0
#include "TraceGrouping.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zav {
namespace {

Chromatogram named(const QString &id, const QString &group = {}, const QString &timeUnit = {})
{
    Chromatogram trace;
    trace.id = id;
    trace.points = {{0, 1}, {10, 1}};
    trace.timeUnit = timeUnit;
    trace.origin.group = group;
    return trace;
}

Chromatogram ofPrecursor(const QString &id, double isolationTarget, double start, double end,
                         const QString &peptide = {}, char polarity = 0)
{
    Chromatogram trace = named(id);
    trace.points = {{start, 1}, {(start + end) / 2, 5}, {end, 1}};
    trace.origin.isolationTarget = isolationTarget;
    trace.origin.peptide = peptide;
    trace.origin.polarity = polarity;
    return trace;
}

/// Each group as `name: 0 2 3`.
std::vector<std::string> groupsOf(const QList<Chromatogram> &traces, const QString &idPattern = {})
{
    TraceGrouping grouping{QRegularExpression(idPattern)};
    for (const Chromatogram &trace : traces)
        grouping.add(trace);
    std::vector<std::string> out;
    for (const TraceGrouping::Group &group : grouping.groups()) {
        std::string text = group.name.toStdString() + ":";
        for (const qsizetype member : group.members)
            text += ' ' + std::to_string(member);
        out.push_back(text);
    }
    return out;
}

using Groups = std::vector<std::string>;

TEST(TraceGrouping, TracesThatTheFileGivesOneGroupBelongTogetherWhereverTheyStand)
{
    EXPECT_EQ(groupsOf({named("a", "P"), named("b", "Q"), named("c", "P"), named("d")}),
              (Groups{"P: 0 2", "Q: 1", "d: 3"}));
}

TEST(TraceGrouping, TargetsWithinAHundredthBelongTogether)
{
    EXPECT_EQ(groupsOf({ofPrecursor("a", 500.00, 0, 10), ofPrecursor("b", 500.01, 0, 10),
                        ofPrecursor("c", 500.02, 0, 10), ofPrecursor("d", 499.995, 0, 10)}),
              (Groups{"m/z 500: 0 1", "m/z 500.02: 2", "m/z 499.995: 3"}))
        << "c is too far from a, d from b";
}

TEST(TraceGrouping, PeptidesAndPolaritiesAreKeptApart)
{
    EXPECT_EQ(groupsOf({ofPrecursor("a", 500, 0, 10, "AK"), ofPrecursor("b", 500, 0, 10, "CK"),
                        ofPrecursor("c", 500, 0, 10), ofPrecursor("d", 500, 0, 10, "AK"),
                        ofPrecursor("e", 500, 0, 10, {}, '-'), ofPrecursor("f", 500, 0, 10, {}, '+')}),
              (Groups{"AK 500: 0 3", "CK 500: 1", "m/z 500: 2", "m/z 500#2: 4", "m/z 500#3: 5"}));
}

TEST(TraceGrouping, HeavyAndLightAreKeptApart)
{
    EXPECT_EQ(groupsOf({ofPrecursor("light", 559.788, 0, 10, "AAGGISSLEDAK"),
                        ofPrecursor("heavy", 563.795, 0, 10, "AAGGISSLEDAK")}),
              (Groups{"AAGGISSLEDAK 559.788: 0", "AAGGISSLEDAK 563.795: 1"}));
}

TEST(TraceGrouping, TimesOverlapByHalfOfTheLongerTrace)
{
    const auto together = [](double start, double end) {
        return groupsOf({ofPrecursor("a", 500, 0, 10), ofPrecursor("b", 500, start, end)}).size() == 1;
    };
    EXPECT_TRUE(together(0, 10));
    EXPECT_TRUE(together(5, 15));
    EXPECT_FALSE(together(5.1, 15.1));
    EXPECT_FALSE(together(11, 20));
    EXPECT_TRUE(together(2, 7));
    EXPECT_FALSE(together(2, 6.9)) << "a short trace within a long one";
    EXPECT_TRUE(together(0, 20));
    EXPECT_FALSE(together(0, 20.1));
}

TEST(TraceGrouping, EveryTwoMembersOverlap)
{
    EXPECT_EQ(groupsOf({ofPrecursor("a", 500, 0, 10), ofPrecursor("b", 500, 5, 15), ofPrecursor("c", 500, 8, 18),
                        ofPrecursor("d", 500, 0, 10)}),
              (Groups{"m/z 500: 0 1 3", "m/z 500#2: 2"}));
}

TEST(TraceGrouping, PatternTakesTheFirstCaptureOfTheId)
{
    const QList<Chromatogram> traces = {named("AK/2_y3"), named("CK/2_y3"), named("AK/2_y4"), named("TIC")};
    EXPECT_EQ(groupsOf(traces, "^(\\w+/\\d)_"), (Groups{"AK/2: 0 2", "CK/2: 1", "TIC: 3"}));
    EXPECT_EQ(groupsOf(traces, "^\\wK"), (Groups{"AK: 0 2", "CK: 1", "TIC: 3"})) << "without capture the match";
}

TEST(TraceGrouping, GroupOfTheFileComesBeforeThePatternAndThatBeforeThePrecursor)
{
    EXPECT_EQ(groupsOf({named("x_1", "P"), named("x_2"), ofPrecursor("x_3", 500, 0, 10), ofPrecursor("y", 500, 0, 10),
                        ofPrecursor("z", 500, 0, 10)},
                       "(x)_"),
              (Groups{"P: 0", "x: 1 2", "m/z 500: 3 4"}));
}

TEST(TraceGrouping, UnitsOfTimeAreKeptApart)
{
    EXPECT_EQ(groupsOf({named("a", "P", "min"), named("b", "P", "s"), named("c", "P", "min")}),
              (Groups{"P: 0 2", "P#2: 1"}));
}

TEST(TraceGrouping, TraceWithoutPointsIsInTheGroupThatTheFileNamesOnly)
{
    Chromatogram empty = named("b", "P");
    empty.points.clear();
    EXPECT_EQ(groupsOf({named("a", "P"), empty}), (Groups{"P: 0 1"}));
    empty = ofPrecursor("b", 500, 0, 10);
    empty.points.clear();
    EXPECT_EQ(groupsOf({ofPrecursor("a", 500, 0, 10), empty}), (Groups{"m/z 500: 0", "b: 1"}));
}

TEST(TraceGrouping, TraceThatIsLeftOutKeepsItsPlace)
{
    TraceGrouping grouping;
    grouping.addAlone("broken");
    EXPECT_FALSE(grouping.foundPrecursor());
    grouping.add(named("a", "P"));
    EXPECT_TRUE(grouping.foundPrecursor());
    ASSERT_EQ(grouping.groups().size(), 2);
    EXPECT_EQ(grouping.groups()[0].members, QList<qsizetype>{0});
    EXPECT_EQ(grouping.groups()[1].members, QList<qsizetype>{1});
}

} // namespace
} // namespace zav
