// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NetworkContract.h"

#include <zav/Error.h>

#include <QtCore/QString>

namespace zav {

/// Whether a network may be loaded. A graph is a program that TensorFlow runs with the rights of its user, so one that
/// came along unnoticed is not to be run: it must be the graph that the contract beside it describes (SHA-256), and
/// all of its operations must be among those that only compute. `Failure` says what is wrong, which file it is and how
/// to load it all the same. Reads the graph file twice, without TensorFlow.
Error checkNetwork(const QString &graphPath);

/// The two parts of it, without a hint. The errors name no file, except those of reading.
Error checkHash(const QString &graphPath, const NetworkContract &contract);
Error checkOperations(const QString &graphPath);

} // namespace zav
