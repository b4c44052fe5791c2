// SPDX-License-Identifier: Apache-2.0
#include "TraceOutput.h"

namespace zav {

TraceOutput::TraceOutput(const QString &path, std::unique_ptr<TraceWriter> writer)
    : m_writer(std::move(writer)), m_file(path)
{}

Error TraceOutput::write(const QByteArray &text)
{
    if (!m_isOpen) {
        if (Error error = m_file.open(); error.hasError())
            return error;
        m_isOpen = true;
    }
    return m_file.write(text);
}

Error TraceOutput::finish()
{
    if (!m_isOpen)
        return {};
    if (Error error = m_file.write(m_writer->closing()); error.hasError())
        return error;
    return m_file.commit();
}

} // namespace zav
