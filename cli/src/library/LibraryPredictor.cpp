// SPDX-License-Identifier: Apache-2.0
#include "LibraryPredictor.h"

#include "ExplainedError.h"

#include <QtCore/QFileInfo>
#include <QtCore/QMap>

namespace zav {

namespace {

Error predictionError(const Error &error, int charge)
{
    if (!error.hasError() || !error.message().isEmpty())
        return error;
    return explainedError(error, QStringLiteral("msms_charge%1.pb is not a network for charge %1").arg(charge));
}

/// Names the file that failed: the predictor loads them in order and knows how many it has.
Error loadingError(const Error &error, const QStringList &paths, int reached)
{
    const QString reason = error.message().isEmpty() ? QStringLiteral("not a usable network") : error.message();
    const QString name = QFileInfo(paths.value(reached, paths.first())).fileName();
    return explainedError(error, QStringLiteral("cannot load %1: %2").arg(name, reason));
}

} // namespace

LibraryPredictor::LibraryPredictor(double cysteineMass)
    : m_predictor(std::make_unique<MsMsFragmentationPredictomatic>())
{
    m_predictor->setCysteineFixedMass(cysteineMass);
}

Error LibraryPredictor::load(const ModelFolder &folder, const QList<int> &charges)
{
    for (const int charge : charges) {
        if (Error error = folder.checkFragmentationNetwork(charge); error.hasError())
            return error;
    }
    const QStringList paths = folder.fragmentationNetworks(charges);
    const Error error = m_predictor->init(paths[0], paths[1], paths[2], paths[3], paths[4]);
    return error.hasError() ? loadingError(error, paths, m_predictor->maxPredictionChargeState()) : Error();
}

Error LibraryPredictor::predict(const QStringList &peptides, int charge, const Visitor &visit)
{
    QMap<qsizetype, QList<qsizetype>> byLength;
    for (qsizetype i = 0; i < peptides.size(); ++i)
        byLength[peptides[i].size()].append(i);
    for (const QList<qsizetype> &indices : std::as_const(byLength)) {
        for (qsizetype first = 0; first < indices.size(); first += PEPTIDES_PER_RUN) {
            Error error = predictBlock(peptides, indices.mid(first, PEPTIDES_PER_RUN), charge, visit);
            if (error.hasError())
                return error;
        }
    }
    return {};
}

Error LibraryPredictor::predictBlock(const QStringList &peptides, const QList<qsizetype> &indices, int charge,
                                     const Visitor &visit)
{
    QStringList block;
    block.reserve(PEPTIDES_PER_RUN);
    for (qsizetype place = 0; place < PEPTIDES_PER_RUN; ++place)
        block.append(peptides[indices.value(place, indices.first())]);
    QList<QList<FragmentPeak>> spectra;
    if (Error error = m_predictor->predictFragments(block, charge, &spectra); error.hasError())
        return predictionError(error, charge);
    for (qsizetype place = 0; place < indices.size(); ++place)
        visit(indices[place], spectra[place]);
    return {};
}

} // namespace zav
