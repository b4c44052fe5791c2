// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QString>

namespace zav {

/// What a network's contract, the JSON file beside its graph, says about it. A field that the contract lacks is empty.
struct NetworkContract
{
    /// `msms_fragmentation`, `peptidoform_spectrum`, `retention_time`, `xic_limits` or `xic_split`.
    QString kind;
    int charge = 0;         ///< of the precursor; 0 for kinds without one
    int maxPointCount = 0;  ///< of a chromatogram that the network takes; 0 for kinds without one
    QList<int> inputShape;  ///< -1: any number
    QList<int> outputShape; ///< -1: any number
    QString figures;        ///< how good it is on held-out data, as text for a person
    QString sha256;         ///< of the graph file, hexadecimal, lower case
};

/// Reads a contract. `Failure` when the file cannot be read or is not a JSON object with a text `kind`; the message
/// names the file.
Result<NetworkContract> readNetworkContract(const QString &path);

} // namespace zav
