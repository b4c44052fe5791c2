// SPDX-License-Identifier: Apache-2.0
#include "TracePictures.h"

#include "ChromatogramPlot.h"
#include "PictureFile.h"
#include "PrintableText.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace zav {

namespace {

constexpr int NUMBER_DIGITS = 4;
constexpr int ID_LENGTH = 80;

bool isSafe(QChar character)
{
    const char32_t code = character.unicode();
    const bool isAlphanumeric =
        (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z');
    return isAlphanumeric || code == '.' || code == '-' || code == '+' || code == '=';
}

/// Every run of other characters becomes one underscore.
QString safeName(const QString &id)
{
    QString name;
    for (const QChar character : id) {
        if (isSafe(character))
            name += character;
        else if (!name.endsWith(QLatin1Char('_')))
            name += QLatin1Char('_');
    }
    return name.left(ID_LENGTH);
}

} // namespace

Error TracePictures::prepare() const
{
    if (!areDrawn())
        return {};
    if (!canWritePictures())
        return Error(Failure, QStringLiteral("this build of zav cannot draw pictures"));
    if (isOneFile() || QDir().mkpath(m_path))
        return {};
    return Error(Failure, QStringLiteral("cannot make the folder %1 for the pictures").arg(displayText(m_path, 300)));
}

QString TracePictures::pathOf(const Trace &trace) const
{
    if (isOneFile())
        return m_path;
    const QString name = QStringLiteral("%1_%2.%3")
                             .arg(trace.number, NUMBER_DIGITS, 10, QLatin1Char('0'))
                             .arg(safeName(trace.chromatogram.id), m_folderFormat);
    return QDir(m_path).filePath(name);
}

/// The file's name, and how wide the trace was extracted where that is the same for all.
QString TracePictures::sourceOf(const Trace &trace) const
{
    const QString name = QFileInfo(inputName(trace.file)).fileName();
    return m_ppm ? QStringLiteral("%1, %2 %3 ppm").arg(name, QChar(0xb1), QString::number(*m_ppm)) : name;
}

Error TracePictures::draw(const Trace &trace) const
{
    if (!areDrawn())
        return {};
    ChromatogramPlotData data;
    data.id = trace.chromatogram.id;
    data.source = sourceOf(trace);
    data.points = trace.chromatogram.points;
    data.timeUnit = trace.chromatogram.timeUnit;
    data.intensityUnit = trace.chromatogram.intensityUnit;
    for (const TracePeak &peak : trace.findings.peaks)
        data.peaks.append({peak.start, peak.end, peak.apex});
    for (const TraceSplit &split : trace.findings.splits)
        data.splits.append({split.time, split.probability});
    return drawChromatogram(data, pathOf(trace));
}

} // namespace zav
