// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QString>

namespace zav {

/// The error with another message, its code and trail kept: for a failure that its origin tells by code and trail
/// alone, or that needs to be put in the user's terms.
Error explainedError(const Error &error, const QString &message);

} // namespace zav
