// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PeptideBlock.h"

namespace zav {

/// Appends a peptide as bytes: lengths, sequence, indices of the proteins. 7 bytes beside the sequence and 4 a protein,
/// in the byte order of this machine: they are not meant to leave it.
void encodePeptide(const LibraryPeptide &peptide, QByteArray *bytes);

/// The peptide that begins at `*from`, which moves behind it. The sequence is a view into the bytes.
LibraryPeptide decodePeptide(const char **from);

} // namespace zav
