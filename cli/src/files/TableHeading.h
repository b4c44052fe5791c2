// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LineReader.h"

#include <QtCore/QList>

#include <initializer_list>

namespace zav {

/// Where the columns of a table stand, and with that the cells of its rows. Names of columns count without regard to
/// case.
class TableHeading
{
public:
    enum Separator {
        Tab,
        TabOrBlanks ///< in a row without a tab, blanks
    };

    explicit TableHeading(Separator separator = Tab) : m_separator(separator) {}

    /// For a table that needs a heading: moves `lines` to their first line with content and reads it. The error names a
    /// `needed` column that is missing or one of the read columns that stands there twice.
    Error read(LineReader *lines, std::initializer_list<const char *> needed,
               std::initializer_list<const char *> optional);

    /// For a table that may have a heading: looks in `row` for columns of these names. Of two that share a name the
    /// first counts.
    void look(QByteArrayView row, std::initializer_list<const char *> names);

    /// For a table that has none: its columns are these, in this order.
    void assume(std::initializer_list<const char *> names);

    bool has(const char *name) const { return column(name) >= 0; }

    /// The place of the column, from 0; -1 where it is missing.
    qsizetype column(const char *name) const;

    /// The cell of a row in the column of that name, without white space around it; empty where the column or the cell
    /// is missing. Lasts as long as `row`.
    QByteArrayView cell(QByteArrayView row, const char *name) const;

    /// Likewise, as text.
    QString text(QByteArrayView row, const char *name) const;

    /// Reads the number in the current line's cell in that column, written with a dot whatever the locale. The error
    /// names the line and what is no finite number there.
    Error readNumber(const LineReader &lines, const char *name, double *out) const;

private:
    struct Column
    {
        const char *name;
        qsizetype index;
    };

    Error find(const LineReader &lines, const char *name, bool isNeeded);

    Separator m_separator;
    QList<Column> m_columns;
};

} // namespace zav
