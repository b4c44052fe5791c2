// SPDX-License-Identifier: Apache-2.0
#include "EntryNumbering.h"

namespace zav::entryNumbering {

namespace {

constexpr char FIRST_LINE[] = "<Spectrum=";                         // from 1
constexpr char INDEX_LINE[] = "MS:1003062|library spectrum index="; // from 0
constexpr qsizetype NUMBERED_LINES = 3;                             // both are among the first of an entry

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
    if (isFirstLine(line))
        return FIRST_LINE + QByteArray::number(index + 1) + ">\n";
    if (line.startsWith(INDEX_LINE))
        return INDEX_LINE + QByteArray::number(index) + '\n';
    return line;
}

QByteArray numberedEntry(const QByteArray &entry, qint64 index)
{
    QByteArray numbered;
    numbered.reserve(entry.size() + 2 * 20); // digits of the two numbers
    qsizetype position = 0;
    for (qsizetype line = 0; line < NUMBERED_LINES && position < entry.size(); ++line) {
        const qsizetype end = entry.indexOf('\n', position) + 1;
        if (end == 0)
            break;
        numbered += numberedLine(entry.mid(position, end - position), index);
        position = end;
    }
    return numbered.append(QByteArrayView(entry).sliced(position));
}

} // namespace zav::entryNumbering
