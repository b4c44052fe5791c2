// SPDX-License-Identifier: Apache-2.0
//
// Stands in for the pictures of spectra in a build without Qt Gui and Qt Svg.
#include "PictureFile.h"
#include "SpectrumPlot.h"

namespace zav {

bool canDrawSpectra()
{
    return canWritePictures();
}

Error drawSpectrum(const SpectrumPlotData &, const QString &path)
{
    return writePicture({}, path);
}

} // namespace zav
