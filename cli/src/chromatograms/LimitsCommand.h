// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TraceCommand.h"

#include <zav/XicBaselineLimitsDetectorOptions.h>

#include <optional>

namespace zav {

/// What `zav limits` was asked for.
struct LimitsOptions : TraceOptions
{
    XicBaselineLimitsDetectorOptions detector; ///< without model file and `maxPointCount`
    bool usesNetwork = true;                   ///< or the walk from the local maxima
    double retentionTimeHint = -1.0;           ///< a time that should lie in a peak; -1: none
    std::optional<int> bestPeaks;              ///< of each trace at most so many; unset: all
};

/// `zav limits`: finds where the peaks of chromatograms start and end, and measures them.
class LimitsCommand : public TraceCommand
{
public:
    explicit LimitsCommand(const LimitsOptions &options)
        : TraceCommand(options, options.groupsTraces ? groupedPeakTable() : peakTable()), m_options(options)
    {}

private:
    NetworkUse networkUse() const override { return NetworkUse::PeakLimits; }
    std::unique_ptr<TraceAnalysis> makeAnalysis(const QString &modelFilePath) const override;

    LimitsOptions m_options;
};

} // namespace zav
