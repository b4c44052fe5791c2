// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ModelFolder.h"
#include "PeptideMasses.h"
#include "SpectrumComparison.h"
#include "SpectrumWriter.h"

#include <QtCore/QString>

#include <limits>
#include <optional>

namespace zav {

/// What `zav spectrum` was asked for.
struct SpectrumOptions
{
    QString peptide; ///< with `charge`, or empty and `peptideList` instead
    int charge = 0;
    double collisionEnergy = std::numeric_limits<double>::quiet_NaN(); ///< normalised; NaN: none was asked for
    QString peptideList;                                               ///< path, "-" for standard input
    NetworkChoice networks;
    double cysteineMass = peptideMasses::DEFAULT_CYSTEINE_MODIFICATION; ///< Da, for peptides in one-letter code
    std::optional<OutputFormat> format;
    QString outputPath;        ///< empty: standard output
    bool writesSpectra = true; ///< false: the comparisons only
    bool isotopes = true;
    bool annotate = false;
    QString picturePath;  ///< empty: none
    QString observedPath; ///< a measured spectrum to compare with; empty: none
    QString scan;         ///< which of that file's spectra, for one peptide
    QString scoresPath;   ///< a table of the comparisons; empty: none
    QString reportPath;   ///< a page of them; empty: none
    MassTolerance tolerance;
    bool verbose = false;

    bool drawsPictures() const { return !picturePath.isEmpty(); }
};

} // namespace zav
