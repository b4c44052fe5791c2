// SPDX-License-Identifier: Apache-2.0
#include "TraceRowWriter.h"

namespace zav {

namespace {

QString unitName(const QString &timeUnit)
{
    return timeUnit.isEmpty() ? QStringLiteral("an unknown unit") : timeUnit;
}

} // namespace

Result<QByteArray> TraceRowWriter::trace(const TraceRecord &record)
{
    const bool isFirst = !m_timeUnit;
    if (isFirst)
        m_timeUnit = record.timeUnit;
    const std::optional<double> factor = timeFactor(record.timeUnit, *m_timeUnit);
    if (!factor)
        return Error(InvalidInput, QStringLiteral("times in %1 do not go with the header's, in %2")
                                       .arg(unitName(record.timeUnit), unitName(*m_timeUnit)));
    QByteArray text = isFirst ? header(*m_timeUnit) : QByteArray();
    for (const QList<double> &values : scaled(record.rows, m_table, *factor))
        text += line(record, values);
    return text;
}

} // namespace zav
