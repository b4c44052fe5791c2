// SPDX-License-Identifier: Apache-2.0
#include <zav/RetentionTimeCalibration.h>

#include "RetentionTimeNetwork.h"
#include "Trail.h"

#include <zav/RetentionTimePredictor.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zav {
namespace {

using Network = RetentionTimeNetwork;

const Network::Weights RESIDUES{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
const Network::Weights TWICE{2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

constexpr double MILLIMINUTE = 1e-3;

class RetentionTimeCalibrating : public ::testing::Test
{
protected:
    void SetUp() override { load(Network::linear({RESIDUES, TWICE})); }

    void load(const GraphDefBuilder &graph)
    {
        const Error error = predictor.init(network.write(graph));
        ASSERT_FALSE(error.hasError()) << error.toString().toStdString();
    }

    /// Peptides at 5 + 0.1 x their iRT.
    QList<ObservedRetentionTime> pairs(int count)
    {
        const QList<Peptidoform> peptidoforms = randomPlainPeptides(count, 5);
        QList<double> times;
        EXPECT_FALSE(predictor.predict(peptidoforms, &times).hasError());
        QList<ObservedRetentionTime> pairs;
        for (int i = 0; i < count; ++i)
            pairs.append({peptidoforms.at(i), 5.0 + 0.1 * times.at(i)});
        return pairs;
    }

    void expectRefused(const QList<ObservedRetentionTime> &observed, const QString &message)
    {
        const auto calibration = RetentionTimeCalibration::fit(&predictor, observed);
        ASSERT_TRUE(calibration.hasError());
        EXPECT_EQ(calibration.error().code(), InvalidInput);
        EXPECT_EQ(calibration.error().message(), message);
        EXPECT_EQ(trailOf(calibration.error()).last(),
                  QStringLiteral("RetentionTimeCalibration::fit in ml/src/RetentionTimeCalibration"));
    }

    Network network;
    RetentionTimePredictor predictor;
};

TEST_F(RetentionTimeCalibrating, PredictsTheTimesOfTheRun)
{
    const auto calibration = RetentionTimeCalibration::fit(&predictor, pairs(40));
    ASSERT_FALSE(calibration.hasError()) << calibration.error().toString().toStdString();
    const QList<Peptidoform> others = randomPlainPeptides(300, 6);
    QList<double> irts;
    ASSERT_FALSE(predictor.predict(others, &irts).hasError());
    QList<double> times;
    ASSERT_FALSE(calibration.value().predict(&predictor, others, &times).hasError());
    QList<QList<double>> heads;
    ASSERT_FALSE(predictor.predictHeads(others, &heads).hasError());
    const auto indices = calibration.value().indicesOf(heads);
    ASSERT_FALSE(indices.hasError());
    ASSERT_EQ(times.size(), 300);
    for (qsizetype i = 0; i < times.size(); ++i) {
        EXPECT_NEAR(times.at(i), 5.0 + 0.1 * irts.at(i), MILLIMINUTE);
        EXPECT_EQ(times.at(i), calibration.value().timeAt(indices.value().at(i)));
    }
    EXPECT_EQ(calibration.value().pairCount(), 40);
    EXPECT_EQ(calibration.value().outlierCount(), 0);
    EXPECT_LT(calibration.value().width95(), MILLIMINUTE);
}

TEST_F(RetentionTimeCalibrating, IsNotMovedByOutliersAndCountsThem)
{
    QList<ObservedRetentionTime> observed = pairs(40);
    for (int i = 0; i < 40; i += 5)
        observed[i].time += 25.0;
    const auto calibration = RetentionTimeCalibration::fit(&predictor, observed);
    ASSERT_FALSE(calibration.hasError());
    EXPECT_EQ(calibration.value().outlierCount(), 8);
    QList<double> times;
    ASSERT_FALSE(calibration.value().predict(&predictor, {observed.at(0).peptidoform}, &times).hasError());
    EXPECT_NEAR(times.first(), observed.at(0).time - 25.0, MILLIMINUTE);
}

TEST_F(RetentionTimeCalibrating, LeavesOutPairsThatCannotBePredicted)
{
    QList<ObservedRetentionTime> observed = pairs(10);
    observed.append({Peptidoform(QStringLiteral("PEPTIDEX")), 1.0});
    const auto calibration = RetentionTimeCalibration::fit(&predictor, observed);
    ASSERT_FALSE(calibration.hasError());
    EXPECT_EQ(calibration.value().pairCount(), 10);
    EXPECT_EQ(calibration.warnings(), QList<QString>{QStringLiteral("PEPTIDEX has the residue X, which is not one of "
                                                                    "the 20 standard ones: not predicted")});
    QList<double> times;
    const Error outcome =
        calibration.value().predict(&predictor, {observed.last().peptidoform, observed.first().peptidoform}, &times);
    EXPECT_EQ(outcome.warnings(), calibration.warnings());
    ASSERT_EQ(times.size(), 2);
    EXPECT_TRUE(std::isnan(times.at(0)));
    EXPECT_NEAR(times.at(1), observed.first().time, MILLIMINUTE);
}

TEST_F(RetentionTimeCalibrating, RefusesTooFewPairs)
{
    expectRefused({}, QStringLiteral("A calibration needs 10 pairs that can be predicted, not 0"));
    expectRefused(pairs(9), QStringLiteral("A calibration needs 10 pairs that can be predicted, not 9"));
    QList<ObservedRetentionTime> observed = pairs(10);
    observed[4].peptidoform = Peptidoform();
    expectRefused(observed, QStringLiteral("A calibration needs 10 pairs that can be predicted, not 9"));
}

TEST_F(RetentionTimeCalibrating, RefusesTimesThatSayNothing)
{
    QList<ObservedRetentionTime> observed = pairs(12);
    observed[3].peptidoform = Peptidoform(QStringLiteral("GEK"));
    observed[3].time = std::numeric_limits<double>::quiet_NaN();
    expectRefused(observed, QStringLiteral("The time of GEK is not finite"));
    for (ObservedRetentionTime &pair : observed)
        pair.time = 3.0;
    expectRefused(observed, QStringLiteral("All times are equal"));
    observed = pairs(12);
    for (ObservedRetentionTime &pair : observed)
        pair.time = -pair.time;
    expectRefused(observed, QStringLiteral("The times do not rise with the predicted ones"));
}

TEST_F(RetentionTimeCalibrating, RefusesMissingPartners)
{
    EXPECT_EQ(RetentionTimeCalibration::fit(nullptr, pairs(12)).error().code(), InvalidInput);
    const auto calibration = RetentionTimeCalibration::fit(&predictor, pairs(12));
    ASSERT_FALSE(calibration.hasError());
    QList<double> times{7.0};
    EXPECT_EQ(calibration.value().predict(nullptr, {}, &times).code(), InvalidInput);
    EXPECT_EQ(calibration.value().predict(&predictor, {}, nullptr).code(), InvalidInput);
    EXPECT_EQ(times, QList<double>{7.0});
}

TEST_F(RetentionTimeCalibrating, RefusesANetworkOfOtherHeads)
{
    const auto calibration = RetentionTimeCalibration::fit(&predictor, pairs(12));
    ASSERT_FALSE(calibration.hasError());
    load(Network::linear({RESIDUES}));
    QList<double> times{7.0};
    const Error error = calibration.value().predict(&predictor, randomPlainPeptides(3, 7), &times);
    EXPECT_EQ(error.code(), InvalidInput);
    EXPECT_EQ(error.message(), QStringLiteral("The network has 1 outputs, that of the calibration had 2"));
    EXPECT_EQ(times, QList<double>{7.0});
}

TEST_F(RetentionTimeCalibrating, HasNoIndexForAnEmptyRow)
{
    const auto calibration = RetentionTimeCalibration::fit(&predictor, pairs(12));
    ASSERT_FALSE(calibration.hasError());
    const auto indices = calibration.value().indicesOf({{}, {10.0, 20.0}, {}});
    ASSERT_FALSE(indices.hasError());
    EXPECT_TRUE(std::isnan(indices.value().at(0)) && std::isnan(indices.value().at(2)));
    EXPECT_NEAR(calibration.value().timeAt(indices.value().at(1)), 6.0, MILLIMINUTE);
    EXPECT_TRUE(calibration.value().indicesOf({}).value().isEmpty());
    EXPECT_EQ(calibration.value().indicesOf({{1.0, 2.0, 3.0}}).error().code(), InvalidInput);
}

TEST_F(RetentionTimeCalibrating, PassesAFailedPredictionOn)
{
    const QList<ObservedRetentionTime> observed = pairs(12);
    RetentionTimePredictor unloaded;
    const auto calibration = RetentionTimeCalibration::fit(&unloaded, observed);
    ASSERT_TRUE(calibration.hasError());
    EXPECT_EQ(calibration.error().code(), Failure);
    EXPECT_EQ(calibration.error().message(), QStringLiteral("No network for retention times is loaded"));

    const auto fitted = RetentionTimeCalibration::fit(&predictor, observed);
    ASSERT_FALSE(fitted.hasError());
    QList<double> times{7.0};
    const Error error = fitted.value().predict(&unloaded, {observed.constFirst().peptidoform}, &times);
    EXPECT_EQ(error.message(), QStringLiteral("No network for retention times is loaded"));
    EXPECT_EQ(times, QList<double>{7.0});
}

TEST_F(RetentionTimeCalibrating, PredictsNothingOfAnEmptyList)
{
    const auto calibration = RetentionTimeCalibration::fit(&predictor, pairs(12));
    ASSERT_FALSE(calibration.hasError());
    QList<double> times{7.0};
    EXPECT_FALSE(calibration.value().predict(&predictor, {}, &times).hasError());
    EXPECT_TRUE(times.isEmpty());
}

} // namespace
} // namespace zav
