// SPDX-License-Identifier: Apache-2.0
#include "InspectCommand.h"

#include "ByteStream.h"
#include "ModelFolder.h"
#include "NetworkContract.h"
#include "NetworkTrial.h"
#include "PrintableText.h"
#include "Terminal.h"
#include "TextTable.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

#include <cstdio>

namespace zav {

namespace {

/// What was found out about one network of a folder.
struct NetworkInspection
{
    QString name;             ///< file name without its ending
    NetworkContract contract; ///< empty where `contractError` has an error
    Error contractError;
    Error hashError;  ///< the graph file is missing, unreadable or not the one that the contract describes
    Error trialError; ///< a trial prediction failed
};

Error checkHash(const QString &graphPath, const QString &sha256)
{
    QFile file(graphPath);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
        return cannotRead(displayText(graphPath, 300), file.errorString());
    if (sha256.isEmpty())
        return Error(Failure, QStringLiteral("the contract names no SHA-256"));
    const bool holds = hash.result().toHex() == sha256.toLatin1();
    return holds ? Error() : Error(Failure, QStringLiteral("the SHA-256 differs from the contract's"));
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

/// Inspects every network of a folder, that is every name with a graph (.pb) or a contract (.json), in the order of
/// their names. `Failure` when the folder is none or holds no network.
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

/// `n x 43 x 21`, n for any number.
QString shapeText(const QList<int> &shape)
{
    QStringList sizes;
    for (int size : shape)
        sizes.append(size == -1 ? QStringLiteral("n") : QString::number(size));
    return sizes.join(QStringLiteral(" x "));
}

QStringList tableRow(const NetworkInspection &inspection)
{
    if (inspection.contractError.hasError())
        return {inspection.name, QStringLiteral("no contract")};
    const NetworkContract &contract = inspection.contract;
    return {inspection.name,
            contract.kind,
            contract.charge > 0 ? QString::number(contract.charge) : QStringLiteral("-"),
            shapeText(contract.inputShape),
            shapeText(contract.outputShape),
            contract.figures,
            inspection.hashError.hasError() ? QStringLiteral("fails") : QStringLiteral("holds"),
            inspection.trialError.hasError() ? QStringLiteral("fails") : QStringLiteral("runs")};
}

Result<QList<NetworkInspection>> inspectQuietly(const QString &folder, bool verbose)
{
    const QuietStandardError quiet(!verbose);
    return inspectNetworks(folder);
}

} // namespace

Error InspectCommand::work()
{
    const Result<QList<NetworkInspection>> inspections =
        inspectQuietly(ModelFolder::pathFor(m_options.modelFolder), m_options.verbose);
    if (inspections.hasError())
        return inspections.error();
    TextTable table({QStringLiteral("network"), QStringLiteral("kind"), QStringLiteral("charge"),
                     QStringLiteral("input"), QStringLiteral("output"), QStringLiteral("held-out figures"),
                     QStringLiteral("SHA-256"), QStringLiteral("trial")});
    for (const NetworkInspection &inspection : inspections.value())
        table.addRow(tableRow(inspection));
    std::fputs(qUtf8Printable(table.text()), stdout);
    std::fflush(stdout);
    for (const NetworkInspection &inspection : inspections.value()) {
        for (const Error &error : {inspection.contractError, inspection.hashError, inspection.trialError}) {
            if (error.hasError())
                fail(error, inspection.name);
        }
    }
    return {};
}

} // namespace zav
