// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramSource.h"
#include "FuzzSupport.h"

#include <algorithm>
#include <cmath>

namespace zav::fuzz {

inline QByteArray bitsOf(const TraceOutcome &outcome)
{
    const Chromatogram &trace = outcome.chromatogram;
    if (outcome.problem.hasError())
        return bits(trace.id, outcome.problem.message());
    return bits(trace.id, trace.points, trace.timeUnit, trace.intensityUnit, trace.origin.group,
                trace.origin.isolationTarget, trace.origin.peptide, qint8(trace.origin.polarity));
}

inline void requireWhole(const TraceOutcome &outcome)
{
    const auto isFinite = [](const QPointF &point) { return std::isfinite(point.x()) && std::isfinite(point.y()); };
    const QList<QPointF> &points = outcome.chromatogram.points;
    require(!outcome.chromatogram.id.isEmpty(), "every trace has an id");
    require(outcome.problem.hasError() ? !outcome.problem.message().isEmpty()
                                       : std::all_of(points.begin(), points.end(), isFinite),
            "a trace is finite or says what is wrong with it");
}

/// All traces of a source; with `kept` the outcomes too.
inline Reading readTraces(const Result<std::unique_ptr<ChromatogramSource>> &opened,
                          QList<TraceOutcome> *kept = nullptr)
{
    Reading reading;
    if (opened.hasError()) {
        require(!opened.error().message().isEmpty(), "a failure to open says why");
        return {{}, opened.error().message()};
    }
    ChromatogramSource &source = *opened.value();
    for (;;) {
        const auto outcome = source.next();
        if (outcome.hasError()) {
            reading.error = outcome.error().message();
            require(!reading.error.isEmpty(), "a failure to read on says why");
            require(source.next().error().message() == reading.error, "an error comes back");
            return reading;
        }
        if (!outcome.value())
            break;
        requireWhole(*outcome.value());
        reading.parts.append(bitsOf(*outcome.value()));
        if (kept)
            kept->append(*outcome.value());
    }
    const auto afterwards = source.next();
    require(!afterwards.hasError() && !afterwards.value(), "nothing follows the end");
    return reading;
}

/// Goes back to the first, the middle and the last trace, each of which must read as before.
inline void requireSeeking(ChromatogramSource *source, const QList<TraceOutcome> &outcomes)
{
    for (const qsizetype i : {qsizetype(0), outcomes.size() / 2, outcomes.size() - 1}) {
        if (i < 0 || i >= outcomes.size())
            continue;
        require(!source->seek(outcomes[i].place).hasError(), "a trace that was read is found again");
        const auto again = source->next();
        require(!again.hasError() && again.value() && bitsOf(*again.value()) == bitsOf(outcomes[i]),
                "a trace reads the same when it is read again");
    }
}

inline Reading readStored(const QString &path)
{
    return readTraces(openChromatograms({path, {}, {}, false}));
}

/// Reads what is stored under that name plain, gzipped and cut, and goes back to some of the traces. Those that are
/// whole come back; none where the reading fails.
inline QList<TraceOutcome> requireReading(const char *name, const QByteArray &input)
{
    const Reading whole = readBothWays(name, input, readStored);
    if (!isGzip(input))
        require(beginsLike(whole, readStored(fileWith(name, input.first(placeWithin(input)))), 1),
                "a cut file gives what stands before the cut");
    QList<TraceOutcome> outcomes;
    auto opened = openChromatograms({fileWith(name, input), {}, {}, true});
    const Reading grouped = readTraces(opened, &outcomes);
    if (opened.hasError())
        return {};
    requireSeeking(opened.value().get(), outcomes);
    if (!grouped.error.isEmpty())
        return {};
    outcomes.removeIf([](const TraceOutcome &outcome) { return outcome.problem.hasError(); });
    return outcomes;
}

/// What was written of these traces reads as they did.
inline void requireSame(const char *name, const QByteArray &written, const QList<TraceOutcome> &outcomes)
{
    QList<TraceOutcome> again;
    const Reading reread = readTraces(openChromatograms({fileWith(name, written), {}, {}, true}), &again);
    require(reread.error.isEmpty() && again.size() == outcomes.size(), "written traces are all read");
    for (qsizetype i = 0; i < again.size(); ++i)
        require(bitsOf(again[i]) == bitsOf(outcomes[i]), "a written trace reads the same");
}

} // namespace zav::fuzz
