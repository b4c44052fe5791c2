// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryEntry.h"
#include "TextBuffer.h"

namespace zav {

/// The ion of a peak as libraries of peptides write it, mzPAF of HUPO-PSI (https://www.psidev.info/mzPAF): neutral
/// loss, isotope as `+i` or `+2i`, charge as `^2` when it is over 1: `y7-H2O+i^2`. "?" for an unknown ion.
void addIonNotation(TextBuffer *text, const FragmentPeak &peak);

/// The same and, as theoretical m/z have it, that the peak stands where the ion does: `y5/0.0ppm`; only "?" for an
/// unknown ion.
void addIonWithError(TextBuffer *text, const FragmentPeak &peak);

/// The peptide with `cysteine` behind each C, as a notation with tags has it: `AC[+57.021464]DEFGHK`.
QByteArray taggedPeptide(const LibraryEntry &entry, const QByteArray &cysteine);

/// A mass with its sign and `decimals` digits: `+57.021464`.
QByteArray signedMass(double mass, int decimals);

/// What is known of several proteins in one text: each once, in order, empty ones left out, between them `;`.
QByteArray joinedNames(const QStringList &names);

} // namespace zav
