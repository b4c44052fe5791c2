// SPDX-License-Identifier: Apache-2.0
#include "InspectCommand.h"

#include "NetworkCheck.h"
#include "NetworkContract.h"
#include "NetworkLoading.h"
#include "NetworkTrial.h"
#include "OutputFile.h"
#include "PrintableText.h"
#include "Terminal.h"
#include "TextTable.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

namespace zav {

namespace {

/// What was found out about one network of a folder.
struct NetworkInspection
{
    QString name;             ///< file name without its ending
    NetworkContract contract; ///< empty where `contractError` has an error
    Error contractError;
    Error hashError;  ///< the graph file is missing, unreadable or not the one that the contract describes
    Error trialError; ///< a trial prediction failed, or the graph may do more than compute
    bool isTried = false;
};

/// Only what may be loaded is tried.
NetworkInspection inspectNetwork(const QDir &folder, const QString &name, bool trusted)
{
    NetworkInspection inspection;
    inspection.name = name;
    const QString graphPath = folder.filePath(name + QStringLiteral(".pb"));
    const Result<NetworkContract> contract = readNetworkContract(folder.filePath(name + QStringLiteral(".json")));
    inspection.contractError = contract.error();
    if (contract.hasError())
        return inspection;
    inspection.contract = contract.value();
    inspection.hashError = checkHash(graphPath, contract.value());
    if (inspection.hashError.hasError() && !trusted)
        return inspection;
    inspection.isTried = true;
    if (!trusted)
        inspection.trialError = checkOperations(graphPath);
    if (!inspection.trialError.hasError())
        inspection.trialError = tryNetwork(contract.value(), graphPath);
    return inspection;
}

/// Inspects every network of a folder, that is every name with a graph (.pb) or a contract (.json), in the order of
/// their names. `Failure` when the folder is none or holds no network.
Result<QList<NetworkInspection>> inspectNetworks(const NetworkChoice &asked)
{
    const QString path = ModelFolder::pathFor(asked.folder);
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
        inspections.append(inspectNetwork(folder, name, asked.trusted));
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

QString trialText(const NetworkInspection &inspection)
{
    if (!inspection.isTried)
        return QStringLiteral("not tried");
    return inspection.trialError.hasError() ? QStringLiteral("fails") : QStringLiteral("runs");
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
            trialText(inspection)};
}

Result<QList<NetworkInspection>> inspectQuietly(const NetworkChoice &asked, bool verbose)
{
    const QuietStandardError quiet(!verbose);
    return inspectNetworks(asked);
}

} // namespace

Error InspectCommand::work()
{
    noteTrust(m_options.networks, &messages());
    const Result<QList<NetworkInspection>> inspections = inspectQuietly(m_options.networks, m_options.verbose);
    if (inspections.hasError())
        return inspections.error();
    TextTable table({QStringLiteral("network"), QStringLiteral("kind"), QStringLiteral("charge"),
                     QStringLiteral("input"), QStringLiteral("output"), QStringLiteral("held-out figures"),
                     QStringLiteral("SHA-256"), QStringLiteral("trial")});
    for (const NetworkInspection &inspection : inspections.value())
        table.addRow(tableRow(inspection));
    if (Error error = writeToStandardOutput(table.text()); error.hasError())
        return error;
    for (const NetworkInspection &inspection : inspections.value()) {
        for (const Error &error : {inspection.contractError, inspection.hashError, inspection.trialError}) {
            if (error.hasError())
                fail(error, inspection.name);
        }
    }
    return {};
}

} // namespace zav
