// SPDX-License-Identifier: Apache-2.0
#include "TableHeading.h"

#include <algorithm>
#include <cstring>

namespace zav {

namespace {

// The cell at `index`, or nothing where the row has fewer.
QByteArrayView cellAt(QByteArrayView row, qsizetype index)
{
    for (; index > 0; --index) {
        const qsizetype tab = row.indexOf('\t');
        if (tab < 0)
            return {};
        row = row.sliced(tab + 1);
    }
    const qsizetype end = row.indexOf('\t');
    return (end < 0 ? row : row.first(end)).trimmed();
}

} // namespace

Error TableHeading::read(LineStream *lines, std::initializer_list<const char *> needed,
                         std::initializer_list<const char *> optional)
{
    m_columns.clear();
    if (!lines->nextContent())
        return lines->error().hasError() ? lines->error()
                                         : Error(Failure, lines->name() + QStringLiteral(": holds no table"));
    for (const char *name : needed) {
        if (Error error = find(*lines, name, true); error.hasError())
            return error;
    }
    for (const char *name : optional) {
        if (Error error = find(*lines, name, false); error.hasError())
            return error;
    }
    return {};
}

Error TableHeading::find(const LineStream &lines, const char *name, bool isNeeded)
{
    const QByteArrayView heading = lines.line();
    const qsizetype count = std::count(heading.begin(), heading.end(), '\t') + 1;
    qsizetype found = -1;
    for (qsizetype i = 0; i < count; ++i) {
        if (cellAt(heading, i).compare(name, Qt::CaseInsensitive) != 0)
            continue;
        if (found >= 0)
            return lines.errorHere(QStringLiteral("the heading has two columns '%1'").arg(QLatin1String(name)));
        found = i;
    }
    if (found < 0 && isNeeded)
        return lines.errorHere(
            QStringLiteral("the heading has no column '%1' (columns are separated by tabs)").arg(QLatin1String(name)));
    m_columns.append({name, found});
    return {};
}

QByteArrayView TableHeading::cell(QByteArrayView row, const char *name) const
{
    const qsizetype index = column(name);
    return index < 0 ? QByteArrayView() : cellAt(row, index);
}

qsizetype TableHeading::column(const char *name) const
{
    const auto found = std::find_if(m_columns.begin(), m_columns.end(),
                                    [&](const Column &column) { return std::strcmp(column.name, name) == 0; });
    return found == m_columns.end() ? -1 : found->index;
}

} // namespace zav
