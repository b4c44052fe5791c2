// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ReportFile.h"

#include <zav/Error.h>

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zav {

/// A number that a report has of every peak or split.
struct ReportColumn
{
    QByteArray name; ///< as the other outputs call it
    bool isTime = false;
};

/// What holds for a whole report.
struct ReportHeading
{
    QByteArray rowsName; ///< "peaks"
    QStringList files;   ///< as they are to be shown
    QList<ReportColumn> columns;
    bool isGrouped = false; ///< an entry is a group of traces
};

/// A trace of an entry.
struct ReportTrace
{
    QString id;
    QList<QPointF> points;
    QList<QList<QByteArray>> rows; ///< of each peak or split the values of the columns, as text; empty for none
    QStringList remarks;
    QString problem; ///< why nothing was searched; mostly empty
};

/// The limits of a peak and its highest point.
struct ReportPeak
{
    double start = 0;
    double end = 0;
    double apex = 0;
};

/// Where one peak was split from the next.
struct ReportSplit
{
    double time = 0;
    double probability = 0;
};

/// One line of the report's table, with its picture: a trace, or a group of traces.
struct ReportEntry
{
    qsizetype file = 0; ///< number of its file in the heading
    QString group;      ///< its name, with `isGrouped`
    QString timeUnit;   ///< of all times of the entry; empty where the file does not say
    QString intensityUnit;
    QList<ReportTrace> traces;
    QList<QPointF> consensus; ///< of a group, in the size of its traces; may be empty
    QList<ReportPeak> peaks;
    QList<ReportSplit> splits;
    QStringList remarks; ///< of the group
};

/// A report of traces, or of groups of them.
class TraceReportFile
{
public:
    /// `path` as `ReportFile` takes it.
    TraceReportFile(const QString &path, const ReportHeading &heading);

    /// The error is one of writing.
    Error add(const ReportEntry &entry);

    /// Completes the file; nothing may be added afterwards.
    Error finish() { return m_file.finish(); }

private:
    ReportFile m_file;
};

} // namespace zav
