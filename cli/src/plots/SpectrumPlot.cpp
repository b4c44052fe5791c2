// SPDX-License-Identifier: Apache-2.0
#include "SpectrumPlot.h"

#include "PlotStyle.h"
#include "SpectrumFigure.h"

#include <QtCore/QFileInfo>
#include <QtCore/QMarginsF>
#include <QtCore/QSaveFile>
#include <QtGui/QFontMetricsF>
#include <QtGui/QImage>
#include <QtGui/QPageSize>
#include <QtGui/QPainter>
#include <QtGui/QPdfWriter>
#include <QtSvg/QSvgGenerator>

namespace zav {

namespace {

constexpr char SOURCE_FILE[] = "cli/src/plots/SpectrumPlot";
constexpr double PAGE_UNITS_PER_INCH = 96;
constexpr int PNG_SCALE = 2; // pixels for each page unit: sharp at the size of a page's width
constexpr int PDF_RESOLUTION = 1200;

QString titleOf(const SpectrumPlotData &data)
{
    return QStringLiteral("%1/%2").arg(data.peptide).arg(data.charge);
}

bool paintFigure(const SpectrumFigure &figure, QPaintDevice *device, double scale)
{
    QPainter painter;
    if (!painter.begin(device))
        return false;
    painter.scale(scale, scale);
    figure.paint(&painter);
    return painter.end();
}

bool writeSvg(const SpectrumPlotData &data, QIODevice *device)
{
    const SpectrumFigure figure(data);
    QSvgGenerator generator;
    generator.setOutputDevice(device);
    generator.setTitle(titleOf(data));
    generator.setDescription(QStringLiteral("Fragment spectrum drawn by zav"));
    generator.setResolution(static_cast<int>(PAGE_UNITS_PER_INCH));
    generator.setSize(figure.size().toSize());
    generator.setViewBox(QRectF(QPointF(0, 0), figure.size()));
    return paintFigure(figure, &generator, 1);
}

bool writePng(const SpectrumPlotData &data, QIODevice *device)
{
    const SpectrumFigure figure(data);
    QImage image(figure.size().toSize() * PNG_SCALE, QImage::Format_RGB32);
    image.setText(QStringLiteral("Title"), titleOf(data));
    const int dotsPerMeter = qRound(PNG_SCALE * PAGE_UNITS_PER_INCH / 0.0254);
    image.setDotsPerMeterX(dotsPerMeter);
    image.setDotsPerMeterY(dotsPerMeter);
    // Text is laid out in page units; the image's own resolution must not scale it again.
    return paintFigure(figure, &image, PNG_SCALE) && image.save(device, "PNG");
}

bool writePdf(const SpectrumPlotData &data, QIODevice *device)
{
    const SpectrumFigure figure(data);
    QPdfWriter writer(device);
    writer.setTitle(titleOf(data));
    writer.setCreator(QStringLiteral("zav"));
    writer.setResolution(PDF_RESOLUTION);
    writer.setPageSize(QPageSize(figure.size() / PAGE_UNITS_PER_INCH, QPageSize::Inch));
    writer.setPageMargins(QMarginsF());
    return paintFigure(figure, &writer, PDF_RESOLUTION / PAGE_UNITS_PER_INCH);
}

using Writer = bool (*)(const SpectrumPlotData &, QIODevice *);

// The writer for a file ending, null for an unknown one.
Writer writerFor(const QString &path)
{
    const QString ending = QFileInfo(path).suffix().toLower();
    if (ending == QLatin1String("svg"))
        return writeSvg;
    if (ending == QLatin1String("png"))
        return writePng;
    if (ending == QLatin1String("pdf"))
        return writePdf;
    return nullptr;
}

// Qt draws boxes where there is no font; its list of families names generic ones even then.
bool hasFont()
{
    return QFontMetricsF(plotStyle::font(12)).inFont(QLatin1Char('y'));
}

Error tagged(Error error, const char *function, int line)
{
    return error.ecatch(function, SOURCE_FILE, line);
}

} // namespace

bool canDrawSpectra()
{
    return true;
}

Error drawSpectrum(const SpectrumPlotData &data, const QString &path)
{
    const Writer write = writerFor(path);
    if (!write)
        return tagged(Error(InvalidInput, path + QStringLiteral(": pictures are written to .svg, .png or .pdf files")),
                      Q_FUNC_INFO, __LINE__);
    if (!hasFont())
        return tagged(Error(Failure, QStringLiteral("a picture needs a font and this machine has none; install one, "
                                                    "for example the package fonts-dejavu-core")),
                      Q_FUNC_INFO, __LINE__);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return tagged(Error(Failure, path + QStringLiteral(": cannot be written: ") + file.errorString()), Q_FUNC_INFO,
                      __LINE__);
    if (!write(data, &file) || !file.commit())
        return tagged(
            Error(Failure, path + QStringLiteral(": the picture could not be written: ") + file.errorString()),
            Q_FUNC_INFO, __LINE__);
    return {};
}

} // namespace zav
