// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ModificationRule.h"

#include <zav/Peptidoform.h>

#include <QtCore/QByteArrayView>
#include <QtCore/QList>

#include <array>
#include <vector>

namespace zav {

/// Which modifications the peptides of a library have.
struct PeptidoformRules
{
    static constexpr int MAXIMUM_VARIABLE = 10;

    QList<ModificationRule> fixed = usualFixed(); ///< at every one of their sites; no two overlap
    QList<ModificationRule> variable;             ///< at some of theirs, where they take the place of a fixed one
    int maxVariable = 1;                          ///< of a peptidoform at most, within 0 to `MAXIMUM_VARIABLE`

    /// Carbamidomethyl@C
    static QList<ModificationRule> usualFixed();

    /// `InvalidInput`, naming the rules, where two fixed ones overlap, or a variable one is fixed already; and for
    /// `maxVariable` out of its range.
    Error check() const;
};

/// Makes the peptidoforms of a peptide in an order that depends on nothing but the peptide and the rules: by the number
/// of variable modifications, the one without any first; then by their positions; then by the order of the rules.
///
/// With two at most, MMK has oxidized M at none, 1, 2, 1 and 2. Positions count from 0, the N-terminus, and are
/// compared from the lowest on. Any number of threads may share one object.
class PeptidoformMaker
{
public:
    /// Of a peptide with more peptidoforms, those behind are left out: those with the most modifications.
    static constexpr int MOST_OF_A_PEPTIDE = 4096;

    /// `rules` are without a fault that `PeptidoformRules::check` finds.
    explicit PeptidoformMaker(const PeptidoformRules &rules);

    /// At least one. The sequence consists of the 20 standard residues and is not empty.
    QList<Peptidoform> make(QByteArrayView sequence, ProteinEnds ends) const;

    /// What each of them weighs more than the plain peptide, in Da and in their order. Takes much less time than
    /// `make`.
    QList<double> addedMasses(QByteArrayView sequence, ProteinEnds ends) const;

    /// How many there are, with those that `make` leaves out.
    double count(QByteArrayView sequence, ProteinEnds ends) const;

    /// A peptidoform that somebody named, with the fixed modifications at those sites where it has none.
    Peptidoform withFixed(const Peptidoform &named) const;

private:
    /// A place that may be modified, and by which of the variable rules.
    struct VariableSite
    {
        int position = 0;
        double fixedMass = 0.0; ///< Da, of what stands there otherwise
        QList<int> rules;
    };

    /// The rules that serve a residue.
    struct OfResidue
    {
        int fixed = -1; ///< -1: none
        QList<int> variable;
    };

    const OfResidue &ofResidue(char residue) const { return m_ofResidue[static_cast<std::size_t>(residue - 'A')]; }
    OfResidue rulesAt(QByteArrayView sequence, ProteinEnds ends, int position) const;
    void dropIdle(OfResidue *rules) const;
    QList<PlacedModification> fixedOf(QByteArrayView sequence, ProteinEnds ends) const;
    std::vector<VariableSite> sitesOf(QByteArrayView sequence, ProteinEnds ends) const;

    PeptidoformRules m_rules;
    std::array<OfResidue, 26> m_ofResidue; // by letter, from 'A'
};

} // namespace zav
