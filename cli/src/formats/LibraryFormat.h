// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryEntry.h"
#include "LibraryFileKind.h"

#include <QtCore/QByteArray>

#include <memory>

namespace zav {

/// What a library says of itself. Nothing that changes between two runs may stand here: no date, machine or folder.
struct LibraryInfo
{
    QString name;    ///< of the library, one line, not empty; mzSpecLib and BLIB write it
    QString version; ///< of this program; mzSpecLib writes it
};

/// One text format of spectral libraries. A document is `opening`, the entries in order, `closing`.
///
/// Lines end with LF and numbers have a decimal point whatever the locale: m/z with 5 decimals, the last a reader can
/// use. Every function may be called from several threads at once.
class LibraryFormat
{
public:
    virtual ~LibraryFormat();

    virtual QByteArray opening(const LibraryInfo &info) const;

    /// The text of one entry; `index` is its position in the whole library, from 0. Empty for an entry of which the
    /// format can hold no peak, as readers lose their place at spectra without peaks: such an entry is left out, and
    /// its index with it.
    virtual QByteArray entry(const LibraryEntry &entry, qint64 index) const = 0;

    virtual QByteArray closing() const;
};

/// The format of a text kind; null for a SQLite kind, which `makeSqliteLibrary` serves.
std::unique_ptr<LibraryFormat> makeTextLibraryFormat(LibraryFileKind kind);

} // namespace zav
