// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Peptidoform.h>

#include <QtCore/QString>

#include <cstddef>

/// How the networks of peptidoforms see one: what they and their predictors agree on.
///
/// A peptidoform is `ROW_COUNT` rows of `COLUMN_COUNT` columns, one row a residue, N-terminus first, and rows of zeros
/// behind the last one:
///
///     0       the residue: 1 + its index in "DESTILVFYWACGMPNQHKR"
///     1..6    by how many atoms of C, H, N, O, P and S its modification changes it
///     7..12   the same for a terminal modification: the N-terminal one in the first row, the C-terminal one in the
///             last
///
/// Labelled atoms count as their element. A modification that is known by its mass alone leaves its columns zero. A
/// pyroglutamate is a ring of the first residue and the N-terminus, and people write it at either: the networks see it
/// at the terminus.
namespace zav::peptidoformRows {

/// The operation of a network that takes the rows: float, [-1, ROW_COUNT, COLUMN_COUNT].
inline constexpr char NETWORK_INPUT[] = "peptidoforms";

inline constexpr int ROW_COUNT = 52;      ///< residues of the longest peptidoform
inline constexpr int FEWEST_RESIDUES = 2; ///< of the shortest one
inline constexpr int COLUMN_COUNT = 13;
inline constexpr std::size_t SIZE = std::size_t{ROW_COUNT} * COLUMN_COUNT; ///< values of one peptidoform

/// Where the networks see a modification: 0 and length + 1 are the termini.
int networkPosition(const PlacedModification &placed);

/// Why a network cannot read the peptidoform, after its name: "has 60 residues, not 2 to 52". Empty when it can.
QString problemOf(const Peptidoform &peptidoform);

/// The warning about a peptidoform that a network cannot read.
QString unreadableRemark(const Peptidoform &peptidoform);

/// Writes a peptidoform that a network can read. `rows` points at `SIZE` zeros.
void write(const Peptidoform &peptidoform, float *rows);

} // namespace zav::peptidoformRows
