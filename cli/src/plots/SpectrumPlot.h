// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SpectrumComparison.h"

#include <zav/Peptidoform.h>

#include <QtCore/QList>
#include <QtCore/QString>

#include <limits>
#include <optional>

namespace zav {

/// What a picture shows.
struct SpectrumPlotData
{
    Peptidoform peptidoform;                                           ///< its modifications are marked
    int charge = 0;                                                    ///< of the precursor
    double collisionEnergy = std::numeric_limits<double>::quiet_NaN(); ///< normalised; left out of the title when NaN
    double precursorMz = 0;                                            ///< left out of the title when 0
    QList<FragmentPeak> predicted;                ///< in any order; intensities are scaled to the largest
    std::optional<ObservedSpectrum> observed;     ///< drawn on top, the prediction mirrored below it
    std::optional<SpectrumComparison> comparison; ///< colours the matched observed peaks and adds the figures
};

/// Draws the spectrum, or with `observed` the mirror plot, into a file whose ending says what it is: .svg, .png or
/// .pdf. The file appears under its name only when it is complete; an older one stays on failure.
///
/// Needs a QGuiApplication (`createApplication`). `InvalidInput` for another ending; `Failure` when the file cannot be
/// written, when the machine has no font, and in a build that cannot draw.
Error drawSpectrum(const SpectrumPlotData &data, const QString &path);

} // namespace zav
