// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SplitCommand.h"
#include "TraceArguments.h"

namespace zav {

class SplitArguments : public TraceArguments
{
public:
    const char *name() const override { return "split"; }
    const char *summary() const override { return "Find where the peaks of chromatograms are to be split"; }
    void addTo(CLI::App *command) override;
    Result<CommandLine> options() const override;

private:
    void addSplitterTo(CLI::App *command);

    XicPeakSplitterOptions m_splitter;
};

} // namespace zav
