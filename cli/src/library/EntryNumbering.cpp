// SPDX-License-Identifier: Apache-2.0
#include "EntryNumbering.h"

namespace zav::entryNumbering {

namespace {

constexpr char FIRST_LINE[] = "<Spectrum="; // from 1

} // namespace

bool isUsedBy(LibraryFileKind kind)
{
    return kind == LibraryFileKind::MzSpecLib;
}

bool isFirstLine(QByteArrayView line)
{
    return line.startsWith(FIRST_LINE);
}

QByteArray numberedLine(const QByteArray &line, qint64 index)
{
    return isFirstLine(line) ? FIRST_LINE + QByteArray::number(index + 1) + ">\n" : line;
}

QByteArray numberedEntry(const QByteArray &entry, qint64 index)
{
    const qsizetype end = entry.indexOf('\n') + 1;
    return numberedLine(entry.first(end), index) + entry.sliced(end);
}

} // namespace zav::entryNumbering
