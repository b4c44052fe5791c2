// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QList>
#include <QtCore/QString>

namespace zav {

/// A peak of a trace. Times are in the trace's unit, areas in intensity times that unit.
struct TracePeak
{
    double start = 0;
    double end = 0;
    double apex = 0;          ///< time of the highest point within the limits, the first of equally high ones
    double height = 0;        ///< intensity there
    double area = 0;          ///< by the trapezoid rule over the points within the limits
    double areaAboveLine = 0; ///< the same above the line between the first and the last of these points
    qsizetype points = 0;     ///< within the limits, both included
};

/// Where one peak is to be split from the next.
struct TraceSplit
{
    double time = 0;
    double probability = 0;
};

/// What was found in one trace.
struct TraceFindings
{
    QList<TracePeak> peaks;   ///< by their start
    QList<TraceSplit> splits; ///< by time
    QString nothingFound;     ///< why there is neither; empty when there is one
    QString remark;           ///< what else to know; mostly empty
    QList<QString> warnings;  ///< of the predictor
};

} // namespace zav
