// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramSource.h"
#include "TraceWriter.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace zav {

/// What `zav limits` and `zav split` can both be asked for.
struct TraceOptions
{
    QStringList inputs;                     ///< paths, "-" for standard input; at least one
    std::optional<ExtractionTarget> target; ///< extract this chromatogram instead of reading those that are stored
    QString targetList;                     ///< or those of this file; empty: none
    double targetPpm = 0;                   ///< for the rows of that file that name no tolerance
    QString modelFolder;                    ///< empty: where the networks are installed
    std::optional<int> maxPointCount;       ///< length of the network's input; unset: by the length of each trace
    std::optional<TraceFormat> format;
    QString outputPath;          ///< empty: standard output
    QString picturePath;         ///< a picture, or a folder for one of every trace; empty: none
    QString pictureFolderFormat; ///< "svg", "png" or "pdf" for pictures in a folder; empty: `picturePath` is a picture
    int threads = 1;
    bool verbose = false;

    bool drawsPictures() const { return !picturePath.isEmpty(); }
};

} // namespace zav
