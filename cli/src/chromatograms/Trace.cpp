// SPDX-License-Identifier: Apache-2.0
#include "Trace.h"

#include "PrintableText.h"

namespace zav {

namespace {

constexpr int ID_LENGTH = 120;

/// `1 trace`, `2 traces`; the name is a plural in s.
QString counted(qint64 count, const QString &plural)
{
    return QStringLiteral("%1 %2").arg(count).arg(count == 1 ? plural.chopped(1) : plural);
}

} // namespace

QString Trace::name() const
{
    return inputName(file) + QStringLiteral(": ") + displayText(chromatogram.id, ID_LENGTH);
}

QString TraceGroup::title() const
{
    if (!isGrouped() || traces.size() == 1)
        return traces.first().name();
    return inputName(traces.first().file) + QStringLiteral(": group ") + displayText(name, ID_LENGTH);
}

void TraceTally::addTrace(qsizetype rows, qsizetype leftOut)
{
    ++m_traces;
    m_rows += rows;
    m_leftOut += leftOut;
    m_tracesWithRows += rows > 0 ? 1 : 0;
}

void TraceTally::addFailure()
{
    ++m_traces;
    ++m_failures;
}

QString TraceTally::text(const QString &rowsName) const
{
    const QString groups =
        m_groups > 0 ? QStringLiteral(" in ") + counted(m_groups, QStringLiteral("groups")) : QString();
    QString text = QStringLiteral("%1: %2 in %3, none in %4")
                       .arg(counted(m_traces, QStringLiteral("traces")) + groups, counted(m_rows, rowsName))
                       .arg(m_tracesWithRows)
                       .arg(m_traces - m_tracesWithRows - m_failures);
    if (m_failures > 0)
        text += QStringLiteral(", %1 failed").arg(m_failures);
    if (m_leftOut > 0)
        text += QStringLiteral(", ") + counted(m_leftOut, rowsName) + QStringLiteral(" left out");
    return text;
}

} // namespace zav
