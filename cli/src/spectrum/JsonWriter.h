// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SpectrumWriter.h"

namespace zav {

/// One JSON object:
///
///     {"generator": "zav 0.1.0", "spectra": [
///     {"peptide": "PEPTIDE", "charge": 2, "precursor_mz": 400.68725, "cysteine_mass": 57.02146,
///      "mz": [...], "intensity": [...], "ion": [...]}
///     ]}
///
/// one spectrum a line; `ion` only with ion names, null where unknown. Intensities are relative, as predicted.
class JsonWriter : public SpectrumWriter
{
public:
    explicit JsonWriter(const WriterOptions &options) : m_options(options) {}

    QByteArray opening() const override;
    QByteArray spectrum(const PredictedSpectrum &spectrum, bool isFirst) const override;
    QByteArray closing() const override;

private:
    WriterOptions m_options;
};

} // namespace zav
