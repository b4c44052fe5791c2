// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QChar>
#include <QtCore/QString>

namespace zav {

/// Whether a spectrum holds the isotope peaks of its fragments beside the monoisotopic ones.
enum class IsotopePeaks {
    LeftOut, ///< monoisotopic peaks only, as spectral libraries store them
    Included ///< the peaks with one or more heavy isotopes too, named after their fragment
};

/// One predicted peak of a peptide and the fragment ion that it belongs to.
struct FragmentPeak
{
    double mz = 0.0;        ///< m/z
    double intensity = 0.0; ///< relative, in the network's scale: 1 is the base peak of the shipped networks
    QChar ionType;          ///< 'y', 'b' or 'a'
    int ionNumber = 0;      ///< residues in the fragment: the n of y_n
    int charge = 0;         ///< 1 to 3
    QString neutralLoss;    ///< "-H2O", "-NH3" or empty; of modifications "-H3PO4", "-2H3PO4", "-CH4OS", "-CO2"
    int isotope = 0;        ///< heavy isotopes in the ion: 0 for the monoisotopic peak, 1 for the next
};

} // namespace zav
