// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryFormat.h"

namespace zav {

/// Mascot generic format (https://www.matrixscience.com/help/data_file_help.html): TITLE is `PEPTIDE/charge`, of a
/// decoy `DECOY_PEPTIDE/charge`; PEPMASS the precursor's m/z; intensities are scaled so that 1 becomes 10000.
///
/// A peak has two columns: an ion name as a third one is taken for a charge by readers. The format has no place for
/// proteins and modifications, and RTINSECONDS is optional: none is written.
class MgfLibraryFormat : public LibraryFormat
{
public:
    QByteArray entry(const LibraryEntry &entry, qint64 index) const override;
};

} // namespace zav
