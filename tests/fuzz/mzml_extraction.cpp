// SPDX-License-Identifier: Apache-2.0
//
// Door: chromatograms extracted from the MS1 spectra of an mzML file.
// Promises: a trace a target, or an error of the file; finite points within the target's range of time; plain and
// gzipped content read the same; with and without keeping the traces too, unless gzip is damaged behind the document.
#include "ByteStream.h"
#include "ChromatogramSupport.h"

namespace zav::fuzz {
namespace {

constexpr char NAME[] = "input.mzML";

const QList<ExtractionTarget> &targets()
{
    static const QList<ExtractionTarget> all = {
        {.id = QStringLiteral("wide"), .mz = 500.0, .ppm = 1e6},
        {.id = QStringLiteral("narrow"), .mz = 400.2, .ppm = 10.0},
        {.id = QStringLiteral("early"), .mz = 401.0, .ppm = 5000.0, .rtTo = 2.0},
        {.id = QStringLiteral("late"), .mz = 400.2, .ppm = 50.0, .rtFrom = 1.5}};
    return all;
}

Reading read(const QString &path)
{
    return readTraces(openChromatograms({path, {}, targets(), false}));
}

// Gzipped content is copied to its end where traces are kept; otherwise nothing behind the document is read.
bool cannotBeReadToItsEnd(const QByteArray &input)
{
    const Result<std::unique_ptr<ByteStream>> bytes = ByteStream::open(fileWith(NAME, input));
    QByteArray piece;
    Error error = bytes.error();
    do {
        piece.clear();
        if (!error.hasError())
            error = bytes.value()->read(&piece);
    } while (!error.hasError() && !piece.isEmpty());
    return error.hasError();
}

void requireInRange(const TraceOutcome &outcome, const ExtractionTarget &target)
{
    require(outcome.chromatogram.id == target.id, "traces come in the order of their targets");
    for (const QPointF &point : outcome.chromatogram.points)
        require(point.x() >= target.rtFrom && point.x() <= target.rtTo, "points lie in the range of the target");
}

} // namespace

void tryInput(const QByteArray &input)
{
    const Reading whole = readBothWays(NAME, input, read);
    require(whole.parts.size() <= targets().size(), "no more traces than targets");
    QList<TraceOutcome> outcomes;
    auto opened = openChromatograms({fileWith(NAME, input), {}, targets(), true});
    const Reading kept = readTraces(opened, &outcomes);
    require(kept.error.isEmpty() || !whole.error.isEmpty() || cannotBeReadToItsEnd(input),
            "keeping the traces damages nothing");
    if (!kept.error.isEmpty())
        return;
    require(kept.parts.size() == targets().size(), "a trace for every target");
    // A time that goes back is an error only where a trace was given away.
    require(beginsLike(kept, whole, 0), "keeping the traces does not change them");
    for (qsizetype i = 0; i < outcomes.size(); ++i)
        requireInRange(outcomes[i], targets()[i]);
    requireSeeking(opened.value().get(), outcomes);
}

} // namespace zav::fuzz
