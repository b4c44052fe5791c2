// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Trace.h"

#include <zav/Error.h>

#include <QtCore/QString>

#include <optional>

namespace zav {

/// The pictures of a run: one file, or one for each trace or group in a folder.
class TracePictures
{
public:
    /// `path` empty: nothing is drawn. `folderFormat`: ending of the pictures in the folder `path`; empty: it is a
    /// file. `ppm`: how wide all traces were extracted, which the pictures then say.
    TracePictures(const QString &path, const QString &folderFormat, std::optional<double> ppm)
        : m_path(path), m_folderFormat(folderFormat), m_ppm(ppm)
    {}

    /// Makes the folder. Fails when that is impossible, and in a build that cannot draw.
    Error prepare() const;

    /// There is room for one trace or group only.
    bool isOneFile() const { return areDrawn() && m_folderFormat.isEmpty(); }

    /// Draws the traces that were searched together with what was found in them, if anything is to be drawn. From any
    /// thread.
    ///
    /// In a folder the file is `0007_SRM_421.7.svg` for example: the number in the run makes the name unique, and the
    /// id of the trace or the name of the group, shortened and without what a file system might refuse, tells people
    /// which it is.
    Error draw(const TraceGroup &group) const;

private:
    bool areDrawn() const { return !m_path.isEmpty(); }
    QString pathOf(const TraceGroup &group) const;
    QString sourceOf(const Trace &trace) const;

    QString m_path;
    QString m_folderFormat;
    std::optional<double> m_ppm;
};

} // namespace zav
