// SPDX-License-Identifier: Apache-2.0
//
// Door: a text table that is one MS/MS spectrum.
// Promises: peaks are finite, above 0 and ascend, or a message says why not; plain and gzipped content read the same;
// what is read and written reads the same.
#include "SpectrumSupport.h"

namespace zav::fuzz {
namespace {

constexpr char NAME[] = "input.tsv";

} // namespace

void tryInput(const QByteArray &input)
{
    readBothWays(NAME, input, readSpectra);
    const Result<ObservedSpectrum> spectrum = readObservedSpectrum(fileWith(NAME, input), {});
    if (spectrum.hasError() || spectrum.value().peaks.isEmpty())
        return;
    QByteArray table;
    for (const QPointF &peak : spectrum.value().peaks)
        table += numberText(peak.x()) + '\t' + numberText(peak.y()) + '\n';
    const Result<ObservedSpectrum> again = readObservedSpectrum(fileWith(NAME, table), {});
    require(!again.hasError() && bitsOf(again.value()) == bitsOf(spectrum.value()), "written peaks read the same");
}

} // namespace zav::fuzz
