// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramSource.h"

#include <vector>

namespace zav {

/// The chromatograms of targets, which grow spectrum by spectrum.
class ExtractedTraces
{
public:
    explicit ExtractedTraces(QList<ExtractionTarget> targets);

    /// Adds a point to each target whose range of time holds `time`: the sum of the intensities in its window. Both
    /// vectors have the same length; they come back ordered by m/z. Costs a binary search a target.
    void addSpectrum(double time, std::vector<double> *mzs, std::vector<double> *intensities);

    qsizetype count() const { return m_targets.size(); }

    /// Gives the points of a target away, together with its id.
    Chromatogram take(qsizetype index);

private:
    QList<ExtractionTarget> m_targets;
    QList<QList<QPointF>> m_points;
};

} // namespace zav
