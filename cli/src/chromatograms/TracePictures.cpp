// SPDX-License-Identifier: Apache-2.0
#include "TracePictures.h"

#include "PictureFile.h"
#include "PrintableText.h"

#include <QtCore/QDir>

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

QString TracePictures::pathOf(qint64 number, const QString &id) const
{
    if (isOneFile())
        return m_path;
    const QString name =
        QStringLiteral("%1_%2.%3").arg(number, NUMBER_DIGITS, 10, QLatin1Char('0')).arg(safeName(id), m_folderFormat);
    return QDir(m_path).filePath(name);
}

Error TracePictures::draw(qint64 number, const ChromatogramPlotData &data) const
{
    return drawChromatogram(data, pathOf(number, data.id));
}

} // namespace zav
