// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SpectrumWriter.h"

namespace zav {

/// Mascot generic format, as a library has it: `mgfLibraryFormat`.
class MgfWriter : public SpectrumWriter
{
public:
    QByteArray spectrum(const PredictedSpectrum &spectrum, bool isFirst) const override;
};

} // namespace zav
