// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LimitsOptions.h"
#include "TraceCommand.h"

namespace zav {

/// `zav limits`: finds where the peaks of chromatograms start and end.
class LimitsCommand : public TraceCommand
{
public:
    explicit LimitsCommand(const LimitsOptions &options) : TraceCommand(options, peakTable()), m_options(options) {}

private:
    NetworkUse networkUse() const override { return NetworkUse::PeakLimits; }
    std::unique_ptr<TraceAnalysis> makeAnalysis(const QString &modelFilePath) const override;

    LimitsOptions m_options;
};

} // namespace zav
