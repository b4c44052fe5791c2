// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramSource.h"

#include <zav/Error.h>

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
    double shape = 0;         ///< in a group: agreement with the consensus within the limits, see `shapeAgreement`
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
    qsizetype leftOut = 0;    ///< peaks that were found, but are not among the best, which alone were asked for
    QList<TraceSplit> splits; ///< by time
    double shape = 0;         ///< in a group: agreement with the consensus over the whole trace
    QString nothingFound;     ///< why there is neither; empty when there is one
    QString remark;           ///< what else to know; mostly empty
    QList<QString> warnings;  ///< of the predictor
};

/// One trace of a run, from its reading to its output.
struct Trace
{
    qint64 number = 0;         ///< from 1, over all files
    QString file;              ///< as the user named it
    Chromatogram chromatogram; ///< of a broken trace only the id
    bool isBroken = false;     ///< it could not be read: the message of `problem` says file and trace
    TraceFindings findings;
    Error problem;         ///< why there are no findings
    Error pictureProblem;  ///< why it could not be drawn
    QString group;         ///< empty where traces are not grouped
    qsizetype members = 0; ///< traces of its group

    /// What messages call it: file and id.
    QString name() const;
};

/// Traces that are searched together: those of one precursor, or a trace alone.
struct TraceGroup
{
    qint64 number = 0;        ///< from 1, over all files
    QString name;             ///< empty where traces are not grouped
    QList<Trace> traces;      ///< one or more, in the file's order
    QList<QPointF> consensus; ///< what was searched
    TraceFindings findings;   ///< there
    QString note;             ///< what to tell of the file before anything of the group; mostly empty

    bool isGrouped() const { return !name.isEmpty(); }

    /// What messages call it: file and group, or the name of its only trace.
    QString title() const;
};

/// Counts what became of the traces of a run.
class TraceTally
{
public:
    /// A trace that was searched, with the number of its peaks or splits, which may be 0, and of peaks left out.
    void addTrace(qsizetype rows, qsizetype leftOut = 0);

    /// A group, whose traces are counted for themselves.
    void addGroup() { ++m_groups; }

    void addFailure();

    qint64 traces() const { return m_traces; }
    qint64 failures() const { return m_failures; }

    /// `12 traces: 14 peaks in 9, none in 2, 1 failed`, or `12 traces in 3 groups: ...`; `rowsName` is the plural. What
    /// was left out stands behind: `..., 7 peaks left out`.
    QString text(const QString &rowsName) const;

private:
    qint64 m_traces = 0;
    qint64 m_groups = 0;
    qint64 m_tracesWithRows = 0;
    qint64 m_rows = 0;
    qint64 m_leftOut = 0;
    qint64 m_failures = 0;
};

} // namespace zav
