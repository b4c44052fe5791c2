// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QString>

namespace zav {

/// Precursor charges as `2,3` or `1-4`: ascending, each once. `InvalidInput` for a charge that no network serves (they
/// serve 1 to 5), and for anything else.
Result<QList<int>> parseCharges(const QString &text);

} // namespace zav
