// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/MsMsFragmentationPredictomatic.h>
#include <zav/PeptidoformSpectrumPredictor.h>
#include <zav/RetentionTimePredictor.h>
#include <zav/XicBaselineLimitsDetector.h>
#include <zav/XicPeakSplitter.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QPointF>

#include <random>
#include <utility>
#include <vector>

// What the programs of this folder predict, and with what.
namespace zav::load {

constexpr int POINTS = 512; // of the chromatogram networks' input; traces have up to as many

using Random = std::mt19937_64;

/// 7 to 26 residues.
QString peptide(Random *random);

/// The peptide with carbamidomethylated cysteines and oxidised methionines.
Peptidoform peptidoformOf(const QString &peptide);

/// Up to three peaks on noise, 16 to 511 points half a second apart.
QList<QPointF> trace(Random *random);

XicBaselineLimitsDetectorOptions limitsOptions(const QDir &models);
XicPeakSplitterOptions splitOptions(const QDir &models);
bool load(const QDir &models, MsMsFragmentationPredictomatic *predictor);
bool load(const QDir &models, PeptidoformSpectrumPredictor *predictor);
bool load(const QDir &models, RetentionTimePredictor *predictor);

struct Input
{
    QString peptide;
    int charge = 2;
    QList<QPointF> trace;
};

/// All numbers of a result as they come, compared bit for bit.
struct Result
{
    std::vector<double> values;

    bool operator==(const Result &other) const;
};

/// One of each of the five classes, with the shipped networks.
class Predictors
{
public:
    bool load(const QDir &models);

    /// Spectra of the peptide and of its peptidoform, its retention time, limits of the trace by network and walk,
    /// splits. A failed call gives no values.
    Result predict(const Input &input);

private:
    MsMsFragmentationPredictomatic m_fragments;
    PeptidoformSpectrumPredictor m_peptidoforms;
    RetentionTimePredictor m_retentionTimes;
    XicBaselineLimitsDetector m_limits;
    XicPeakSplitter m_splits;
};

} // namespace zav::load
