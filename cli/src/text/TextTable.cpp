// SPDX-License-Identifier: Apache-2.0
#include "TextTable.h"

#include <algorithm>

namespace zav {

QString TextTable::text() const
{
    QList<qsizetype> widths(m_rows.first().size(), 0);
    for (const QStringList &row : m_rows) {
        for (int column = 0; column < widths.size(); ++column)
            widths[column] = std::max(widths[column], row.value(column).size());
    }
    QString text;
    for (const QStringList &row : m_rows) {
        QString line;
        for (int column = 0; column < widths.size(); ++column)
            line += row.value(column).leftJustified(widths[column] + 2);
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        text += line + QLatin1Char('\n');
    }
    return text;
}

} // namespace zav
