// SPDX-License-Identifier: Apache-2.0
#include "SpectrumWriter.h"

#include "JsonWriter.h"
#include "MgfWriter.h"
#include "MspWriter.h"
#include "TableWriter.h"
#include "TsvWriter.h"

namespace zav {

SpectrumWriter::~SpectrumWriter() = default;

std::unique_ptr<SpectrumWriter> makeSpectrumWriter(OutputFormat format, const WriterOptions &options)
{
    switch (format) {
    case OutputFormat::Table:
        break;
    case OutputFormat::Tsv:
        return std::make_unique<TsvWriter>(options);
    case OutputFormat::Msp:
        return std::make_unique<MspWriter>();
    case OutputFormat::Mgf:
        return std::make_unique<MgfWriter>();
    case OutputFormat::Json:
        return std::make_unique<JsonWriter>(options);
    }
    return std::make_unique<TableWriter>();
}

bool writesIonNames(OutputFormat format, const WriterOptions &options)
{
    const bool always = format == OutputFormat::Table || format == OutputFormat::Msp;
    return always || (options.ionNames && format != OutputFormat::Mgf);
}

} // namespace zav
