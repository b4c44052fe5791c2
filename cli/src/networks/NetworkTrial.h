// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NetworkContract.h"

#include <zav/Error.h>

#include <QtCore/QString>

namespace zav {

/// Loads the network and makes one prediction with it. No error when that gives a sensible result; otherwise why not,
/// also for a kind of network that cannot be tried.
Error tryNetwork(const NetworkContract &contract, const QString &graphPath);

} // namespace zav
