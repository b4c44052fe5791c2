// SPDX-License-Identifier: Apache-2.0
#include "SpectrumFile.h"

#include "PeakText.h"
#include "mzml/MzMlFile.h"

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

bool endsWithAny(const QString &path, std::initializer_list<const char *> endings)
{
    return std::any_of(endings.begin(), endings.end(),
                       [&](const char *ending) { return path.endsWith(QLatin1String(ending), Qt::CaseInsensitive); });
}

} // namespace

Result<std::unique_ptr<SpectrumFile>> openSpectrumFile(const QString &path, SpectraToRead wanted)
{
    if (endsWithAny(path, {".mzml", ".mzml.gz"}))
        return openMzMlFile(path, wanted);
    if (endsWithAny(path, {".mgf"}))
        return openMgfFile(path, wanted);
    if (endsWithAny(path, {".tsv", ".txt"}))
        return readPeakTable(path);
    return Error(InvalidInput,
                 path +
                     QStringLiteral(": spectra are read from files that end in .mzML, .mzML.gz, .mgf, .tsv or .txt"));
}

Result<std::unique_ptr<ByteStream>> openSpectrumBytes(const QString &path, SpectraToRead wanted)
{
    return wanted == SpectraToRead::Many ? ByteStream::openSeekable(path) : ByteStream::open(path);
}

bool isPeak(const QPointF &peak)
{
    return std::isfinite(peak.x()) && peak.x() > 0 && std::isfinite(peak.y()) && peak.y() >= 0;
}

void tidyPeaks(QList<QPointF> *peaks)
{
    peaks->removeIf([](const QPointF &peak) { return !(peak.y() > 0); });
    std::stable_sort(peaks->begin(), peaks->end(), [](const QPointF &a, const QPointF &b) { return a.x() < b.x(); });
}

} // namespace zav
