// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "DecoyMaker.h"
#include "Digestion.h"
#include "PeptideSet.h"

#include <zav/Result.h>

#include <memory>

namespace zav {

/// Which peptides a library is to hold.
struct PeptideRequest
{
    DigestionOptions digestion;
    DecoyOptions decoys;
    SortingSpace space;
};

struct DigestedPeptides
{
    std::unique_ptr<PeptideSet> peptides;
    DigestionCounts counts;
};

/// Digests the proteins of a FASTA file, plain or compressed with gzip ("-": standard input), into distinct peptides
/// of the 20 amino acids, each with every protein that it was found in, and their decoys.
///
/// The result depends on the file, the digestion and the decoy options alone: on disk it is the same as in memory.
/// In memory it takes about 65 bytes for each place of a peptide in a protein at its peak, twice that with decoys, and
/// 30 for each peptide in the end; on disk the memory limit of `SortingSpace`, a few MB, and the proteins' names.
///
/// `InvalidInput` for options out of range, with the field; `Failure` with file and line for a file that cannot be
/// read or is no FASTA file, for temporary files, for an interrupt, and when the file holds no protein. No peptide at
/// all is no failure.
Result<DigestedPeptides> digestFasta(const QString &path, const PeptideRequest &request,
                                     const DigestionHooks &hooks = {});

/// The same for the peptides of a list (`PeptideTableReader`), which are not cut: of the digestion options only the
/// range of lengths counts, and the enzyme for the decoys. Peptides with modifications in ProForma are named
/// peptidoforms of their sequence; a decoy's modifications go with the residues. Which ends of a protein a listed
/// peptide stands at is not known. Texts with brackets that are no ProForma are left out and told to `hooks.skipped`.
/// Peptides outside that range are skipped and told to `hooks.skipped` too. `counts.proteins` counts the distinct ones.
Result<DigestedPeptides> readPeptideTable(const QString &path, const PeptideRequest &request,
                                          const DigestionHooks &hooks = {});

} // namespace zav
