// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>

namespace zav {

/// The limits of a peak and its highest point, as times in the unit of the trace.
struct ChromatogramPlotPeak
{
    double start = 0;
    double end = 0;
    double apex = 0;
};

/// Where one peak was split from the next, in the unit of the trace.
struct ChromatogramPlotSplit
{
    double time = 0;
    double probability = 0;
};

/// A trace of a group.
struct ChromatogramPlotMember
{
    QString id;            ///< for the legend
    QList<QPointF> points; ///< (time, intensity) as measured, in acquisition order
};

/// What a picture shows.
struct ChromatogramPlotData
{
    QString id;                          ///< of the trace: the heading, on two lines at most, then shortened
    QString source;                      ///< the file's name and what was extracted from it; may be empty
    QList<QPointF> points;               ///< (time, intensity) as measured, in acquisition order
    QString timeUnit;                    ///< "min", "s" or empty where the file does not say
    QString intensityUnit;               ///< "counts" for example; may be empty
    QList<ChromatogramPlotPeak> peaks;   ///< shaded between their limits, in any order
    QList<ChromatogramPlotSplit> splits; ///< dashed lines, each with its probability

    /// The traces of a group: then `points` are their consensus, and `id` is the group's name.
    QList<ChromatogramPlotMember> members = {};
};

/// Draws the trace, its peaks and its splits into a file whose ending says what it is: .svg, .png or .pdf. The file
/// appears under its name only when it is complete; an older one stays on failure.
///
/// Points whose time or intensity is not finite break the line and are counted in the picture. Parts of peaks that lie
/// outside the trace are not drawn, nor are peaks whose start lies after their end. Of more than 500 peaks or splits
/// the first 500 are drawn, and the picture says so. The file of a long trace is no larger than that of a short one: of
/// the points that share a pixel, only those that are seen are written.
///
/// The members of a group are drawn in different colours, or dashes where there are more than six, over a thin line of
/// the consensus. A legend below the plot names the first 30. Peaks are shaded between their limits only.
///
/// Threads may draw side by side, into different files. Needs a QGuiApplication (`createApplication`). `InvalidInput`
/// for another ending; `Failure` when the file cannot be written, when the machine has no font, and in a build that
/// cannot draw.
Error drawChromatogram(const ChromatogramPlotData &data, const QString &path);

} // namespace zav
