// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QChar>
#include <QtCore/QString>

namespace zav {

/// One predicted fragment ion of a peptide, monoisotopic.
struct FragmentPeak
{
    double mz = 0.0;        ///< m/z
    double intensity = 0.0; ///< relative, in the network's scale: 1 is the base peak of the shipped networks
    QChar ionType;          ///< 'y', 'b' or 'a'
    int ionNumber = 0;      ///< residues in the fragment: the n of y_n
    int charge = 0;         ///< 1 to 3
    QString neutralLoss;    ///< "-H2O", "-NH3" or empty
};

} // namespace zav
