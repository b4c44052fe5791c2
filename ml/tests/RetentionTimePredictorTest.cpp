// SPDX-License-Identifier: Apache-2.0
#include <zav/RetentionTimePredictor.h>

#include "MessageRecorder.h"
#include "RetentionTimeNetwork.h"
#include "Trail.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zav {
namespace {

using Network = RetentionTimeNetwork;

const Network::Weights RESIDUES{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
const Network::Weights ATOMS{0, 1, 2, 3, 4, 5, 6, -1, -2, -3, -4, -5, -6};

constexpr double ROUNDING = 1e-3; // of sums of up to a thousand in single precision

const QString RESIDUE_ORDER = QStringLiteral("DESTILVFYWACGMPNQHKR");

/// What the head of `RESIDUES` gives: the numbers of the residues, each row's in its own measure.
double residueSum(const Peptidoform &peptidoform)
{
    double sum = 0.0;
    for (qsizetype i = 0; i < peptidoform.sequence().size(); ++i)
        sum += (1 + RESIDUE_ORDER.indexOf(peptidoform.sequence().at(i))) * (1.0 + static_cast<double>(i) / 64.0);
    return sum;
}

Modification modification(const char *name, const ElementalComposition &composition)
{
    return {QString::fromLatin1(name), 1, composition, 0.0};
}

class RetentionTimePrediction : public ::testing::Test
{
protected:
    void load(const GraphDefBuilder &graph)
    {
        const Error error = predictor.init(network.write(graph));
        ASSERT_FALSE(error.hasError()) << error.toString().toStdString();
    }

    void expectMisfit(const GraphDefBuilder &graph)
    {
        const Error error = predictor.init(network.write(graph));
        EXPECT_EQ(error.code(), Failure);
        EXPECT_EQ(error.message(), QStringLiteral("The network is not one for retention times"));
        EXPECT_FALSE(predictor.isInit());
    }

    Network network;
    RetentionTimePredictor predictor;
};

TEST_F(RetentionTimePrediction, GivesTheFirstHeadInTheOrderOfThePeptidoforms)
{
    load(Network::linear({RESIDUES, ATOMS}));
    const QList<Peptidoform> peptidoforms = randomPlainPeptides(700, 1); // several blocks
    QList<double> times;
    const Error outcome = predictor.predict(peptidoforms, &times);
    ASSERT_FALSE(outcome.hasError()) << outcome.toString().toStdString();
    EXPECT_EQ(outcome.warnings(), QList<QString>());
    ASSERT_EQ(times.size(), peptidoforms.size());
    for (qsizetype i = 0; i < times.size(); ++i)
        EXPECT_NEAR(times.at(i), residueSum(peptidoforms.at(i)), ROUNDING) << i;
}

TEST_F(RetentionTimePrediction, GivesAllHeads)
{
    load(Network::linear({RESIDUES, ATOMS, RESIDUES}));
    const Modification acetyl = modification("Acetyl", {2, 2, 0, 1, 0, 0});
    const Modification phospho = modification("Phospho", {0, 1, 0, 3, 1, 0});
    const Peptidoform peptidoform(QStringLiteral("GSK"), {{0, acetyl}, {2, phospho}});
    QList<QList<double>> heads;
    const Error outcome = predictor.predictHeads({Peptidoform(QStringLiteral("GG")), peptidoform}, &heads);
    ASSERT_FALSE(outcome.hasError());
    EXPECT_EQ(outcome.warnings(), QList<QString>());
    ASSERT_EQ(heads.size(), 2);
    EXPECT_EQ(heads.at(0).size(), 3);
    EXPECT_NEAR(heads.at(0).at(1), 0.0, ROUNDING);
    // Phospho in the second row, 2 H + 4 O x 3 + 5 P; acetyl in the first, -(C x 2 + 2 H x 2 + 4 O).
    EXPECT_NEAR(heads.at(1).at(1), (2 + 12 + 5) * (1 + 1.0 / 64) - (2 + 4 + 4), ROUNDING);
    EXPECT_NEAR(heads.at(1).at(2), residueSum(peptidoform), ROUNDING);
}

TEST_F(RetentionTimePrediction, NamesPeptidoformsThatCannotBeRead)
{
    load(Network::linear({RESIDUES}));
    const QList<Peptidoform> peptidoforms{Peptidoform(QStringLiteral("PEPTIDEX")), Peptidoform(QStringLiteral("GK")),
                                          Peptidoform(QString(53, u'G')), Peptidoform()};
    QList<double> times;
    const Error outcome = predictor.predict(peptidoforms, &times);
    ASSERT_FALSE(outcome.hasError());
    EXPECT_EQ(outcome.warnings(),
              QList<QString>({QStringLiteral("PEPTIDEX has the residue X, which is not one of the 20 standard ones: "
                                             "not predicted"),
                              QString(53, u'G') + QStringLiteral(" has 53 residues, not 2 to 52: not predicted"),
                              QStringLiteral("An empty peptidoform has 0 residues, not 2 to 52: not predicted")}));
    ASSERT_EQ(times.size(), 4);
    EXPECT_TRUE(std::isnan(times.at(0)) && std::isnan(times.at(2)) && std::isnan(times.at(3)));
    EXPECT_NEAR(times.at(1), residueSum(peptidoforms.at(1)), ROUNDING);

    QList<QList<double>> heads;
    EXPECT_EQ(predictor.predictHeads(peptidoforms, &heads).warnings(), outcome.warnings());
    ASSERT_EQ(heads.size(), 4);
    EXPECT_TRUE(heads.at(0).isEmpty());
    EXPECT_EQ(heads.at(1), QList<double>{times.at(1)});
}

TEST_F(RetentionTimePrediction, PredictsNothingOfAListWithoutReadableOnes)
{
    load(Network::linear({RESIDUES}));
    QList<double> times{1.0};
    EXPECT_FALSE(predictor.predict({}, &times).hasError());
    EXPECT_TRUE(times.isEmpty());
    EXPECT_FALSE(predictor.predict({Peptidoform(), Peptidoform()}, &times).hasError());
    ASSERT_EQ(times.size(), 2);
    EXPECT_TRUE(std::isnan(times.at(0)) && std::isnan(times.at(1)));
    QList<QList<double>> heads;
    EXPECT_FALSE(predictor.predictHeads({Peptidoform()}, &heads).hasError());
    EXPECT_EQ(heads, QList<QList<double>>({QList<double>()}));
}

TEST_F(RetentionTimePrediction, NamesEachModificationThatTrainingLackedOnce)
{
    load(Network::linear({RESIDUES}));
    const Modification tmt = modification("TMT6plex", {8, 20, 1, 2, 0, 0});
    const Modification oxidation = modification("Oxidation", {0, 0, 0, 1, 0, 0});
    const Modification blocked = modification("Carbamidomethyl", {2, 3, 1, 1, 0, 0});
    const QList<Peptidoform> peptidoforms{
        Peptidoform(QStringLiteral("MCK"), {{0, tmt}, {1, oxidation}, {2, blocked}, {3, tmt}}),
        Peptidoform(QStringLiteral("MKK"), {{2, tmt}, {3, tmt}}), Peptidoform(QStringLiteral("CK"))};
    QList<double> times;
    const Error outcome = predictor.predict(peptidoforms, &times);
    ASSERT_FALSE(outcome.hasError());
    EXPECT_EQ(outcome.warnings(),
              QList<QString>({QStringLiteral("Modification TMT6plex at the N-terminus is unknown to the network"),
                              QStringLiteral("Modification TMT6plex at K is unknown to the network"),
                              QStringLiteral("Cysteine without a modification is unknown to the network")}));
    for (qsizetype i = 0; i < times.size(); ++i)
        EXPECT_NEAR(times.at(i), residueSum(peptidoforms.at(i)), ROUNDING) << "predicted all the same";
}

TEST_F(RetentionTimePrediction, FailsBeforeANetworkIsLoaded)
{
    EXPECT_FALSE(predictor.isInit());
    QList<double> times{7.0};
    const Error error = predictor.predict({Peptidoform(QStringLiteral("GK"))}, &times);
    EXPECT_EQ(error.code(), Failure);
    EXPECT_EQ(error.message(), QStringLiteral("No network for retention times is loaded"));
    EXPECT_EQ(times, QList<double>{7.0});
    QList<QList<double>> heads;
    EXPECT_EQ(predictor.predictHeads({}, &heads).code(), Failure);
}

TEST_F(RetentionTimePrediction, RefusesAMissingList)
{
    load(Network::linear({RESIDUES}));
    EXPECT_EQ(predictor.predict({}, nullptr).code(), InvalidInput);
    EXPECT_EQ(predictor.predictHeads({}, nullptr).code(), InvalidInput);
}

TEST_F(RetentionTimePrediction, HasNoNetworkAfterAFailedInit)
{
    load(Network::linear({RESIDUES}));
    EXPECT_TRUE(predictor.isInit());
    const MessageRecorder silence;
    const Error error = predictor.init(QStringLiteral("/there/is/no/network.pb"));
    EXPECT_EQ(error.code(), Failure);
    EXPECT_EQ(trailOf(error).last(), QStringLiteral("RetentionTimePredictor::init in ml/src/RetentionTimePredictor"));
    EXPECT_FALSE(predictor.isInit());
    QList<double> times;
    EXPECT_EQ(predictor.predict({}, &times).code(), Failure);
    load(Network::linear({RESIDUES}));
    EXPECT_FALSE(predictor.predict({}, &times).hasError());
}

TEST_F(RetentionTimePrediction, RefusesAnInputOfAnotherShape)
{
    const std::vector<std::optional<GraphDefBuilder::Shape>> shapes{{{-1, 26, 13}}, {{-1, 676}},    {{1, 52, 13}},
                                                                    {{-1, 52, 21}}, {{-1, -1, 13}}, std::nullopt};
    load(Network::linear({RESIDUES})); // whose shape must not be taken for that of the next
    for (const auto &shape : shapes) {
        GraphDefBuilder graph;
        graph.placeholder(Network::INPUT, shape).identity(Network::OUTPUT, Network::INPUT).noOp("init");
        expectMisfit(graph);
    }
}

TEST_F(RetentionTimePrediction, RefusesAGraphWithoutItsOperations)
{
    const MessageRecorder recorder;
    GraphDefBuilder withoutOutput;
    withoutOutput.placeholder(Network::INPUT, {{-1, 52, 13}}).noOp("init");
    EXPECT_EQ(predictor.init(network.write(withoutOutput)).code(), Failure);
    GraphDefBuilder withoutInput;
    withoutInput.constant(Network::OUTPUT, {1, 1}, {1.0F}).noOp("init");
    EXPECT_EQ(predictor.init(network.write(withoutInput)).code(), Failure);
    EXPECT_EQ(recorder.criticalTexts(), QList<QString>({QStringLiteral("No operation named retention_times exists"),
                                                        QStringLiteral("No operation named peptidoforms exists")}));
    EXPECT_FALSE(predictor.isInit());
}

TEST_F(RetentionTimePrediction, RefusesAnOutputThatIsNoRowAPeptidoform)
{
    GraphDefBuilder oneNumber;
    oneNumber.placeholder(Network::INPUT, {{-1, 52, 13}}).constant(Network::OUTPUT, {1}, {1.0F}).noOp("init");
    GraphDefBuilder oneRow;
    oneRow.placeholder(Network::INPUT, {{-1, 52, 13}}).constant(Network::OUTPUT, {1, 4}, {1, 2, 3, 4}).noOp("init");
    GraphDefBuilder cube;
    cube.placeholder(Network::INPUT, {{-1, 52, 13}}).identity(Network::OUTPUT, Network::INPUT).noOp("init");
    const QList<Peptidoform> two{Peptidoform(QStringLiteral("GK")), Peptidoform(QStringLiteral("GR"))};
    for (const GraphDefBuilder &graph : {oneNumber, oneRow, cube}) {
        load(graph);
        QList<double> times{7.0};
        const Error error = predictor.predict(two, &times);
        EXPECT_EQ(error.code(), Failure);
        EXPECT_EQ(error.message(), QStringLiteral("The network is not one for retention times"));
        EXPECT_EQ(times, QList<double>{7.0});
    }
}

TEST_F(RetentionTimePrediction, RefusesNumbersThatAreNoFloats)
{
    GraphDefBuilder graph;
    graph.placeholder(Network::INPUT, {{-1, 52, 13}})
        .reshape("flat", Network::INPUT, {-1, 676})
        .cast(Network::OUTPUT, "flat", GraphDefBuilder::FLOAT, GraphDefBuilder::INT32)
        .noOp("init");
    load(graph);
    const MessageRecorder silence;
    QList<double> times;
    EXPECT_EQ(predictor.predict({Peptidoform(QStringLiteral("GK"))}, &times).code(), Failure);
}

} // namespace
} // namespace zav
