// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SpectrumWriter.h"

namespace zav {

/// The text format of NIST spectral libraries. MW is the neutral monoisotopic mass; modified cysteines stand in the
/// comment's `Mods` (positions from 0), by name where their mass is that of a common reagent, else as the signed
/// mass, which readers that know names only refuse. Intensities are scaled so that 1 becomes 10000; every peak has its
/// ion, `"y7-H2O+i^2/0.0ppm"`, or `"?"`.
class MspWriter : public SpectrumWriter
{
public:
    QByteArray spectrum(const PredictedSpectrum &spectrum, bool isFirst) const override;
};

} // namespace zav
