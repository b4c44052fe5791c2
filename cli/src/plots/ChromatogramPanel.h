// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramPlot.h"
#include "ChromatogramTrace.h"
#include "PlotAxis.h"
#include "PlotLabel.h"

class QColor;
class QFontMetricsF;
class QPainter;
class QPen;

namespace zav {

/// The pens and brushes of a panel, which the legend shows again.
namespace chromatogramStyle {

QPen tracePen();
QPen consensusPen();
QPen endLinePen(); ///< of the line between a peak's ends
QPen splitPen();

/// Over the area of the peak with this number; neighbours differ.
QColor areaColor(qsizetype peak);

/// Between the limits of a group's peak.
QColor limitsColor(qsizetype peak);

} // namespace chromatogramStyle

/// A chromatogram in a frame: the peaks' areas, the trace, the splits and their labels; of a group the peaks' limits,
/// the consensus and the members.
class ChromatogramPanel
{
public:
    /// `traces` has to outlive the panel: the trace, or the consensus and the members. `time` leads to page x,
    /// `intensity` to page y, upward; labels end at the page height `top`.
    ChromatogramPanel(const ChromatogramPlotData &data, const QList<ChromatogramTrace> &traces, const PlotScale &time,
                      const PlotScale &intensity, double top);

    void paint(QPainter *painter) const;

    /// More are not drawn.
    static constexpr qsizetype MAX_PEAKS = 500;
    static constexpr qsizetype MAX_SPLITS = 500;

private:
    struct Label;

    bool isGroup() const { return m_traces.size() > 1; }
    QPen pen(qsizetype trace) const;
    double plotHeight() const;
    QList<QPointF> onPage(const QList<QPointF> &line) const;
    void paintEmpty(QPainter *painter) const;
    void paintZero(QPainter *painter) const;
    void paintPeak(QPainter *painter, qsizetype number) const;
    void paintTrace(QPainter *painter, qsizetype trace) const;
    void paintPoints(QPainter *painter, qsizetype trace) const;
    void paintSplits(QPainter *painter) const;
    void paintLabels(QPainter *painter) const;
    QList<Label> labels(const QFontMetricsF &metrics) const;
    std::optional<double> heightAt(double time) const;
    QList<Stick> sticks() const;

    const QList<ChromatogramTrace> &m_traces;
    PlotScale m_time;
    PlotScale m_intensity;
    double m_top;
    QList<QList<QList<QPointF>>> m_lines;  // the runs of each trace on the page
    QList<ChromatogramPlotPeak> m_peaks;   // that the panel shows
    QList<ChromatogramPlotSplit> m_splits; // likewise
};

} // namespace zav
