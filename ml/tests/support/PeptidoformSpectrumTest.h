// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PeptidoformNetwork.h"

#include <zav/PeptidoformSpectrumPredictor.h>

#include <QtCore/QMap>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

namespace zav {

/// A peptidoform that a test knows to be readable.
inline Peptidoform peptidoform(const char *proForma)
{
    const Result<Peptidoform> read = Peptidoform::fromProForma(QString::fromLatin1(proForma));
    EXPECT_FALSE(read.hasError()) << read.error().toString().toStdString();
    return read.hasError() ? Peptidoform() : read.value();
}

/// "y2+1-H2O"
inline QString ionOf(const FragmentPeak &peak)
{
    return QStringLiteral("%1%2+%3%4").arg(peak.ionType).arg(peak.ionNumber).arg(peak.charge).arg(peak.neutralLoss);
}

/// The intensities by ion. Fails where two peaks have one name.
inline QMap<QString, double> intensitiesByIon(const QList<FragmentPeak> &peaks)
{
    QMap<QString, double> intensities;
    for (const FragmentPeak &peak : peaks) {
        EXPECT_FALSE(intensities.contains(ionOf(peak))) << ionOf(peak).toStdString();
        intensities.insert(ionOf(peak), peak.intensity);
    }
    return intensities;
}

/// A predictor over a network that a test builds.
class PeptidoformSpectrumTest : public ::testing::Test
{
protected:
    void load(const GraphDefBuilder &graph)
    {
        const QString path = m_folder.filePath(QStringLiteral("network.pb"));
        ASSERT_TRUE(graph.write(path.toStdString()));
        const Error error = predictor.init(path);
        ASSERT_FALSE(error.hasError()) << error.toString().toStdString();
    }

    /// Every ion as high as any other.
    void loadLevelNetwork(int residueCount)
    {
        PeptidoformNetwork network(residueCount);
        network.setEveryBias(1.0F);
        load(network.graph());
    }

    QList<FragmentPeak> spectrum(const PeptidoformPrecursor &precursor, IsotopePeaks isotopes = IsotopePeaks::LeftOut)
    {
        QList<QList<FragmentPeak>> out;
        const Error outcome = predictor.predict({precursor}, &out, isotopes);
        EXPECT_FALSE(outcome.hasError()) << outcome.toString().toStdString();
        return out.isEmpty() ? QList<FragmentPeak>() : out.first();
    }

    QStringList ions(const char *proForma, int charge)
    {
        return intensitiesByIon(spectrum({peptidoform(proForma), charge})).keys();
    }

    PeptidoformSpectrumPredictor predictor;

private:
    QTemporaryDir m_folder;
};

} // namespace zav
