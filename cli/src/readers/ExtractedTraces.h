// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramSource.h"

#include <QtCore/QList>
#include <QtCore/QString>

#include <cstddef>
#include <deque>
#include <memory>
#include <vector>

namespace zav {

/// The peaks of one spectrum; both vectors have the same length.
struct SpectrumPeaks
{
    std::vector<double> mzs;
    std::vector<double> intensities;
};

/// The chromatograms of targets, which grow spectrum by spectrum.
///
/// A point costs 8 bytes, since the times are stored once for all targets. A target costs no more than its place in the
/// list before its first point and after its trace was given away.
class ExtractedTraces
{
public:
    /// With `keepsTraces` every trace may be taken again and again; otherwise `take` gives its points away.
    ExtractedTraces(QList<ExtractionTarget> targets, bool keepsTraces);

    /// Adds a point to each target whose range of time holds `time`: the sum of the intensities in its window. The
    /// peaks come back ordered by m/z. The targets are looked up in the order of their m/z, so that one walk through
    /// the peaks serves them all.
    ///
    /// The text says why the spectrum cannot be added, and is empty when it was: it belongs to a trace that was given
    /// away.
    QString addSpectrum(double time, SpectrumPeaks *peaks);

    qsizetype count() const { return m_targets.size(); }

    /// Whether a spectrum behind the range of the target was added: if the times ascend, no more points will come.
    bool isOver(qsizetype index) const { return m_latest > m_targets[index].rtTo; }

    /// The trace of a target: one point for each spectrum in its range, in the order in which they were added.
    Chromatogram take(qsizetype index);

private:
    /// What is looked for in each spectrum.
    struct Window
    {
        double lowest;
        double highest;
        double rtFrom;
        double rtTo;
        qsizetype target;
    };

    /// A deque grows in small pieces and never copies: a vector of each trace would take up to twice the memory.
    struct Growth
    {
        std::size_t firstSpectrum;
        std::deque<double> intensities;
    };

    void append(qsizetype target, double intensity);

    QList<ExtractionTarget> m_targets;
    bool m_keepsTraces;
    std::vector<Window> m_windows;                ///< ascending in `lowest`
    std::vector<double> m_times;                  ///< of all spectra
    std::vector<std::unique_ptr<Growth>> m_grown; ///< of each target; null while it has no points
    std::vector<bool> m_isGivenAway;
    double m_latest;
};

} // namespace zav
