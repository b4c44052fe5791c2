// SPDX-License-Identifier: Apache-2.0
//
// Stands in for the pictures of chromatograms in a build without Qt Gui and Qt Svg.
#include "ChromatogramPlot.h"
#include "PictureFile.h"

namespace zav {

bool canDrawChromatograms()
{
    return canWritePictures();
}

Error drawChromatogram(const ChromatogramPlotData &, const QString &path)
{
    return writePicture({}, path);
}

} // namespace zav
