// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QChar>
#include <QtCore/QList>
#include <QtCore/QString>

/// The fixed order of the fragment ions whose intensities a network predicts: series after series, each with a fixed
/// number of slots, slot i of a series holding the ion of i + 1 residues.
namespace zav::fragmentLadder {

/// One series of the ladder.
struct IonSeries
{
    QChar ionType;          ///< 'y', 'b' or 'a'
    int charge = 0;         ///< of the fragments
    int slotCount = 0;      ///< whether or not the peptide is that long
    double startMass = 0.0; ///< Da, of the ion without its residues: termini, losses and the protons of its charge
    QString neutralLoss;    ///< "-H2O", "-NH3" or empty
};

/// The series of a precursor charge, in the order of the network's output. The neutral losses are singly charged only,
/// the a series always has 15 slots, and charges 3 to 5 have the same series. At a charge without networks every series
/// but the a series has no slots.
QList<IonSeries> ionSeries(int precursorCharge);

/// The slots of all series: the length of the network's output for one peptide.
int slotCount(const QList<IonSeries> &series);

/// Whether the residues of a series are counted from the C-terminus.
bool startsAtCTerminus(QChar ionType);

/// The one residue that carries the predictor's fixed mass.
inline constexpr QChar MODIFIED_RESIDUE = u'C';

/// What a residue adds to the mass of a fragment, in Da.
struct Residue
{
    double mass;      ///< monoisotopic, without modification; 0 for a character that is no residue
    double fixedMass; ///< 0 without modification
};

Residue weigh(QChar residue, double cysteineFixedMass);

/// The ions of a series, from the shortest on.
class GrowingIon
{
public:
    GrowingIon(double startMass, int charge) : m_mass(startMass), m_charge(charge) {}

    /// The m/z of the next ion, which has one residue more.
    double mzWith(const Residue &residue)
    {
        m_mass += residue.mass;
        m_mass += residue.fixedMass;
        return m_mass / m_charge;
    }

private:
    double m_mass; ///< Da, the protons included
    int m_charge;
};

} // namespace zav::fragmentLadder
