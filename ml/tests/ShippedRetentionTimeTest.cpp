// SPDX-License-Identifier: Apache-2.0
//
// The network for retention times that the project ships, through the public surface.
#include "RetentionTimeNetwork.h"
#include "RetentionTimePredictor_p.h"
#include "Trail.h"

#include <zav/Modifications.h>
#include <zav/RetentionTimeCalibration.h>
#include <zav/RetentionTimePredictor.h>

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace zav {
namespace {

// Matrices of other shapes sum floats in another order.
constexpr double BATCH_TOLERANCE = 0.01;

const QString NETWORK = QStringLiteral(ZAV_MODELS_DIR "/retention_time.pb");

struct Anchor
{
    const char *sequence;
    double irt;
};

// Escher et al., Proteomics 12, 1111 (2012).
constexpr Anchor ANCHORS[] = {{"LGGNEQVTR", -24.92},    {"GAGSSEPVTGLDAK", 0.0},  {"VEATFGVDESNAK", 12.39},
                              {"YILAGVENSK", 19.79},    {"TPVISGGPYEYR", 28.71},  {"TPVITGAPYEYR", 33.38},
                              {"DGLDAASYYAPVR", 42.26}, {"ADVTPADFSEWSK", 54.62}, {"GTFIIDPGGVIR", 70.52},
                              {"GTFIIDPAAVIR", 87.23},  {"LFLQFGAQGSPFLK", 100.0}};

class ShippedRetentionTimes : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const Error error = predictor.init(NETWORK);
        ASSERT_FALSE(error.hasError()) << error.toString().toStdString();
    }

    QList<double> predicted(const QList<Peptidoform> &peptidoforms)
    {
        QList<double> times;
        const Error error = predictor.predict(peptidoforms, &times);
        EXPECT_FALSE(error.hasError()) << error.toString().toStdString();
        return times;
    }

    double predicted(const QString &proForma)
    {
        const Result<Peptidoform> peptidoform = Peptidoform::fromProForma(proForma);
        EXPECT_FALSE(peptidoform.hasError()) << proForma.toStdString();
        return predicted(QList<Peptidoform>{peptidoform.value()}).first();
    }

    RetentionTimePredictor predictor;
};

TEST_F(ShippedRetentionTimes, PutTheAnchorPeptidesInTheirPlaces)
{
    std::vector<double> errors;
    for (const Anchor &anchor : ANCHORS)
        errors.push_back(std::abs(predicted(QString::fromLatin1(anchor.sequence)) - anchor.irt));
    std::sort(errors.begin(), errors.end());
    EXPECT_LT(errors[5], 3.0); // the median; libraries of one peptide differ by 1 to 2
    EXPECT_LT(errors.back(), 10.0);
}

TEST_F(ShippedRetentionTimes, DoNotDependOnTheBatch)
{
    const QList<Peptidoform> peptidoforms = randomPlainPeptides(400, 1);
    QList<QList<double>> together;
    ASSERT_FALSE(predictor.predictHeads(peptidoforms, &together).hasError());
    for (qsizetype i = 0; i < peptidoforms.size(); i += 7) {
        QList<QList<double>> alone;
        ASSERT_FALSE(predictor.predictHeads({peptidoforms.at(i)}, &alone).hasError());
        ASSERT_EQ(alone.first().size(), together.at(i).size());
        for (qsizetype head = 0; head < alone.first().size(); ++head)
            EXPECT_NEAR(alone.first().at(head), together.at(i).at(head), BATCH_TOLERANCE)
                << peptidoforms.at(i).sequence().toStdString() << ", head " << head;
    }
}

TEST_F(ShippedRetentionTimes, AreFiniteForEveryLengthAndResidue)
{
    const QString residues = QStringLiteral("DESTILVFYWACGMPNQHKR");
    QList<Peptidoform> peptidoforms;
    for (int length = 2; length <= 52; ++length)
        peptidoforms.append(Peptidoform((residues + residues + residues).mid(length % 20, length)));
    for (const QChar residue : residues)
        peptidoforms.append(Peptidoform(QString(2, residue)));
    for (const double time : predicted(peptidoforms))
        EXPECT_TRUE(std::isfinite(time));
}

TEST_F(ShippedRetentionTimes, KnowWhatModificationsDo)
{
    // Oxidation makes a peptide more polar; acetylation takes a charge away.
    EXPECT_LT(predicted(QStringLiteral("LVEM[Oxidation]SGTFR")), predicted(QStringLiteral("LVEMSGTFR")) - 3.0);
    EXPECT_GT(predicted(QStringLiteral("[Acetyl]-LVESGTFR")), predicted(QStringLiteral("LVESGTFR")) + 3.0);
}

TEST_F(ShippedRetentionTimes, WarnOfModificationsOutsideTraining)
{
    const Result<Peptidoform> known =
        Peptidoform::fromProForma(QStringLiteral("[Acetyl]-AC[Carbamidomethyl]DM[Oxidation]S[Phospho]K"));
    const Result<Peptidoform> unknown = Peptidoform::fromProForma(QStringLiteral("AK[TMT6plex]DM[+15.9949]R"));
    QList<double> times;
    EXPECT_EQ(predictor.predict({known.value()}, &times).warnings(), QList<QString>());
    EXPECT_EQ(predictor.predict({unknown.value()}, &times).warnings(),
              QList<QString>({QStringLiteral("Modification TMT6plex at K is unknown to the network"),
                              QStringLiteral("Modification +15.9949 at M is unknown to the network")}));
}

TEST_F(ShippedRetentionTimes, CalibrateFromTheAnchorPeptides)
{
    QList<ObservedRetentionTime> pairs;
    for (const Anchor &anchor : ANCHORS)
        pairs.append({Peptidoform(QString::fromLatin1(anchor.sequence)), 20.0 + 0.4 * anchor.irt});
    const auto calibration = RetentionTimeCalibration::fit(&predictor, pairs);
    ASSERT_FALSE(calibration.hasError()) << calibration.error().toString().toStdString();
    QList<double> times;
    const QList<Peptidoform> early{Peptidoform(QStringLiteral("GAGSSEPVTGLDAK"))};
    ASSERT_FALSE(calibration.value().predict(&predictor, early, &times).hasError());
    EXPECT_NEAR(times.first(), 20.0, 3.0);
    EXPECT_GT(calibration.value().width95(), 0.0);
}

/// "GG@K" of "GlyGly@K": the contract writes the names of the training data.
QString withUnimodName(const QString &place)
{
    const QString name = place.section(QLatin1Char('@'), 0, 0);
    const modifications::Entry *entry = modifications::findByName(name);
    return (entry == nullptr ? name : entry->modification.name) + QLatin1Char('@') + place.section(QLatin1Char('@'), 1);
}

TEST_F(ShippedRetentionTimes, HaveTheHeadsAndModificationsOfTheContract)
{
    QFile file(QStringLiteral(ZAV_MODELS_DIR "/retention_time.json"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QJsonObject contract = QJsonDocument::fromJson(file.readAll()).object();
    EXPECT_EQ(contract[QStringLiteral("kind")].toString(), QStringLiteral("retention_time"));
    QStringList trained;
    for (const QJsonValue &place : contract[QStringLiteral("modificationsTrained")].toArray())
        trained.append(withUnimodName(place.toString()));
    trained.sort();
    QStringList known = retentionTimeNetwork::trainedModifications();
    known.sort();
    EXPECT_EQ(trained, known);

    QList<QList<double>> heads;
    ASSERT_FALSE(predictor.predictHeads({Peptidoform(QStringLiteral("GK"))}, &heads).hasError());
    // Behind the heads may stand directions for calibrations to mix.
    EXPECT_EQ(contract[QStringLiteral("heads")].toArray().size() + contract[QStringLiteral("directions")].toInt(),
              heads.first().size());
}

} // namespace
} // namespace zav
