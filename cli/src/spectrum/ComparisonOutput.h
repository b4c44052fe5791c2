// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "OutputFile.h"
#include "Spectrum.h"
#include "SpectrumComparison.h"
#include "SpectrumReportFile.h"

#include <zav/Error.h>

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>

#include <optional>
#include <vector>

namespace zav {

/// A precursor and the measured spectrum that is held to be its. Parts are missing where something failed.
struct ComparedSpectrum
{
    Precursor precursor;
    QString scan; ///< as it was asked for
    std::optional<PredictedSpectrum> predicted;
    std::optional<ObservedSpectrum> observed;
    std::optional<SpectrumComparison> comparison;
    QString problem; ///< why nothing was compared; mostly empty
};

/// The numbers of a comparison by their names: `spectral_angle`, `cosine`, `explained_peaks`, `observed_peaks`,
/// `explained_intensity` (a share) and `precursor_ppm`, how far the precursor's m/z in the file lies above that of the
/// peptide.
QList<QByteArray> comparisonColumns();

/// Their values as text, in the same order; `precursor_ppm` is empty where the file does not say it. Empty when nothing
/// was compared.
QList<QByteArray> comparisonValues(const ComparedSpectrum &compared);

/// Where comparisons go.
struct ComparisonPaths
{
    QString run;    ///< the file of the measured spectra
    QString scores; ///< a table; empty: none
    QString report; ///< a page; empty: none
};

/// Writes the comparisons of a run, as a table and as a report as far as they are wanted, and sums them up. The table
/// is tab-separated: a heading, then a line for each comparison with `peptide`, `charge`, with energies `energy`,
/// `scan` and the numbers, which are empty where nothing was compared.
class ComparisonOutput
{
public:
    ComparisonOutput(const ComparisonPaths &paths, bool hasEnergies);

    /// The error is one of writing.
    Error add(const ComparedSpectrum &compared);

    /// Completes the files.
    Error finish();

    /// A line with the medians; empty when nothing was compared.
    QString summary() const;

private:
    Error addScores(const ComparedSpectrum &compared);

    ComparisonPaths m_paths;
    bool m_hasEnergies;
    OutputFile m_scores;
    SpectrumReportFile m_report;
    bool m_isEmpty = true;
    std::vector<double> m_angles;
    std::vector<double> m_explained;
};

} // namespace zav
