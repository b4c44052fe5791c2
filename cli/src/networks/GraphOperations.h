// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>
#include <zav/Result.h>

#include <QtCore/QByteArray>
#include <QtCore/QList>

namespace zav {

/// The kinds of operations in a serialised graph (TensorFlow's `GraphDef`): sorted, each once. `Failure` for bytes that
/// are none, and for a graph with functions of its own, which no network of this program needs.
///
/// Read here rather than with protobuf's own library: TensorFlow brings another version of it, and two in one process
/// disturb each other.
Result<QList<QByteArray>> graphOperations(const QByteArray &graph);

/// Whether an operation only computes its outputs from its inputs: it reaches no file, network, variable or process and
/// interprets no code. Known are those that networks are usually made of; any other is taken for one that does more.
bool onlyComputes(const QByteArray &operation);

} // namespace zav
