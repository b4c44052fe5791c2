// SPDX-License-Identifier: Apache-2.0
#include "SpectrumPlot.h"

#include "PictureFile.h"
#include "SpectrumFigure.h"

namespace zav {

Error drawSpectrum(const SpectrumPlotData &data, const QString &path)
{
    const SpectrumFigure figure(data);
    return writePicture({QStringLiteral("%1/%2").arg(data.peptide).arg(data.charge),
                         QStringLiteral("Fragment spectrum drawn by zav"), figure.size(),
                         [&](QPainter *painter) { figure.paint(painter); }},
                        path);
}

} // namespace zav
