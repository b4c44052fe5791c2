// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NetworkContract.h"

#include <zav/Error.h>

#include <QtCore/QString>

namespace zav {

/// Loads the network and makes one prediction with it. The error says why that gave no sensible result, or that this
/// kind of network cannot be tried. Throws as `throwIfOutOfMemory` does.
Error tryNetwork(const NetworkContract &contract, const QString &graphPath);

} // namespace zav
