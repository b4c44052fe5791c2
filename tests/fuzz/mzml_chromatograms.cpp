// SPDX-License-Identifier: Apache-2.0
//
// Door: the chromatograms stored in an mzML file.
// Promises: finite points or a message; plain and gzipped content read the same; traces are found again; a file that is
// cut gives the traces before the cut.
#include "ChromatogramSupport.h"

namespace zav::fuzz {
namespace {

constexpr char NAME[] = "input.mzML";

Reading read(const QString &path)
{
    return readTraces(openChromatograms({path, {}, {}, false}));
}

} // namespace

void tryInput(const QByteArray &input)
{
    const Reading whole = readBothWays(NAME, input, read);
    if (!isGzip(input))
        require(beginsLike(whole, read(fileWith(NAME, input.first(placeWithin(input)))), 1),
                "a cut file gives what stands before the cut");
    QList<TraceOutcome> outcomes;
    auto opened = openChromatograms({fileWith(NAME, input), {}, {}, true});
    readTraces(opened, &outcomes);
    if (!opened.hasError())
        requireSeeking(opened.value().get(), outcomes);
}

} // namespace zav::fuzz
