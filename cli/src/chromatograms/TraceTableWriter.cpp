// SPDX-License-Identifier: Apache-2.0
#include "TraceTableWriter.h"

#include "PrintableText.h"

#include <algorithm>

namespace zav {

namespace {

constexpr int NUMBER_WIDTH = 12;
constexpr int ID_LENGTH = 120;

QByteArray shortText(const TraceColumn &column, double value)
{
    const bool isAmount = column.kind == TraceColumn::Intensity || column.kind == TraceColumn::Area;
    return isAmount ? QByteArray::number(value, 'g', 5) : valueText(column, value);
}

} // namespace

QByteArray TraceTableWriter::header(const QString &timeUnit) const
{
    QList<QByteArray> titles;
    for (const TraceColumn &column : table().columns)
        titles.append(columnTitle(column, timeUnit));
    return fullLine(titles, QStringLiteral("file"), QStringLiteral("id"));
}

QByteArray TraceTableWriter::line(const TraceRecord &record, const QList<double> &values) const
{
    QList<QByteArray> numbers;
    for (int i = 0; i < values.size(); ++i)
        numbers.append(shortText(table().columns[i], values[i]));
    return fullLine(numbers, record.file, displayText(record.id, ID_LENGTH));
}

QByteArray TraceTableWriter::fullLine(const QList<QByteArray> &numbers, const QString &file, const QString &id) const
{
    QByteArray text;
    for (int i = 0; i < numbers.size(); ++i) {
        const qsizetype titleWidth = QByteArray(table().columns[i].name).size() + 2;
        text += numbers[i].rightJustified(std::max<qsizetype>(NUMBER_WIDTH, titleWidth));
    }
    if (m_fileWidth > 0)
        text += QByteArray("  ") + file.leftJustified(m_fileWidth).toUtf8();
    return text + "  " + id.toUtf8() + '\n';
}

} // namespace zav
