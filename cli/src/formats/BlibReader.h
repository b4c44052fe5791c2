// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "EncodedEntry.h"
#include "SqliteDatabase.h"

namespace zav {

/// Reads the entries of a library that `BlibLibrary` wrote, in order.
///
/// `RefSpectraProteins` and `Modifications` have no index by spectrum, nor need one: like `RefSpectra` they are read
/// once, side by side, in the order in which they were written.
class BlibReader
{
public:
    /// The reader has to go before the database.
    Error prepare(SqliteDatabase *database);

    /// Whether there was another entry, which `entry` then holds.
    Result<bool> next(EncodedEntry *entry);

private:
    /// A table whose rows begin with the spectrum they belong to.
    struct Side
    {
        SqliteStatement rows;
        bool hasRow = false;
    };

    static Error advance(Side *side);
    Error readSides(qint64 spectrum, EncodedEntry *entry);

    SqliteStatement m_spectra;
    Side m_modifications;
    Side m_proteins;
};

} // namespace zav
