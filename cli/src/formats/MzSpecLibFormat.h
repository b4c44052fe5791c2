// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryFormat.h"

namespace zav {

/// mzSpecLib 1.0 of HUPO-PSI, its text form (https://www.psidev.info/mzspeclib), with terms of the PSI-MS vocabulary.
///
/// The peptide stands in ProForma notation with its charge; cysteines as `C[UNIMOD:4]`, with a mass of no common
/// reagent as `C[+12.345000]`. A decoy is an `unnatural peptidoform decoy spectrum`. Each protein is a group of
/// attributes: accession, entry name, gene. Intensities are relative to 1; every peak has its ion in mzPAF notation,
/// isotopes among them, or `?`. The precursor's m/z stands where readers look for it, in the spectrum, and as what it
/// is, theoretical, in the analyte. There is no retention time. A spectrum's key is its index + 1.
class MzSpecLibFormat : public LibraryFormat
{
public:
    QByteArray opening(const LibraryInfo &info) const override;
    QByteArray entry(const LibraryEntry &entry, qint64 index) const override;
};

} // namespace zav
