// SPDX-License-Identifier: Apache-2.0
#include "FragmentationTest.h"
#include "MessageRecorder.h"

#include <QtCore/QFile>

#include <type_traits>

namespace zav {
namespace {

using FragmentationLifecycle = FragmentationTest;

static_assert(!std::is_copy_constructible_v<MsMsFragmentationPredictomatic>);
static_assert(!std::is_move_constructible_v<MsMsFragmentationPredictomatic>);

TEST_F(FragmentationLifecycle, FreshPredictorHasNoNetworkButKnowsItsLimits)
{
    EXPECT_FALSE(predictor.isInit());
    EXPECT_EQ(predictor.maxPredictionChargeState(), 0);
    const QList<int> lengths{0, 27, 43, 50, 52, 50, 0};
    for (int charge = 0; charge <= 6; ++charge)
        EXPECT_EQ(predictor.getMaximumPeptideLengthForCharge(charge), lengths.at(charge));
    EXPECT_EQ(predictor.getMaximumPeptideLengthForCharge(-1), 0);
}

TEST_F(FragmentationLifecycle, FiveNetworksServeChargesOneToFive)
{
    const Error error = files.init(&predictor);
    EXPECT_FALSE(error.hasError()) << error.toString().toStdString();
    EXPECT_TRUE(predictor.isInit());
    EXPECT_EQ(predictor.maxPredictionChargeState(), 5);
}

TEST_F(FragmentationLifecycle, FailedNetworkIsNamedByItsLineAndLeavesThoseBeforeIt)
{
    const QList<int> lines{58, 62, 66, 70, 74};
    for (int failing = 1; failing <= 5; ++failing) {
        QStringList paths;
        for (int charge = 1; charge <= 5; ++charge)
            paths.append(charge == failing ? QStringLiteral("missing.pb") : files.path(charge));
        MsMsFragmentationPredictomatic fresh;
        const MessageRecorder log;
        const Error error = fresh.init(paths[0], paths[1], paths[2], paths[3], paths[4]);

        EXPECT_EQ(error.code(), Failure);
        EXPECT_EQ(
            lastPlacesOf(error, 2),
            (QStringList{QStringLiteral("MsMsFragmentationPredictomatic::Private::init %1").arg(lines.at(failing - 1)),
                         QStringLiteral("MsMsFragmentationPredictomatic::init 123")}));
        EXPECT_EQ(error.trail().last().sourceFile, QStringLiteral("ml/src/MsMsFragmentationPredictomatic"));
        EXPECT_GT(error.trail().size(), 2) << "the places inside the model come first";
        EXPECT_EQ(fresh.isInit(), failing > 1);
        EXPECT_EQ(fresh.maxPredictionChargeState(), failing - 1);
    }
}

TEST_F(FragmentationLifecycle, TrailHoldsTheFullSignature)
{
    const MessageRecorder log;
    const QString missing = QStringLiteral("missing.pb");
    const Error error = predictor.init(missing, missing, missing, missing, missing);
    // Compilers differ in blanks and in how much of the namespace they spell.
    QString signature = error.trail().last().functionSignature;
    signature.remove(QLatin1Char(' ')).remove(QStringLiteral("zav::"));
    EXPECT_EQ(signature.toStdString(),
              "ErrorMsMsFragmentationPredictomatic::init(constQString&,QString,QString,QString,QString)");
}

TEST_F(FragmentationLifecycle, GraphWithoutInitIsRefused)
{
    GraphDefBuilder graph;
    files.replace(2, graph.noOp("start"));
    const MessageRecorder log;
    const Error error = files.init(&predictor);
    EXPECT_EQ(lastPlacesOf(error, 2), (QStringList{QStringLiteral("MsMsFragmentationPredictomatic::Private::init 62"),
                                                   QStringLiteral("MsMsFragmentationPredictomatic::init 123")}));
    EXPECT_EQ(predictor.maxPredictionChargeState(), 1);
}

TEST_F(FragmentationLifecycle, PathIsReadAsUtf8)
{
    const QString odd = files.path(1).replace(QStringLiteral("charge1"), QStringLiteral("Spektrum-äß-質量"));
    ASSERT_TRUE(QFile::copy(files.path(1), odd));
    const Error error = predictor.init(odd, files.path(2), files.path(3), files.path(4), files.path(5));
    EXPECT_FALSE(error.hasError()) << error.toString().toStdString();
}

TEST_F(FragmentationLifecycle, SecondInitReplacesTheNetworksItReaches)
{
    const auto firstIntensity = [this](int charge) {
        QList<QPointF> spectrum;
        EXPECT_FALSE(predictor.predictMsMsFragmentation(QStringLiteral("A"), charge, &spectrum).hasError());
        return spectrum.isEmpty() ? 0.0 : spectrum.first().y();
    };
    for (const int charge : {1, 2, 3})
        files.replace(charge,
                      constantNetwork(charge, std::vector<float>(FragmentationContract::of(charge).slotCount, 1.0F)));
    ASSERT_FALSE(files.init(&predictor).hasError());
    for (const int charge : {1, 3})
        files.replace(charge,
                      constantNetwork(charge, std::vector<float>(FragmentationContract::of(charge).slotCount, 2.0F)));
    const MessageRecorder log;
    EXPECT_TRUE(predictor.init(files.path(1), QStringLiteral("missing.pb"), files.path(3), files.path(4), files.path(5))
                    .hasError());

    EXPECT_EQ(firstIntensity(1), 2.0) << "replaced";
    EXPECT_EQ(firstIntensity(2), 1.0) << "a failed network leaves the one before";
    EXPECT_EQ(firstIntensity(3), 1.0) << "never reached";
    EXPECT_EQ(predictor.maxPredictionChargeState(), 5);
}

} // namespace
} // namespace zav
