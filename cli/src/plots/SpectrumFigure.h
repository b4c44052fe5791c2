// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PlotPeak.h"
#include "PlotScale.h"
#include "SpectrumPlot.h"

#include <QtCore/QSizeF>

class QPainter;

namespace zav {

/// The whole picture: heading, peptide, one panel or two mirrored ones, m/z axis and legend.
class SpectrumFigure
{
public:
    /// `data` has to outlive the figure.
    explicit SpectrumFigure(const SpectrumPlotData &data);

    /// Page size in page units, 1/96 inch.
    QSizeF size() const;

    /// On a white page.
    void paint(QPainter *painter) const;

private:
    double plotBottom() const;
    void paintHeading(QPainter *painter) const;
    void paintPeptide(QPainter *painter) const;
    void paintPanels(QPainter *painter) const;
    void paintSource(QPainter *painter) const;

    const SpectrumPlotData &m_data;
    QList<PlotPeak> m_predicted;
    QList<PlotPeak> m_observed;
    PlotScale m_mz;
};

} // namespace zav
