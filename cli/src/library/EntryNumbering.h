// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryFileKind.h"

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

namespace zav {

/// The running number that mzSpecLib gives each entry. It is known only when the entry's turn has come, after it was
/// formatted and, where libraries are merged, after it was written.
namespace entryNumbering {

/// Whether a format numbers its entries; the functions below are for such a one.
bool isUsedBy(LibraryFileKind kind);

/// Whether a line is the first of an entry.
bool isFirstLine(QByteArrayView line);

/// The line with the number in it set to that of the entry `index`, which counts from 0; a line without a running
/// number as it stands.
QByteArray numberedLine(const QByteArray &line, qint64 index);

/// The same for a whole entry.
QByteArray numberedEntry(const QByteArray &entry, qint64 index);

} // namespace entryNumbering

} // namespace zav
