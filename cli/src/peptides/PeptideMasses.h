// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QChar>
#include <QtCore/QString>

/// Monoisotopic masses in Da, computed from the atomic masses of AME2020 (Wang et al., Chin. Phys. C 45, 030003, 2021).
namespace zav::peptideMasses {

/// Of a standard amino-acid residue, upper-case one-letter code; 0 for any other character.
double residueMass(QChar residue);

/// Of the uncharged peptide; `cysteineMass` is added to every cysteine.
double neutralMass(const QString &peptide, double cysteineMass);

/// m/z of the protonated peptide; `charge` from 1.
double precursorMz(const QString &peptide, int charge, double cysteineMass);

/// m/z of the ion b_n or y_n, `ionType` 'b' or 'y', `ionNumber` from 1 to the peptide's length, `charge` from 1.
double fragmentMz(const QString &peptide, QChar ionType, int ionNumber, int charge, double cysteineMass);

} // namespace zav::peptideMasses
