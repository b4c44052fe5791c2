// SPDX-License-Identifier: Apache-2.0
#include "PeakTableFile.h"

#include "PeakLine.h"
#include "TextLineReader.h"

#include <QtCore/QFileInfo>

namespace zav {

namespace {

// A heading begins with a name; a number that cannot be read (`100,5`) is a mistake rather than a heading.
bool isHeading(const QByteArray &line)
{
    return !QByteArray("+-.0123456789").contains(line[0]);
}

Error readPeaks(TextLineReader *lines, QList<QPointF> *peaks)
{
    bool mayBeHeading = true;
    while (lines->next()) {
        if (lines->line().isEmpty() || lines->line().startsWith('#'))
            continue;
        if (const auto peak = parsePeakLine(lines->line()))
            peaks->append(*peak);
        else if (!mayBeHeading || !isHeading(lines->line()))
            return lines->errorHere(QStringLiteral("expected m/z and intensity"));
        mayBeHeading = false;
    }
    return lines->error();
}

} // namespace

Result<std::unique_ptr<SpectrumFile>> PeakTableFile::open(const QString &path)
{
    TextLineReader lines(path);
    if (Error error = lines.open(); error.hasError())
        return error;
    ObservedSpectrum spectrum;
    spectrum.title = QFileInfo(path).fileName();
    if (Error error = readPeaks(&lines, &spectrum.peaks); error.hasError())
        return error;
    if (spectrum.peaks.isEmpty())
        return Error(Failure, path + QStringLiteral(": holds no peaks"));
    tidyPeaks(&spectrum.peaks);
    return std::unique_ptr<SpectrumFile>(std::make_unique<PeakTableFile>(std::move(spectrum)));
}

} // namespace zav
