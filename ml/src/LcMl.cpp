// SPDX-License-Identifier: Apache-2.0
#include "LcMl.h"

namespace zav {

Q_LOGGING_CATEGORY(lcMl, "zav.ml", QtDebugMsg)

} // namespace zav
