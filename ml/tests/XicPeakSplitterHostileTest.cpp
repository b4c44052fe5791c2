// SPDX-License-Identifier: Apache-2.0
#include <zav/XicPeakSplitter.h>

#include "MessageRecorder.h"
#include "XicPeakSplitterFixture.h"

#include <QtCore/QLoggingCategory>

#include <gtest/gtest.h>

#include <limits>

namespace zav {
namespace {

// Broken networks and hostile traces

TEST_F(XicPeakSplitterTest, MissingOperationsAreTagged)
{
    const MessageRecorder silence;
    GraphDefBuilder noInput;
    noInput.constant(Network::OUTPUT, {1}, {1.0F}).noOp("init");
    initialise(plainOptions(noInput));
    expectFailure({204}, splitFlat());
    GraphDefBuilder noOutput;
    noOutput.placeholder(Network::INPUT, {{-1, 1, 1}}).noOp("init");
    initialise(plainOptions(noOutput));
    expectFailure({210}, splitFlat());
}

TEST_F(XicPeakSplitterTest, InputOfAnotherLengthIsTagged)
{
    const MessageRecorder silence;
    GraphDefBuilder graph;
    graph.placeholder(Network::INPUT, {{-1, 1000, 1, 1}}).identity(Network::OUTPUT, Network::INPUT).noOp("init");
    initialise(plainOptions(graph));
    expectFailure({213}, splitFlat());
}

TEST_F(XicPeakSplitterTest, RunThatFailsIsTagged)
{
    GraphDefBuilder graph;
    graph.placeholder(Network::INPUT, {{-1, 1, 1}}).placeholder("unfed", {{1}});
    graph.identity(Network::OUTPUT, "unfed").noOp("init");
    initialise(plainOptions(graph));
    expectFailure({214}, splitFlat());
}

TEST_F(XicPeakSplitterTest, OutputOfAnotherTypeIsTagged)
{
    const MessageRecorder silence;
    GraphDefBuilder graph;
    graph.placeholder(Network::INPUT, {{-1, 1, 1}});
    graph.cast(Network::OUTPUT, Network::INPUT, GraphDefBuilder::FLOAT, GraphDefBuilder::INT32).noOp("init");
    initialise(plainOptions(graph));
    expectFailure({215}, splitFlat());
}

TEST_F(XicPeakSplitterTest, FewerProbabilitiesThanPointsAreAFailure)
{
    initialise(plainOptions(Network::constant(std::vector<float>(19, 0.0F))));
    expectFailure({218}, splitFlat(20));
    expectSplits({}, splitFlat(19));
}

TEST_F(XicPeakSplitterTest, NonFiniteProbabilitiesReachNoIndexOutsideTheList)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    initialise({nan, nan, 0.0F, infinity, 0.0F, -infinity, nan});
    expectSplits({{3, infinity}}, splitFlat());
    initialise(std::vector<float>(20, nan));
    expectSplits({}, splitFlat(20));
}

TEST_F(XicPeakSplitterTest, NonFiniteAndNegativeIntensitiesAreTaken)
{
    XicPeakSplitterOptions options = plainOptions(Network::identity(), 1.0);
    options.smoothingPassCount = 2;
    initialise(options);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double odd : {nan, infinity, -infinity, -1e300, 1e300}) {
        for (const int count : {5, 40, LENGTH, LENGTH + 50}) {
            QList<QPointF> points = Network::chromatogram(std::vector<double>(count, 1.0));
            points[count / 2].setY(odd);
            const Splits splits = splitter.splitXIC(points);
            ASSERT_FALSE(splits.hasError());
            EXPECT_LE(splits.value().size(), 4);
        }
    }
}

TEST_F(XicPeakSplitterTest, MillionPointsAreThinnedAndSplit)
{
    initialise(plainOptions(Network::identity()));
    std::vector<double> trace(1000000, 0.01);
    trace[700000] = 1.0;
    expectSplits({{700000, 1.0F}}, splitter.splitXIC(Network::chromatogram(trace)));
}

TEST_F(XicPeakSplitterTest, OperationsWithoutAnOutputAreTagged)
{
    const MessageRecorder silence;
    GraphDefBuilder noInput;
    noInput.noOp(Network::INPUT).constant(Network::OUTPUT, {1}, {1.0F}).noOp("init");
    initialise(plainOptions(noInput));
    expectFailure({204}, splitFlat());
    GraphDefBuilder noOutput;
    noOutput.placeholder(Network::INPUT, {{-1, 1, 1}}).noOp(Network::OUTPUT).noOp("init");
    initialise(plainOptions(noOutput));
    expectFailure({210}, splitFlat());
}

TEST_F(XicPeakSplitterTest, RefusedPointCountsInForceFindNothing)
{
    for (const int count : {0, -1, -5, std::numeric_limits<int>::min()}) {
        initialise(plainOptions(Network::identity()));
        XicPeakSplitterOptions refused = plainOptions(Network::identity());
        refused.maxPointCount = count;
        EXPECT_TRUE(splitter.init(refused).equals(InvalidInput));
        expectSplits({}, splitFlat());
    }
}

TEST_F(XicPeakSplitterTest, PointsThatCannotBeThinnedAreRemarkedOnInTheDebugLog)
{
    initialise(plainOptions(Network::identity()));
    inside().options.maxPointCount = -1;
    QLoggingCategory::setFilterRules(QStringLiteral("zav.ml.debug=true"));
    {
        const MessageRecorder log;
        expectSplits({}, splitFlat());
        ASSERT_EQ(1, log.messages().size());
        EXPECT_EQ(QtDebugMsg, log.messages()[0].type);
        EXPECT_EQ(QStringLiteral("zav.ml"), log.messages()[0].category);
        EXPECT_TRUE(log.messages()[0].text.contains(QStringLiteral("Points list exceeds Tensor max index limit")));
        EXPECT_EQ(QStringLiteral("ml/src/XicPeakSplitter"), log.messages()[0].sourceFile);
        EXPECT_EQ(104, log.messages()[0].line);
        EXPECT_TRUE(
            log.messages()[0].functionSignature.contains(QStringLiteral("buildInputVector(const QList<QPointF>")))
            << log.messages()[0].functionSignature.toStdString();
    }
    QLoggingCategory::setFilterRules(QString());
}

} // namespace
} // namespace zav
