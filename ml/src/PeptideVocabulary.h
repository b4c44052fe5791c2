// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QChar>
#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QString>

/// What the fragmentation networks and the predictor agree on: how residues are numbered and how long a peptide may be.
/// The tables belong to the graph files and never change.
namespace zav::peptideVocabulary {

/// The operation of a network that takes encoded peptides: float, [1 or -1, maximum length, encoding width].
inline constexpr char NETWORK_INPUT[] = "import/conv1d_1_input";

/// The operation that gives the intensities: float, one for each slot of the fragment ladder of each peptide.
inline constexpr char NETWORK_OUTPUT[] = "import/dense_3/BiasAdd";

/// The column of each residue letter in the one-hot encoding. Column 0 is that of fillers and of unknown characters.
extern const QHash<QChar, int> aminoAcidIndex;

/// The longest peptide, in residues, for each precursor charge: the rows of its network's input. Charge 5 really takes
/// fewer than charge 4.
extern const QMap<int, int> maxPeptideLengthByCharge;

/// Mass offset in Da of the N-terminal fragments of each fragmentation method. Every network predicts HCD, so nothing
/// reads it yet.
extern const QHash<QString, double> fragmentationMethodOffsets;

/// Columns of the encoding: one for each residue letter and the filler's.
int encodingWidth();

/// The longest peptide for a precursor charge; 0 for a charge without networks.
int maximumPeptideLength(int charge);

/// Writes a peptide, N-terminus first, as `rowCount` one-hot rows of `encodingWidth` columns each, row after row, and
/// fillers behind the last residue. `rows` points at that many zeros; the peptide has at most `rowCount` residues.
void writeOneHotRows(const QString &peptide, int rowCount, float *rows);

} // namespace zav::peptideVocabulary
