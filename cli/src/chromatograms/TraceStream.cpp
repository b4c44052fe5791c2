// SPDX-License-Identifier: Apache-2.0
#include "TraceStream.h"

#include "ByteStream.h"
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
    request.readsGroups = m_idPattern.has_value();
    Result<std::unique_ptr<ChromatogramSource>> source = openChromatograms(request);
    if (source.hasError())
        return source.error();
    m_source = std::move(source).value();
    return m_idPattern ? makeIndex() : Error();
}

Error TraceStream::makeIndex()
{
    m_index = {TraceGrouping(*m_idPattern), {}, 0, 0};
    for (;;) {
        Result<std::optional<TraceOutcome>> outcome = m_source->next();
        if (outcome.hasError())
            return outcome.error();
        const std::optional<TraceOutcome> read = std::move(outcome).value();
        if (!read)
            break;
        m_index.places.append(read->place);
        if (read->problem.hasError())
            m_index.grouping.addAlone(read->chromatogram.id);
        else
            m_index.grouping.add(read->chromatogram);
    }
    m_index.nextTrace = m_index.places.size();
    return {};
}

qint64 TraceStream::count() const
{
    if (m_paths.size() != 1)
        return -1;
    return m_idPattern ? m_index.places.size() : m_source->count();
}

Result<std::optional<TraceGroup>> TraceStream::next()
{
    while (m_source) {
        Result<std::optional<TraceGroup>> group = m_idPattern ? nextOfIndex() : nextAlone();
        if (group.hasError() || group.value())
            return group;
        if (Error error = goOn(); error.hasError())
            return error;
    }
    return std::optional<TraceGroup>();
}

/// Of the open file, likewise below.
Result<std::optional<TraceGroup>> TraceStream::nextAlone()
{
    Result<std::optional<TraceOutcome>> outcome = m_source->next();
    if (outcome.hasError())
        return outcome.error();
    std::optional<TraceOutcome> read = std::move(outcome).value();
    if (!read)
        return std::optional<TraceGroup>();
    TraceGroup group;
    group.number = ++m_number;
    group.traces.append(traceOf(std::move(*read), m_number));
    return std::optional(std::move(group));
}

Result<std::optional<TraceGroup>> TraceStream::nextOfIndex()
{
    const QList<TraceGrouping::Group> &groups = m_index.grouping.groups();
    if (m_index.nextGroup == groups.size())
        return std::optional<TraceGroup>();
    TraceGroup group;
    group.number = ++m_groupNumber;
    if (m_index.nextGroup == 0 && groups.size() > 1 && !m_index.grouping.foundPrecursor())
        group.note = inputName(m_paths[m_file]) +
                     QStringLiteral(": nothing tells which traces belong together, so each is read alone");
    const TraceGrouping::Group &members = groups[m_index.nextGroup++];
    group.name = members.name;
    for (const qsizetype member : members.members) {
        Result<Trace> trace = readMember(member);
        if (trace.hasError())
            return trace.error();
        group.traces.append(std::move(trace).value());
        group.traces.last().group = group.name;
        group.traces.last().members = members.members.size();
    }
    return std::optional(std::move(group));
}

Result<Trace> TraceStream::readMember(qsizetype member)
{
    if (member != m_index.nextTrace) {
        if (Error error = m_source->seek(m_index.places[member]); error.hasError())
            return error;
    }
    m_index.nextTrace = member + 1;
    Result<std::optional<TraceOutcome>> outcome = m_source->next();
    if (outcome.hasError())
        return outcome.error();
    std::optional<TraceOutcome> read = std::move(outcome).value();
    if (!read)
        return cannotRead(inputName(m_paths[m_file]), QStringLiteral("it changed while it was read"));
    return traceOf(std::move(*read), m_number + member + 1);
}

Trace TraceStream::traceOf(TraceOutcome outcome, qint64 number) const
{
    Trace trace;
    trace.number = number;
    trace.file = m_paths[m_file];
    trace.chromatogram = std::move(outcome.chromatogram);
    trace.isBroken = outcome.problem.hasError();
    trace.problem = std::move(outcome.problem);
    return trace;
}

/// Closes the file and opens the next if there is one.
Error TraceStream::goOn()
{
    m_source.reset();
    if (m_idPattern)
        m_number += m_index.places.size();
    return ++m_file < m_paths.size() ? open() : Error();
}

} // namespace zav
