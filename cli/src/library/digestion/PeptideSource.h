// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PeptideBlock.h"
#include "ProteinTable.h"

#include <zav/Error.h>

#include <QtCore/QtGlobal>

namespace zav {

/// The distinct peptides of a library, targets and decoys in one order: by their sequence, as `memcmp` compares. No
/// sequence occurs twice, as a decoy that equals a target is none. Immutable.
class PeptideSource
{
public:
    PeptideSource() = default;
    virtual ~PeptideSource() = default;
    PeptideSource(const PeptideSource &) = delete;
    PeptideSource &operator=(const PeptideSource &) = delete;

    virtual qint64 count() const = 0;

    /// Puts the peptides [first, end) in place of what `out` held. Random access, at its fastest from front to back.
    /// One thread at a time.
    ///
    /// `InvalidInput` for a range that is not within 0 to `count()`, `Failure` when a temporary file cannot be read;
    /// `out` is empty then.
    virtual Error read(qint64 first, qint64 end, PeptideBlock *out) = 0;

    /// The proteins that the peptides' indices count. Any thread may read it.
    virtual const ProteinTable &proteins() const = 0;
};

} // namespace zav
