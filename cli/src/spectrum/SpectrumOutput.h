// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "OutputFile.h"
#include "SpectrumWriter.h"

#include <QtCore/QString>

#include <memory>

namespace zav {

/// Writes spectra in one format to one file. Nothing is opened, and no file appears, before the first spectrum.
class SpectrumOutput
{
public:
    /// `path` empty or "-": standard output.
    SpectrumOutput(const QString &path, OutputFormat format, const WriterOptions &options);

    Error write(const PredictedSpectrum &spectrum);

    /// Completes the file; nothing may be written afterwards.
    Error finish();

private:
    std::unique_ptr<SpectrumWriter> m_writer;
    OutputFile m_file;
    bool m_isEmpty = true;
};

} // namespace zav
