// SPDX-License-Identifier: Apache-2.0
#include "LibraryPredictor.h"

#include "NetworkLoading.h"

#include <QtCore/QMap>

namespace zav {

LibraryPredictor::LibraryPredictor(double cysteineMass)
    : m_predictor(std::make_unique<MsMsFragmentationPredictomatic>())
{
    m_predictor->setCysteineFixedMass(cysteineMass);
}

Error LibraryPredictor::load(const ModelFolder &folder, const QList<int> &charges)
{
    return loadFragmentationNetworks(folder, charges, m_predictor.get());
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
