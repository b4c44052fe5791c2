// SPDX-License-Identifier: Apache-2.0
#include "PictureFile.h"

#include "OutputFile.h"
#include "PlotStyle.h"

#include <QtCore/QBuffer>
#include <QtCore/QFileInfo>
#include <QtCore/QMarginsF>
#include <QtGui/QFontMetricsF>
#include <QtGui/QImage>
#include <QtGui/QPageSize>
#include <QtGui/QPainter>
#include <QtGui/QPdfWriter>
#include <QtSvg/QSvgGenerator>

namespace zav {

namespace {

constexpr char SOURCE_FILE[] = "cli/src/plots/PictureFile";
constexpr double PAGE_UNITS_PER_INCH = 96;
constexpr int PNG_SCALE = 2; // pixels for each page unit: sharp at the size of a page's width
constexpr int PDF_RESOLUTION = 1200;

bool paintOn(const Picture &picture, QPaintDevice *device, double scale)
{
    QPainter painter;
    if (!painter.begin(device))
        return false;
    painter.scale(scale, scale);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.fillRect(QRectF(QPointF(0, 0), picture.size), Qt::white);
    picture.paint(&painter);
    return painter.end();
}

bool writeSvg(const Picture &picture, QIODevice *device)
{
    QSvgGenerator generator;
    generator.setOutputDevice(device);
    generator.setTitle(picture.title.toHtmlEscaped()); // Qt 6.4 writes it as it is
    generator.setDescription(picture.description);
    generator.setResolution(static_cast<int>(PAGE_UNITS_PER_INCH));
    generator.setSize(picture.size.toSize());
    generator.setViewBox(QRectF(QPointF(0, 0), picture.size));
    return paintOn(picture, &generator, 1);
}

bool writePng(const Picture &picture, QIODevice *device)
{
    QImage image(picture.size.toSize() * PNG_SCALE, QImage::Format_RGB32);
    image.setText(QStringLiteral("Title"), picture.title);
    const int dotsPerMeter = qRound(PNG_SCALE * PAGE_UNITS_PER_INCH / 0.0254);
    image.setDotsPerMeterX(dotsPerMeter);
    image.setDotsPerMeterY(dotsPerMeter);
    // Text is laid out in page units; the image's own resolution must not scale it again.
    return paintOn(picture, &image, PNG_SCALE) && image.save(device, "PNG");
}

bool writePdf(const Picture &picture, QIODevice *device)
{
    QPdfWriter writer(device);
    writer.setTitle(picture.title);
    writer.setCreator(QStringLiteral("zav"));
    writer.setResolution(PDF_RESOLUTION);
    writer.setPageSize(QPageSize(picture.size / PAGE_UNITS_PER_INCH, QPageSize::Inch));
    writer.setPageMargins(QMarginsF());
    return paintOn(picture, &writer, PDF_RESOLUTION / PAGE_UNITS_PER_INCH);
}

using Writer = bool (*)(const Picture &, QIODevice *);

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

Error writeBytes(const QByteArray &bytes, const QString &path)
{
    OutputFile file(path);
    if (Error error = file.open(); error.hasError())
        return error;
    if (Error error = file.write(bytes); error.hasError())
        return error;
    return file.commit();
}

Error tagged(Error error, const char *function, int line)
{
    return error.ecatch(function, SOURCE_FILE, line);
}

} // namespace

bool canWritePictures()
{
    return true;
}

Error writePicture(const Picture &picture, const QString &path)
{
    const Writer write = writerFor(path);
    if (!write)
        return tagged(Error(InvalidInput, path + QStringLiteral(": pictures are written to .svg, .png or .pdf files")),
                      Q_FUNC_INFO, __LINE__);
    if (!hasFont())
        return tagged(Error(Failure, QStringLiteral("a picture needs a font and this machine has none; install one, "
                                                    "for example the package fonts-dejavu-core")),
                      Q_FUNC_INFO, __LINE__);
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    if (!write(picture, &bytes))
        return tagged(Error(Failure, QStringLiteral("cannot write %1: the picture could not be drawn").arg(path)),
                      Q_FUNC_INFO, __LINE__);
    Error error = writeBytes(bytes.data(), path);
    return error.hasError() ? tagged(error, Q_FUNC_INFO, __LINE__) : error;
}

} // namespace zav
