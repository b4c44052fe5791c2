// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zav {

/// Rows of text set in columns that are as wide as their widest cell, two blanks apart, for a terminal.
class TextTable
{
public:
    explicit TextTable(const QStringList &header) : m_rows{header} {}

    /// A row may be shorter than the header: its last cells are empty.
    void addRow(const QStringList &cells) { m_rows.append(cells); }

    /// Every row on its own line, without blanks at the end.
    QString text() const;

private:
    QList<QStringList> m_rows;
};

} // namespace zav
