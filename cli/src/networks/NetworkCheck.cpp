// SPDX-License-Identifier: Apache-2.0
#include "NetworkCheck.h"

#include "ByteStream.h"
#include "FileDigest.h"
#include "GraphOperations.h"
#include "NetworkLoading.h"
#include "PrintableText.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

namespace zav {

namespace {

QString contractPath(const QString &graphPath)
{
    const QFileInfo graph(graphPath);
    return graph.dir().filePath(graph.completeBaseName() + QStringLiteral(".json"));
}

Error checkAgainstContract(const QString &graphPath)
{
    const Result<NetworkContract> contract = readNetworkContract(contractPath(graphPath));
    return contract.hasError() ? contract.error() : checkHash(graphPath, contract.value());
}

} // namespace

Error checkNetwork(const QString &graphPath)
{
    Error error = checkAgainstContract(graphPath);
    if (!error.hasError())
        error = checkOperations(graphPath);
    if (!error.hasError())
        return {};
    const QString hint = error.message() + QStringLiteral(" (--trust-networks loads it all the same)");
    return loadingError(Error(error.code(), hint), graphPath);
}

Error checkHash(const QString &graphPath, const NetworkContract &contract)
{
    const Result<QByteArray> hash = fileSha256(graphPath);
    if (hash.hasError())
        return hash.error();
    if (contract.sha256.isEmpty())
        return Error(Failure, QStringLiteral("the contract names no SHA-256"));
    const bool holds = hash.value() == contract.sha256.toLatin1();
    return holds ? Error() : Error(Failure, QStringLiteral("the SHA-256 differs from the contract's"));
}

Error checkOperations(const QString &graphPath)
{
    const Result<QByteArray> graph = fileBytes(graphPath);
    if (graph.hasError())
        return graph.error();
    const Result<QList<QByteArray>> operations = graphOperations(graph.value());
    if (operations.hasError())
        return operations.error();
    QStringList others;
    for (const QByteArray &operation : operations.value()) {
        if (!onlyComputes(operation))
            others.append(displayText(QString::fromUtf8(operation), 40));
    }
    if (others.isEmpty())
        return {};
    const QString named = others.mid(0, 3).join(QStringLiteral(", "));
    return Error(Failure, QStringLiteral("it may do more than compute: %1").arg(named));
}

} // namespace zav
