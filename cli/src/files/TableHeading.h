// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LineStream.h"

#include <zav/Error.h>

#include <QtCore/QByteArrayView>
#include <QtCore/QList>
#include <QtCore/QString>

#include <initializer_list>

namespace zav {

/// Where the columns of a tab-separated table stand, by the names in its first line that is neither empty nor a
/// comment. Names count without regard to case.
class TableHeading
{
public:
    /// Moves `lines` to the heading and reads it. The error names a `needed` column that is missing or one of the read
    /// columns that stands there twice.
    Error read(LineStream *lines, std::initializer_list<const char *> needed,
               std::initializer_list<const char *> optional);

    bool has(const char *name) const { return column(name) >= 0; }

    /// The cell of a row in the column of that name, without white space around it; empty where the column or the cell
    /// is missing. Lasts as long as `row`.
    QByteArrayView cell(QByteArrayView row, const char *name) const;

private:
    struct Column
    {
        const char *name;
        qsizetype index;
    };

    Error find(const LineStream &lines, const char *name, bool isNeeded);
    qsizetype column(const char *name) const;

    QList<Column> m_columns;
};

} // namespace zav
