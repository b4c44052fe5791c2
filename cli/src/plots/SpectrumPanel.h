// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PlotAxis.h"
#include "SpectrumPlot.h"

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtGui/QColor>

class QPainter;

namespace zav {

/// A peak as a picture shows it.
struct PlotPeak
{
    double mz = 0;
    double height = 0;      ///< relative to the tallest peak of its spectrum, 0 to 1
    double labelHeight = 0; ///< of the tallest peak of the ion's isotope envelope: its label stands above that
    QColor color;
    double width = 1;    ///< of the line, in page units
    QString label;       ///< `y7`, `b5-H2O`, `y12²⁺`; empty for none
    bool isLoss = false; ///< of a neutral molecule: its label gives way to those of intact ions
};

/// The predicted peaks: ions in the colour of their series, lighter where they lost a molecule; heavier isotopes
/// lighter and thin, without a label.
QList<PlotPeak> predictedPlotPeaks(const SpectrumPlotData &data);

/// The observed peaks: the matched ones look as their predicted partners do, the others are grey. Needs `observed`.
QList<PlotPeak> observedPlotPeaks(const SpectrumPlotData &data);

/// One spectrum in a frame: its peaks stand on a base line, or hang from it in the lower half of a mirror plot, with
/// labels at their ends and an axis of relative intensity at the left.
struct SpectrumPanel
{
    QList<PlotPeak> peaks;
    QString axisTitle;
    PlotScale mz;        ///< to page x
    double baseline = 0; ///< page y of intensity 0
    double farEdge = 0;  ///< page y of the edge opposite the base line; labels end there

    void paint(QPainter *painter) const;

private:
    int direction() const { return farEdge < baseline ? -1 : 1; } // of taller peaks on the page
    double fullHeight() const;
    void paintEmpty(QPainter *painter) const;
    void paintPeaks(QPainter *painter) const;
    void paintLabels(QPainter *painter) const;
};

} // namespace zav
