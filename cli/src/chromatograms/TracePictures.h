// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramPlot.h"

#include <zav/Error.h>

#include <QtCore/QString>

namespace zav {

/// Where the pictures of a run go: into one file, or one for each trace into a folder.
class TracePictures
{
public:
    /// `path` empty: nothing is drawn. `folderFormat`: ending of the pictures in the folder `path`; empty: it is a
    /// file.
    TracePictures(const QString &path, const QString &folderFormat) : m_path(path), m_folderFormat(folderFormat) {}

    /// Makes the folder. Fails when that is impossible, and in a build that cannot draw.
    Error prepare() const;

    bool areDrawn() const { return !m_path.isEmpty(); }

    /// There is room for one trace only.
    bool isOneFile() const { return areDrawn() && m_folderFormat.isEmpty(); }

    /// The file for a trace, `FOLDER/0007_SRM_421.7.svg`: its number in the run makes the name unique, its id, cut and
    /// without what a file system might refuse, tells it to a person.
    QString pathOf(qint64 number, const QString &id) const;

    /// Draws the picture of a trace. From any thread.
    Error draw(qint64 number, const ChromatogramPlotData &data) const;

private:
    QString m_path;
    QString m_folderFormat;
};

} // namespace zav
