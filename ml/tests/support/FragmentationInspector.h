// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MsMsFragmentationPredictomatic_p.h"

namespace zav {

/// The unit tests' view of the steps of a fragmentation prediction.
class MsMsFragmentationPredictomaticInspector
{
public:
    using Fragment = MsMsFragmentationPredictomatic::Fragment;

    explicit MsMsFragmentationPredictomaticInspector(MsMsFragmentationPredictomatic *predictor) : m_predictor(predictor)
    {}

    QList<Fragment> buildMzPoints(const QString &peptide, int charge) const
    {
        return m_predictor->buildMzPoints(peptide, charge);
    }
    void addFragmentIonToMzPoints(double startMass, int count, const QString &peptide, int charge, QChar ionType,
                                  const QString &neutralLoss, QList<Fragment> *out) const
    {
        m_predictor->addFragmentIonToMzPoints(startMass, count, peptide, charge, ionType, neutralLoss, out);
    }
    Result<QList<QPointF>> buildPoints(const QList<Fragment> &fragments, const std::vector<float> &predictions) const
    {
        return m_predictor->buildPoints(fragments, predictions);
    }
    Result<QList<QPointF>> addIsotopesToFragments(const QPointF &point, int charge) const
    {
        return m_predictor->addIsotopesToFragments(point, charge);
    }

private:
    MsMsFragmentationPredictomatic *m_predictor;
};

} // namespace zav
