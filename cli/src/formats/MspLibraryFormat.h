// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryFormat.h"

namespace zav {

/// The text format of NIST's spectral libraries, with the peptide comments of NIST and SpectraST
/// (https://chemdata.nist.gov).
///
/// MW is the neutral monoisotopic mass. Modified cysteines stand in the comment's `Mods` (positions from 0), by name
/// where their mass is that of a common reagent, else as the signed mass, which readers that know names only refuse.
/// OpenMS takes a modified first residue for a modified N-terminus, and refuses files in which a last residue is
/// modified. The comment's `Protein` and `Gene` list several with `;`, a decoy has `Remark=DECOY`. Intensities are
/// scaled so that 1 becomes 10000; every peak has its ion, `"y7-H2O+i^2/0.0ppm"`, or `"?"`. There is no retention time.
class MspLibraryFormat : public LibraryFormat
{
public:
    QByteArray entry(const LibraryEntry &entry, qint64 index) const override;
};

} // namespace zav
