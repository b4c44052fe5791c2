// SPDX-License-Identifier: Apache-2.0
#include "TableHeading.h"

#include "PrintableText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>

namespace zav {

namespace {

bool isBlank(char character)
{
    return QByteArrayView(" \t\n\v\f\r").contains(character);
}

/// The cells of a row from first to last.
class CellCursor
{
public:
    CellCursor(QByteArrayView row, TableHeading::Separator separator)
        : m_isByTabs(separator == TableHeading::Tab || row.contains('\t')), m_rest(m_isByTabs ? row : row.trimmed())
    {}

    bool isAtEnd() const { return m_isAtEnd; }

    QByteArrayView next()
    {
        const qsizetype size = cellSize();
        const QByteArrayView cell = m_rest.first(size).trimmed();
        m_isAtEnd = size == m_rest.size();
        m_rest = m_isAtEnd ? QByteArrayView() : m_rest.sliced(size + 1);
        if (!m_isByTabs)
            m_rest = m_rest.trimmed();
        return cell;
    }

private:
    qsizetype cellSize() const
    {
        if (!m_isByTabs)
            return std::find_if(m_rest.begin(), m_rest.end(), isBlank) - m_rest.begin();
        const qsizetype tab = m_rest.indexOf('\t');
        return tab < 0 ? m_rest.size() : tab;
    }

    bool m_isByTabs;
    bool m_isAtEnd = false;
    QByteArrayView m_rest;
};

// The cell at `index`, empty where the row has fewer.
QByteArrayView cellAt(QByteArrayView row, qsizetype index, TableHeading::Separator separator)
{
    CellCursor cells(row, separator);
    for (; index > 0 && !cells.isAtEnd(); --index)
        cells.next();
    return cells.isAtEnd() ? QByteArrayView() : cells.next();
}

QString textOf(QByteArrayView cell)
{
    return QString::fromUtf8(cell).trimmed();
}

// The columns of that name.
QList<qsizetype> columnsNamed(QByteArrayView heading, const char *name, TableHeading::Separator separator)
{
    QList<qsizetype> found;
    CellCursor cells(heading, separator);
    for (qsizetype i = 0; !cells.isAtEnd(); ++i) {
        if (textOf(cells.next()).compare(QLatin1String(name), Qt::CaseInsensitive) == 0)
            found.append(i);
    }
    return found;
}

std::optional<double> finiteNumber(QByteArrayView text)
{
    if (text.startsWith('+') && !text.startsWith("+-"))
        text = text.sliced(1);
    double number = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = problem == std::errc() && end == text.data() + text.size();
    return isWhole && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

} // namespace

Error TableHeading::read(LineReader *lines, std::initializer_list<const char *> needed,
                         std::initializer_list<const char *> optional)
{
    m_columns.clear();
    if (!lines->nextContent())
        return lines->error().hasError() ? lines->error()
                                         : cannotRead(lines->name(), QStringLiteral("it holds no table"));
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

Error TableHeading::find(const LineReader &lines, const char *name, bool isNeeded)
{
    const QList<qsizetype> found = columnsNamed(lines.line(), name, m_separator);
    if (found.size() > 1)
        return lines.errorHere(QStringLiteral("the heading has two columns '%1'").arg(QLatin1String(name)));
    if (found.isEmpty() && isNeeded)
        return lines.errorHere(
            QStringLiteral("the heading has no column '%1' (columns are separated by tabs)").arg(QLatin1String(name)));
    m_columns.append({name, found.value(0, -1)});
    return {};
}

void TableHeading::look(QByteArrayView row, std::initializer_list<const char *> names)
{
    m_columns.clear();
    for (const char *name : names)
        m_columns.append({name, columnsNamed(row, name, m_separator).value(0, -1)});
}

void TableHeading::assume(std::initializer_list<const char *> names)
{
    m_columns.clear();
    for (const char *name : names)
        m_columns.append({name, m_columns.size()});
}

qsizetype TableHeading::column(const char *name) const
{
    const auto found = std::find_if(m_columns.begin(), m_columns.end(),
                                    [&](const Column &column) { return std::strcmp(column.name, name) == 0; });
    return found == m_columns.end() ? -1 : found->index;
}

QByteArrayView TableHeading::cell(QByteArrayView row, const char *name) const
{
    const qsizetype index = column(name);
    return index < 0 ? QByteArrayView() : cellAt(row, index, m_separator);
}

QString TableHeading::text(QByteArrayView row, const char *name) const
{
    return textOf(cell(row, name));
}

Error TableHeading::readNumber(const LineReader &lines, const char *name, double *out) const
{
    const QByteArrayView text = cell(lines.line(), name);
    const std::optional<double> number = finiteNumber(text);
    if (!number)
        return lines.errorHere(QStringLiteral("%1 '%2' is not a finite number")
                                   .arg(QLatin1String(name), displayText(QString::fromUtf8(text))));
    *out = *number;
    return {};
}

} // namespace zav
