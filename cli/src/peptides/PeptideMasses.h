// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Peptidoform.h>

#include <QtCore/QChar>
#include <QtCore/QString>

/// Monoisotopic masses in Da; those of residues and peptides are computed from the atomic masses of AME2020 (Wang et
/// al., Chin. Phys. C 45, 030003, 2021).
namespace zav::peptideMasses {

/// CODATA 1998, as in the predictor.
constexpr double PROTON = 1.00727646677;

/// What carbamidomethylation adds to a cysteine, with the digits of the predictor's default.
constexpr double DEFAULT_CYSTEINE_MODIFICATION = 57.02146;

/// Of a standard amino-acid residue, upper-case one-letter code; 0 for any other character.
double residueMass(QChar residue);

/// Of the uncharged peptide; `cysteineMass` is added to every cysteine.
double neutralMass(const QString &peptide, double cysteineMass);

/// m/z of the protonated peptide; `charge` from 1.
double precursorMz(const QString &peptide, int charge, double cysteineMass);

/// The same of a peptide with all its modifications.
double precursorMz(const Peptidoform &peptidoform, int charge);

/// m/z of the ion b_n or y_n, `ionType` 'b' or 'y', `ionNumber` from 1 to the peptide's length, `charge` from 1.
double fragmentMz(const Peptidoform &peptidoform, QChar ionType, int ionNumber, int charge);

} // namespace zav::peptideMasses

namespace zav {

/// A reagent that blocks cysteines.
struct CysteineModification
{
    double mass;      ///< monoisotopic, Da
    const char *name; ///< in Unimod
    int unimod;       ///< record number in Unimod
};

/// The modification of that mass (within 0.001 Da) among carbamidomethyl, propionamide, pyridylethyl, methylthio and
/// N-ethylmaleimide; null for any other mass.
const CysteineModification *knownCysteineModification(double mass);

/// Whether a cysteine to which that mass (Da) is added counts as modified: it is 0.001 Da or more, up or down.
bool isCysteineModified(double mass);

/// The modification that adds this mass to a cysteine: a known reagent by its name, else one known by its mass alone.
/// It has the mass as it is given.
Modification cysteineModification(double mass);

/// The peptide with that mass added to every cysteine; none is modified where the mass does not count.
Peptidoform withCysteines(const QString &peptide, double mass);

/// The mass with all digits of Unimod where `mass` has fewer of them (57.02146), else `mass`.
double exactCysteineMass(double mass);

} // namespace zav
