// SPDX-License-Identifier: Apache-2.0
#include "TracePictures.h"

#include "ChromatogramPlot.h"
#include "ConsensusTrace.h"
#include "PictureFile.h"
#include "PrintableText.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <filesystem>
#include <system_error>

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

QString headingOf(const TraceGroup &group)
{
    return group.isGrouped() ? group.name : group.traces.first().chromatogram.id;
}

/// Those that could be read, where there are several.
QList<ChromatogramPlotMember> membersOf(const TraceGroup &group)
{
    QList<ChromatogramPlotMember> members;
    for (const Trace &trace : group.traces) {
        if (!trace.isBroken)
            members.append({trace.chromatogram.id, trace.chromatogram.points});
    }
    return members.size() > 1 ? members : QList<ChromatogramPlotMember>();
}

} // namespace

Error TracePictures::prepare() const
{
    if (!areDrawn())
        return {};
    if (!canWritePictures())
        return Error(Failure, QStringLiteral("this build of zav cannot draw pictures"));
    if (isOneFile())
        return {};
    std::error_code failure;
    std::filesystem::create_directories(m_path.toStdU16String(), failure);
    if (!failure)
        return {};
    return Error(Failure, QStringLiteral("cannot make the folder %1 for the pictures: %2")
                              .arg(displayText(m_path, 300), QString::fromLocal8Bit(failure.message())));
}

QString TracePictures::pathOf(const TraceGroup &group) const
{
    if (isOneFile())
        return m_path;
    const QString name = QStringLiteral("%1_%2.%3")
                             .arg(group.number, NUMBER_DIGITS, 10, QLatin1Char('0'))
                             .arg(safeName(headingOf(group)), m_folderFormat);
    return QDir(m_path).filePath(name);
}

/// The file's name, and how wide the trace was extracted where that is the same for all.
QString TracePictures::sourceOf(const Trace &trace) const
{
    const QString name = QFileInfo(inputName(trace.file)).fileName();
    return m_ppm ? QStringLiteral("%1, %2 %3 ppm").arg(name, QChar(0xb1), QString::number(*m_ppm)) : name;
}

Error TracePictures::draw(const TraceGroup &group) const
{
    if (!areDrawn())
        return {};
    const Trace &first = group.traces.first();
    ChromatogramPlotData data;
    data.id = headingOf(group);
    data.source = sourceOf(first);
    data.members = membersOf(group);
    data.points = data.members.isEmpty() ? group.consensus : scaledConsensus(group.consensus, data.members.size());
    data.timeUnit = first.chromatogram.timeUnit;
    data.intensityUnit = first.chromatogram.intensityUnit;
    for (const TracePeak &peak : group.findings.peaks)
        data.peaks.append({peak.start, peak.end, peak.apex});
    for (const TraceSplit &split : group.findings.splits)
        data.splits.append({split.time, split.probability});
    return drawChromatogram(data, pathOf(group));
}

} // namespace zav
