// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PredictedSpectrum.h"

#include <QtCore/QByteArray>

#include <memory>

namespace zav {

/// How predicted spectra are written.
enum class OutputFormat { Table, Tsv, Msp, Mgf, Json };

struct WriterOptions
{
    bool ionNames = false; ///< write which ion each peak is; MGF has no place for it, table and MSP always have it
    bool several = false;  ///< the output may hold more than one spectrum: a TSV row then names its precursor
};

/// One text format. A document is `opening`, each spectrum by `spectrum`, `closing`; lines end with LF, numbers have
/// a decimal point whatever the locale.
class SpectrumWriter
{
public:
    virtual ~SpectrumWriter();

    virtual QByteArray opening() const { return {}; }
    virtual QByteArray spectrum(const PredictedSpectrum &spectrum, bool isFirst) const = 0;
    virtual QByteArray closing() const { return {}; }
};

std::unique_ptr<SpectrumWriter> makeSpectrumWriter(OutputFormat format, const WriterOptions &options);

/// Whether the format needs `PredictionContent::ionNames`.
bool writesIonNames(OutputFormat format, const WriterOptions &options);

} // namespace zav
