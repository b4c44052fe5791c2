// SPDX-License-Identifier: Apache-2.0
#include "TraceStream.h"

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

Result<std::optional<Trace>> TraceStream::next()
{
    while (m_source) {
        Result<std::optional<TraceOutcome>> outcome = m_source->next();
        if (outcome.hasError())
            return outcome.error();
        if (std::optional<TraceOutcome> read = std::move(outcome).value()) {
            Trace trace;
            trace.number = ++m_number;
            trace.file = m_paths[m_file];
            trace.chromatogram = std::move(read->chromatogram);
            trace.isBroken = read->problem.hasError();
            trace.problem = std::move(read->problem);
            return std::optional(std::move(trace));
        }
        if (Error error = goOn(); error.hasError())
            return error;
    }
    return std::optional<Trace>();
}

/// Closes the file and opens the next if there is one.
Error TraceStream::goOn()
{
    m_source.reset();
    return ++m_file < m_paths.size() ? open() : Error();
}

} // namespace zav
