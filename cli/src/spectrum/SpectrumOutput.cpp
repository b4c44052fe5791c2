// SPDX-License-Identifier: Apache-2.0
#include "SpectrumOutput.h"

namespace zav {

SpectrumOutput::SpectrumOutput(const QString &path, OutputFormat format, const WriterOptions &options)
    : m_writer(makeSpectrumWriter(format, options)), m_file(path)
{}

Error SpectrumOutput::write(const PredictedSpectrum &spectrum)
{
    QByteArray text = m_writer->spectrum(spectrum, m_isEmpty);
    if (m_isEmpty) {
        if (Error error = m_file.open(); error.hasError())
            return error;
        text.prepend(m_writer->opening());
        m_isEmpty = false;
    }
    return m_file.write(text);
}

Error SpectrumOutput::finish()
{
    if (m_isEmpty)
        return {};
    if (Error error = m_file.write(m_writer->closing()); error.hasError())
        return error;
    return m_file.commit();
}

} // namespace zav
