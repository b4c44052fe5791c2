// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SpectrumWriter.h"

namespace zav {

/// Mascot generic format: TITLE is `PEPTIDE/charge`, PEPMASS the precursor's m/z, intensities are scaled so that 1
/// becomes 10000. A peak has two columns: an ion name as a third one is taken for a charge by readers.
class MgfWriter : public SpectrumWriter
{
public:
    QByteArray spectrum(const PredictedSpectrum &spectrum, bool isFirst) const override;
};

} // namespace zav
