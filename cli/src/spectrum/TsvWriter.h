// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SpectrumWriter.h"

namespace zav {

/// Tab-separated: a header line, then one peak a line. Columns `mz` (5 decimals), `intensity` (relative, 6 decimals),
/// with ion names `ion` (empty where unknown), and with several spectra `peptide` and `charge`.
class TsvWriter : public SpectrumWriter
{
public:
    explicit TsvWriter(const WriterOptions &options) : m_options(options) {}

    QByteArray opening() const override;
    QByteArray spectrum(const PredictedSpectrum &spectrum, bool isFirst) const override;

private:
    WriterOptions m_options;
};

} // namespace zav
