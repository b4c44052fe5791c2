// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LimitsCommand.h"
#include "TraceArguments.h"

namespace zav {

class LimitsArguments : public TraceArguments
{
public:
    const char *name() const override { return "limits"; }
    const char *summary() const override { return "Find where the peaks of chromatograms start and end"; }
    void addTo(CLI::App *command) override;
    Result<CommandLine> options() const override;

private:
    void addDetectorTo(CLI::App *command);
    Error convertDetector(LimitsOptions *options) const;

    XicBaselineLimitsDetectorOptions m_detector;
    std::string m_method;
    std::optional<double> m_hint;
};

} // namespace zav
