// SPDX-License-Identifier: Apache-2.0
#include "TableWriter.h"

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

constexpr int MZ_WIDTH = 11;
constexpr int INTENSITY_WIDTH = 11;
constexpr int ION_WIDTH = 15;
constexpr int BAR_WIDTH = 30; // of a peak of intensity 1

QByteArray peakLine(const AnnotatedPeak &peak)
{
    const int bar = int(std::lround(BAR_WIDTH * std::clamp(peak.intensity, 0.0, 1.5)));
    QByteArray line = QByteArray::number(peak.mz, 'f', 5).rightJustified(MZ_WIDTH) +
                      QByteArray::number(peak.intensity, 'f', 4).rightJustified(INTENSITY_WIDTH) + "  " +
                      peak.ionName.toUtf8().leftJustified(ION_WIDTH) + QByteArray(bar, '#');
    while (line.endsWith(' '))
        line.chop(1);
    return line + '\n';
}

} // namespace

QByteArray TableWriter::spectrum(const PredictedSpectrum &spectrum, bool isFirst) const
{
    QByteArray text = (isFirst ? "" : "\n") + spectrum.precursor.peptide.toUtf8() + "  charge " +
                      QByteArray::number(spectrum.precursor.charge) + "+  precursor m/z " +
                      QByteArray::number(spectrum.precursorMz, 'f', 5) + "  " +
                      QByteArray::number(spectrum.peaks.size()) + " peaks\n";
    text += QByteArray("m/z").rightJustified(MZ_WIDTH) + QByteArray("intensity").rightJustified(INTENSITY_WIDTH) +
            "  ion\n";
    for (const AnnotatedPeak &peak : spectrum.peaks)
        text += peakLine(peak);
    return text;
}

} // namespace zav
