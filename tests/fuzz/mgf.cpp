// SPDX-License-Identifier: Apache-2.0
//
// Door: a Mascot generic format file.
// Promises: peaks are finite, above 0 and ascend, or a message says why not; plain and gzipped content read the same; a
// spectrum reads the same again; what is read and written reads the same; a cut file gives the spectra before the cut,
// or an error.
#include "SpectrumSupport.h"

namespace zav::fuzz {
namespace {

constexpr char NAME[] = "input.mgf";

QByteArray written(const SpectrumIdentity &identity, int msLevel, const ObservedSpectrum &spectrum)
{
    QByteArray block = "BEGIN IONS\nTITLE=" + spectrum.title.toUtf8() + "\nMSLEVEL=" + QByteArray::number(msLevel) +
                       "\nCHARGE=" + QByteArray::number(spectrum.precursorCharge) +
                       "+\nPEPMASS=" + numberText(spectrum.precursorMz) + '\n';
    if (identity.scanNumber >= 0)
        block += "SCANS=" + QByteArray::number(identity.scanNumber) + '\n';
    for (const QPointF &peak : spectrum.peaks)
        block += numberText(peak.x()) + ' ' + numberText(peak.y()) + '\n';
    return block + "END IONS\n";
}

void requireSameWhenWritten(const QByteArray &input)
{
    const Result<std::unique_ptr<SpectrumFile>> opened = openSpectrumFile(fileWith(NAME, input));
    if (opened.hasError())
        return;
    SpectrumFile &file = *opened.value();
    QByteArray document;
    QList<QByteArray> expected;
    for (int i = 0; i < file.spectrumCount(); ++i) {
        const Result<SpectrumOutcome> outcome = file.spectrum(i);
        if (outcome.hasError() || outcome.value().problem.hasError())
            continue;
        const ObservedSpectrum &spectrum = outcome.value().spectrum;
        // White space within a title that is not Latin-1 would be trimmed with the line, or not.
        if (spectrum.title != spectrum.title.trimmed())
            return;
        document += written(file.identity(i), file.msLevel(i).value(), spectrum);
        expected.append(bitsOf(spectrum));
    }
    if (expected.isEmpty())
        return;
    const Result<std::unique_ptr<SpectrumFile>> again = openSpectrumFile(fileWith(NAME, document));
    require(!again.hasError() && again.value()->spectrumCount() == expected.size(), "written spectra are all read");
    for (int i = 0; i < expected.size(); ++i)
        require(bitsOf(again.value()->spectrum(i).value().spectrum) == expected[i],
                "a written spectrum reads the same");
}

} // namespace

void tryInput(const QByteArray &input)
{
    const Reading whole = readBothWays(NAME, input, readSpectra);
    choose(fileWith(NAME, input), placeWithin(input));
    if (isGzip(input))
        return;
    const Reading cut = readSpectra(fileWith(NAME, input.first(placeWithin(input))));
    require(!whole.error.isEmpty() || !cut.error.isEmpty() || beginsLike(whole, cut, 1),
            "a cut file gives the spectra before the cut, or an error");
    requireSameWhenWritten(input);
}

} // namespace zav::fuzz
