// SPDX-License-Identifier: Apache-2.0
#include "NetworkInspection.h"

#include "NetworkTrial.h"
#include "PrintableText.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

namespace zav {

namespace {

Error checkHash(const QString &graphPath, const QString &sha256)
{
    QFile file(graphPath);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
        return Error(Failure,
                     QStringLiteral("cannot read %1: %2").arg(displayText(graphPath, 300), file.errorString()));
    if (sha256.isEmpty())
        return Error(Failure, QStringLiteral("the contract names no SHA-256"));
    const bool holds = hash.result().toHex() == sha256.toLatin1();
    return holds ? Error() : Error(Failure, QStringLiteral("the SHA-256 is not the one of the contract"));
}

NetworkInspection inspectNetwork(const QDir &folder, const QString &name)
{
    NetworkInspection inspection;
    inspection.name = name;
    const QString graphPath = folder.filePath(name + QStringLiteral(".pb"));
    const Result<NetworkContract> contract = readNetworkContract(folder.filePath(name + QStringLiteral(".json")));
    inspection.contractError = contract.error();
    if (contract.hasError())
        return inspection;
    inspection.contract = contract.value();
    inspection.hashError = checkHash(graphPath, contract.value().sha256);
    inspection.trialError = tryNetwork(contract.value(), graphPath);
    return inspection;
}

} // namespace

Result<QList<NetworkInspection>> inspectNetworks(const QString &path)
{
    const QDir folder(path);
    if (!QFileInfo(path).isDir())
        return Error(Failure, QStringLiteral("no folder of networks at %1").arg(displayText(path, 300)));
    QStringList names;
    for (const QString &file : folder.entryList({QStringLiteral("*.pb"), QStringLiteral("*.json")}, QDir::Files))
        names.append(QFileInfo(file).completeBaseName());
    names.removeDuplicates();
    names.sort();
    if (names.isEmpty())
        return Error(Failure, QStringLiteral("no networks in %1").arg(displayText(path, 300)));
    QList<NetworkInspection> inspections;
    for (const QString &name : names)
        inspections.append(inspectNetwork(folder, name));
    return inspections;
}

} // namespace zav
