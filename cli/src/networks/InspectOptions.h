// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QString>

namespace zav {

/// What `zav inspect` was asked for.
struct InspectOptions
{
    QString modelFolder; ///< empty: where the networks are installed
    bool verbose = false;

    bool drawsPictures() const { return false; }
};

} // namespace zav
