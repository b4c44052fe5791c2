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

/// The peptidoform in ProForma with Unimod's accessions, `[UNIMOD:1]-AC[UNIMOD:4]DEFGHK`; a modification known by its
/// mass alone is written as its mass, `C[+12.345000]`.
void addProForma(TextBuffer *text, const Peptidoform &peptidoform);

/// The peptidoform as OpenMS and DIA-NN read it, `(UniMod:1)AC(UniMod:4)DEFGHK`; a modification known by its mass alone
/// is written as its mass, `C[+12.345000]`, one of the C-terminus behind a dot, `K.(UniMod:2)`.
void addOpenSwathNotation(TextBuffer *text, const Peptidoform &peptidoform);

/// A residue with the masses of its modifications.
struct ModifiedResidue
{
    int position = 0;  ///< from 1
    double mass = 0.0; ///< Da, the sum of the modifications

    bool operator==(const ModifiedResidue &) const = default;
};

/// The modified residues in order. The first and the last one carry the modifications of their terminus too. Masses of
/// known modifications have the six digits of Unimod.
QList<ModifiedResidue> modifiedResidues(const Peptidoform &peptidoform);

/// The peptide with masses in Da behind the residues: `AC[+57.021464]DEFGHK`, with that many decimals.
void addMassNotation(TextBuffer *text, const Peptidoform &peptidoform, const QList<ModifiedResidue> &residues,
                     int decimals);

/// The name of a precursor within a transition list: `ACDEFGHK_2`, that of a variant `AC(UniMod:4)DEFGHK_2`. It is
/// unique: those of decoys begin with `DECOY_`, and a library has a precursor once.
void addPrecursorName(TextBuffer *text, const LibraryEntry &entry);

/// The name of a spectrum: `ACDEFGHK/2`, that of a variant in ProForma, `AC[UNIMOD:4]DEFGHK/2`; those of decoys begin
/// with `DECOY_`.
void addSpectrumName(TextBuffer *text, const LibraryEntry &entry);

/// Whether a transition list has a row for the peak: for monoisotopic b and y ions. DIA-NN takes an a ion for the b ion
/// of the same number, and no reader has a column for isotopes.
bool isTransition(const FragmentPeak &peak);

/// Da, of the uncharged precursor.
double neutralMass(const LibraryEntry &entry);

/// A mass with its sign and `decimals` digits: `+57.021464`.
void addSignedMass(TextBuffer *text, double mass, int decimals);

/// What is known of the proteins in one text: each name once, in order, empty ones left out, between them `;`.
void addJoinedNames(TextBuffer *text, const QList<LibraryProtein> &proteins, QByteArray LibraryProtein::*name);

/// The retention time with as many digits as all text formats give it.
void addRetentionTime(TextBuffer *text, double time);

} // namespace zav
