// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Trace.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>

#include <optional>

namespace zav {

/// One number that is written of every peak or split.
struct TraceColumn
{
    enum Kind { Time, Intensity, Area, Probability, Count, Shape };

    const char *name;
    Kind kind;
};

/// What is written of a trace: a list of rows.
struct TraceTable
{
    const char *rowsName; ///< "peaks"
    QList<TraceColumn> columns;
    QList<QList<double>> (*rows)(const TraceFindings &findings); ///< a value for each column, NaN for none
    bool isGrouped = false;                                      ///< with the trace's group and its number of members
};

/// One row a peak, with its limits and measures. For groups also with its `shape`.
const TraceTable &peakTable();
const TraceTable &groupedPeakTable();

/// One row a split. For groups also with the trace's `shape`.
const TraceTable &splitTable();
const TraceTable &groupedSplitTable();

/// The column's name in a header, with the unit where it is a time: `start_min`; `start` when the unit is unknown.
QByteArray columnTitle(const TraceColumn &column, const QString &timeUnit);

/// The value as it is written: times with 5 decimals, probabilities and shapes with 4, intensities and areas with 10
/// significant digits.
QByteArray valueText(const TraceColumn &column, double value);

/// What times in one unit are to be multiplied with to be in another; nothing for units that cannot be converted.
std::optional<double> timeFactor(const QString &from, const QString &to);

/// The rows with times and areas multiplied.
QList<QList<double>> scaled(QList<QList<double>> rows, const TraceTable &table, double factor);

} // namespace zav
