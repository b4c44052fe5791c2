// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PlotPeak.h"
#include "PlotScale.h"

#include <QtCore/QList>
#include <QtCore/QString>

class QPainter;

namespace zav {

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
