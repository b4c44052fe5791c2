// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QChar>
#include <QtCore/QString>

namespace zav {

/// One peak of a predicted spectrum, with the ion it belongs to where that is known.
struct AnnotatedPeak
{
    double mz = 0.0;        ///< m/z
    double intensity = 0.0; ///< relative: 1 is the base peak of the shipped networks
    QString ionName;        ///< `y7-H2O++`, of a heavier isotope `y7-H2O++ i1`; empty for an unknown ion
    QChar ionType;          ///< 'y', 'b' or 'a', null for an unknown ion
    bool isotope = false;   ///< a heavier isotope of the ion rather than its monoisotopic peak
    int ionNumber = 0;      ///< residues in the fragment, 0 for an unknown ion
    int charge = 0;         ///< of the fragment, 0 for an unknown ion
    QString neutralLoss;    ///< "-H2O", "-NH3" or empty
    int isotopeNumber = 0;  ///< neutrons above the monoisotopic peak, 0 for that peak
};

} // namespace zav
