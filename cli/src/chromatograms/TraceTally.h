// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QString>

namespace zav {

/// Counts what became of the traces of a run.
class TraceTally
{
public:
    /// A trace with `rows` peaks or splits, none being an answer too.
    void addTrace(qsizetype rows);

    void addFailure();

    qint64 traces() const { return m_traces; }
    qint64 failures() const { return m_failures; }

    /// `12 traces: 14 peaks in 9, none in 2, 1 failed`; `rowsName` is the plural.
    QString text(const QString &rowsName) const;

private:
    qint64 m_traces = 0;
    qint64 m_tracesWithRows = 0;
    qint64 m_rows = 0;
    qint64 m_failures = 0;
};

} // namespace zav
