// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QtGlobal>

namespace zav {

enum class DecoyKind { None, Reversed, Shuffled };

/// Which decoys a library gets beside its targets.
struct DecoyOptions
{
    DecoyKind kind = DecoyKind::None;

    /// Of `Shuffled`: another seed, other decoys. Any value.
    quint64 seed = 1;
};

} // namespace zav
