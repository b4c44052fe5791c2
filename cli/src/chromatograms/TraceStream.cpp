// SPDX-License-Identifier: Apache-2.0
#include "TraceStream.h"

#include "PrintableText.h"

#include <utility>

namespace zav {

TraceStream::TraceStream(const QStringList &paths, const QList<ExtractionTarget> &targets)
    : m_paths(paths), m_targets(targets)
{}

Error TraceStream::open()
{
    ChromatogramRequest request;
    request.path = m_paths[m_file];
    request.targets = m_targets;
    Result<std::unique_ptr<ChromatogramSource>> source = openChromatograms(request);
    if (source.hasError())
        return source.error();
    m_source = std::move(source).value();
    return {};
}

qint64 TraceStream::count() const
{
    return m_paths.size() == 1 ? m_source->count() : -1;
}

Result<std::optional<TraceInput>> TraceStream::next()
{
    while (m_source) {
        Result<std::optional<TraceOutcome>> outcome = m_source->next();
        if (outcome.hasError())
            return outcome.error();
        if (std::optional<TraceOutcome> trace = std::move(outcome).value())
            return std::optional(
                TraceInput{++m_number, m_paths[m_file], std::move(trace->chromatogram), std::move(trace->problem)});
        if (const Error error = goOn(); error.hasError())
            return error;
    }
    return std::optional<TraceInput>();
}

/// Closes the file and opens the next if there is one.
Error TraceStream::goOn()
{
    m_source.reset();
    return ++m_file < m_paths.size() ? open() : Error();
}

} // namespace zav
