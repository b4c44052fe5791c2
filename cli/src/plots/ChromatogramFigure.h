// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramPlot.h"
#include "ChromatogramTrace.h"
#include "PlotScale.h"

#include <QtCore/QSizeF>
#include <QtCore/QStringList>

class QPainter;

namespace zav {

/// The whole picture: heading, source, the panel with its axes, and legend.
class ChromatogramFigure
{
public:
    /// `data` has to outlive the figure.
    explicit ChromatogramFigure(const ChromatogramPlotData &data);

    /// Page size in page units, 1/96 inch.
    QSizeF size() const;

    /// On a white page.
    void paint(QPainter *painter) const;

private:
    void paintHeading(QPainter *painter) const;
    void paintNote(QPainter *painter) const;
    PlotScale timeScale() const;
    PlotScale intensityScale() const;
    double plotTop() const;

    const ChromatogramPlotData &m_data;
    ChromatogramTrace m_trace;
    QStringList m_heading;
    QString m_source;
};

} // namespace zav
