// SPDX-License-Identifier: Apache-2.0
#include "TraceTsvWriter.h"

#include "PrintableText.h"

#include <limits>

namespace zav {

namespace {

/// Without the tabs and line ends that would break a row.
QByteArray cell(const QString &text)
{
    return displayText(text, std::numeric_limits<int>::max()).toUtf8();
}

} // namespace

QByteArray TraceTsvWriter::header(const QString &timeUnit) const
{
    QByteArray text = m_namesFile ? "file\tid" : "id";
    for (const TraceColumn &column : table().columns)
        text += '\t' + columnTitle(column, timeUnit);
    return text + '\n';
}

QByteArray TraceTsvWriter::line(const TraceRecord &record, const QList<double> &values) const
{
    QByteArray text = (m_namesFile ? cell(record.file) + '\t' : QByteArray()) + cell(record.id);
    for (int i = 0; i < values.size(); ++i)
        text += '\t' + valueText(table().columns[i], values[i]);
    return text + '\n';
}

} // namespace zav
