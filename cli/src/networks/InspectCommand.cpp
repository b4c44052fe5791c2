// SPDX-License-Identifier: Apache-2.0
#include "InspectCommand.h"

#include "ModelFolder.h"
#include "NetworkInspection.h"
#include "Terminal.h"
#include "TextTable.h"

#include <cstdio>

namespace zav {

namespace {

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
