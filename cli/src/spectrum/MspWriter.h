// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SpectrumWriter.h"

namespace zav {

/// The text format of NIST spectral libraries, as a library has it, of peptides without proteins: `mspLibraryFormat`.
class MspWriter : public SpectrumWriter
{
public:
    QByteArray spectrum(const PredictedSpectrum &spectrum, bool isFirst) const override;
};

} // namespace zav
