// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QLoggingCategory>

namespace zav {

/// The logging category "zav.ml": every level is enabled unless the host's rules say otherwise.
const QLoggingCategory &lcMl();

} // namespace zav
