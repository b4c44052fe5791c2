// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TraceCommand.h"

#include <zav/XicPeakSplitterOptions.h>

namespace zav {

/// What `zav split` was asked for.
struct SplitOptions : TraceOptions
{
    XicPeakSplitterOptions splitter; ///< without model file and `maxPointCount`
};

/// `zav split`: finds where the peaks of chromatograms are to be split.
class SplitCommand : public TraceCommand
{
public:
    explicit SplitCommand(const SplitOptions &options)
        : TraceCommand(options, options.groupsTraces ? groupedSplitTable() : splitTable()), m_options(options)
    {}

private:
    NetworkUse networkUse() const override { return NetworkUse::PeakSplits; }
    std::unique_ptr<TraceAnalysis> makeAnalysis(const QString &modelFilePath) const override;

    SplitOptions m_options;
};

} // namespace zav
