// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QSizeF>
#include <QtCore/QString>

#include <functional>

class QPainter;

namespace zav {

/// A picture to be written: one page and what paints it.
struct Picture
{
    QString title; ///< for the file's own record of what it is
    QString description;
    QSizeF size;                           ///< in page units, 1/96 inch
    std::function<void(QPainter *)> paint; ///< in page units, the origin at the top left
};

/// True when this build can draw at all (Qt Gui and Qt Svg were there).
bool canWritePictures();

/// Paints into a file whose ending says what it is: .svg, .png (two pixels for each page unit) or .pdf (one page). The
/// file appears under its name only when it is complete; an older one stays on failure.
///
/// Threads may draw side by side, into different files. Needs a QGuiApplication (`createApplication`). `InvalidInput`
/// for another ending; `Failure` when the file cannot be written, when the machine has no font, and in a build that
/// cannot draw.
Error writePicture(const Picture &picture, const QString &path);

} // namespace zav
