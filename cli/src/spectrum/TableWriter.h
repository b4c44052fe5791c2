// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SpectrumWriter.h"

namespace zav {

/// A table for a person at a terminal: a line with peptide, charge and precursor m/z, then one peak a line with its
/// ion and a bar as long as the peak is high. For another program use TSV.
class TableWriter : public SpectrumWriter
{
public:
    QByteArray spectrum(const PredictedSpectrum &spectrum, bool isFirst) const override;
};

} // namespace zav
