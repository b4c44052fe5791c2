// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SpectrumPlot.h"

#include <QtGui/QColor>

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

} // namespace zav
