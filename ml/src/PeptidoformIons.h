// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QChar>
#include <QtCore/QString>

#include <array>

/// The fragment ions whose intensities the peptidoform network predicts for each bond between two residues.
namespace zav::peptidoformIons {

/// A molecule that leaves a modified residue, and only such a one.
enum class ModificationLoss {
    None,
    PhosphoricAcid,      ///< H3PO4, of phosphorylated serine and threonine
    MethanesulfenicAcid, ///< CH4OS, of oxidised methionine
    CarbonDioxide        ///< CO2, of malonylated lysine
};

inline constexpr int MODIFICATION_LOSS_COUNT = 4; ///< `None` included

/// Ions of one type, charge and loss: a column of the network's output.
struct Series
{
    QChar ionType;                                  ///< 'y', 'b' or 'a'
    int charge = 0;                                 ///< 1 to 3
    QString neutralLoss;                            ///< "-H2O", "-2H3PO4" ... or empty
    double startMass = 0.0;                         ///< Da, of the ion without its residues, with its protons
    int maximumNumber = 0;                          ///< residues of the largest ion
    ModificationLoss loss = ModificationLoss::None; ///< what a residue of the ion has to lose
    int lossCount = 0;                              ///< how many such residues it needs
};

inline constexpr int SERIES_COUNT = 27;

/// All series, in the order of the columns. Built once; copies of their texts share it.
const std::array<Series, SERIES_COUNT> &series();

/// The loss that goes by a name of `modifications::neutralLosses`: "-H3PO4", "-CH4OS", "-CO2". `None` for others.
ModificationLoss modificationLoss(const QString &name);

} // namespace zav::peptidoformIons
