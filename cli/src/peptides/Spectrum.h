// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Precursor.h"

#include <zav/FragmentPeak.h>

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>

namespace zav {

/// A predicted spectrum, as the writers and the plot take it.
struct PredictedSpectrum
{
    Precursor precursor;
    Peptidoform peptidoform;   ///< what was predicted, with the mass on its cysteines
    double precursorMz = 0;    ///< m/z of the protonated peptide
    double cysteineMass = 0;   ///< Da added to every cysteine of a peptide in one-letter code
    QList<FragmentPeak> peaks; ///< ascending m/z
};

/// One measured MS/MS spectrum.
struct ObservedSpectrum
{
    QString title;           ///< what the file calls it: title or native id; the file's name where it has neither
    double precursorMz = 0;  ///< m/z of the selected ion, 0 where the file does not say
    int precursorCharge = 0; ///< 0 where the file does not say
    QList<QPointF> peaks;    ///< (m/z, intensity in the file's own unit), ascending m/z, intensities above 0
};

/// The peptide as outputs write it: in one-letter code, or in ProForma with the names of the modifications where it was
/// asked for with modifications.
QString peptideText(const PredictedSpectrum &spectrum);

/// The ion of a peak: `y7+`, `b12++`, `y7-H2O+`, of an isotope peak `y7-H2O++ i1`. Empty for a peak of no ion type.
QString ionName(const FragmentPeak &peak);

} // namespace zav
