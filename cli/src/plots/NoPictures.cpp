// SPDX-License-Identifier: Apache-2.0
//
// Stands in for everything that draws in a build without Qt Gui and Qt Svg.
#include "Application.h"
#include "ChromatogramPlot.h"
#include "PictureFile.h"
#include "RetentionTimePlot.h"
#include "SpectrumPlot.h"

namespace zav {

std::unique_ptr<QCoreApplication> createApplication(int &argc, char **argv, bool)
{
    return std::make_unique<QCoreApplication>(argc, argv);
}

bool canWritePictures()
{
    return false;
}

Error writePicture(const Picture &, const QString &path)
{
    return Error(Failure,
                 path + QStringLiteral(": this zav was built without Qt Gui and Qt Svg and draws no pictures"));
}

Error drawSpectrum(const SpectrumPlotData &, const QString &path)
{
    return writePicture({}, path);
}

Error drawRetentionTimes(const RetentionTimePlotData &, const QString &path)
{
    return writePicture({}, path);
}

Error drawChromatogram(const ChromatogramPlotData &, const QString &path)
{
    return writePicture({}, path);
}

} // namespace zav
