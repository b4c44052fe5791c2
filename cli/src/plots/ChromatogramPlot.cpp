// SPDX-License-Identifier: Apache-2.0
#include "ChromatogramPlot.h"

#include "ChromatogramFigure.h"
#include "PictureFile.h"
#include "PlotText.h"

namespace zav {

Error drawChromatogram(const ChromatogramPlotData &data, const QString &path)
{
    const ChromatogramFigure figure(data);
    return writePicture({printable(data.id), QStringLiteral("Chromatogram drawn by zav"), figure.size(),
                         [&](QPainter *painter) { figure.paint(painter); }},
                        path);
}

} // namespace zav
