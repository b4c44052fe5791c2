// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NetworkContract.h"

#include <QtCore/QList>
#include <QtCore/QString>

namespace zav {

/// What was found out about one network of a folder.
struct NetworkInspection
{
    QString name;             ///< file name without its ending
    NetworkContract contract; ///< empty where `contractError` has an error
    Error contractError;
    Error hashError;  ///< the graph file is missing, unreadable or not the one that the contract describes
    Error trialError; ///< a trial prediction failed
};

/// Inspects every network of a folder, that is every name with a graph (.pb) or a contract (.json), in the order of
/// their names. `Failure` when the folder is none or holds no network.
Result<QList<NetworkInspection>> inspectNetworks(const QString &folder);

} // namespace zav
