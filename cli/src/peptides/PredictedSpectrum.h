// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "AnnotatedPeak.h"
#include "Precursor.h"

#include <QtCore/QList>

namespace zav {

/// A predicted spectrum, as the writers and the plot take it.
struct PredictedSpectrum
{
    Precursor precursor;
    double precursorMz = 0;     ///< m/z of the protonated peptide
    double cysteineMass = 0;    ///< Da added to every cysteine
    QList<AnnotatedPeak> peaks; ///< ascending m/z
};

} // namespace zav
