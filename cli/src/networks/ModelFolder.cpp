// SPDX-License-Identifier: Apache-2.0
#include "ModelFolder.h"

#include "ByteStream.h"
#include "NetworkCheck.h"
#include "PrintableText.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace zav {

namespace {

constexpr int MAXIMUM_CHARGE = 5; // of a precursor

QString fileNameOf(NetworkUse use)
{
    switch (use) {
    case NetworkUse::Fragmentation:
        break;
    case NetworkUse::Peptidoforms:
        return QStringLiteral("peptidoform_spectrum.pb");
    case NetworkUse::RetentionTimes:
        return QStringLiteral("retention_time.pb");
    case NetworkUse::PeakLimits:
        return QStringLiteral("xic_limits.pb");
    case NetworkUse::PeakSplits:
        return QStringLiteral("xic_split.pb");
    }
    return {};
}

QString missingNetwork(NetworkUse use)
{
    return use == NetworkUse::Fragmentation ? QStringLiteral("no networks (msms_charge1.pb to msms_charge5.pb)")
                                            : QStringLiteral("no network %1").arg(fileNameOf(use));
}

} // namespace

QString ModelFolder::pathFor(const QString &asked)
{
    return !asked.isEmpty()
               ? asked
               : QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/" ZAV_MODELS_FROM_PROGRAM));
}

Result<ModelFolder> ModelFolder::find(const NetworkChoice &asked, NetworkUse use)
{
    ModelFolder folder(pathFor(asked.folder), asked.trusted);
    const QString shown = displayText(folder.path(), 300);
    const QString hint = asked.folder.isEmpty() ? QStringLiteral("; --models names another folder") : QString();
    if (!QFileInfo(folder.path()).isDir())
        return Error(Failure, QStringLiteral("no folder of networks at %1%2").arg(shown, hint));
    if (!folder.holds(use))
        return Error(Failure, QStringLiteral("%1 in %2%3").arg(missingNetwork(use), shown, hint));
    return folder;
}

QString ModelFolder::fragmentationNetwork(int charge) const
{
    return QDir(m_path).filePath(QStringLiteral("msms_charge%1.pb").arg(charge));
}

QString ModelFolder::network(NetworkUse use) const
{
    return QDir(m_path).filePath(fileNameOf(use));
}

QStringList ModelFolder::fragmentationNetworks(const QList<int> &charges) const
{
    QStringList paths;
    for (int charge = 1; charge <= MAXIMUM_CHARGE; ++charge)
        paths.append(fragmentationNetwork(charges.contains(charge) ? charge : charges.first()));
    return paths;
}

Error ModelFolder::checkFragmentationNetwork(int charge) const
{
    QFile file(fragmentationNetwork(charge));
    if (!file.exists())
        return Error(Failure,
                     QStringLiteral("no network for charge %1 in %2").arg(charge).arg(displayText(m_path, 300)));
    return checkFile(file.fileName());
}

Error ModelFolder::checkNetwork(NetworkUse use) const
{
    return checkFile(network(use));
}

Error ModelFolder::checkFile(const QString &path) const
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return cannotRead(displayText(path, 300), file.errorString());
    return m_isTrusted ? Error() : zav::checkNetwork(path);
}

bool ModelFolder::holds(NetworkUse use) const
{
    return use == NetworkUse::Fragmentation ? hasFragmentationNetworks() : QFileInfo::exists(network(use));
}

bool ModelFolder::hasFragmentationNetworks() const
{
    for (int charge = 1; charge <= MAXIMUM_CHARGE; ++charge) {
        if (QFileInfo::exists(fragmentationNetwork(charge)))
            return true;
    }
    return false;
}

} // namespace zav
