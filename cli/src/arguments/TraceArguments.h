// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CommandArguments.h"
#include "TraceCommand.h"

#include <optional>

namespace zav {

/// The arguments that `zav limits` and `zav split` share.
class TraceArguments : public CommandArguments
{
protected:
    void addInputTo(CLI::App *command);
    void addGroupsTo(CLI::App *command, const char *found);
    void addNetworkTo(CLI::App *command);
    void addOutputTo(CLI::App *command, const char *shownInPictures);

    /// An argument for a field of the predictor's options. The field's value is the default, which the help shows.
    static void addField(CLI::App *command, const char *name, double *field, const char *description);
    static void addField(CLI::App *command, const char *name, int *field, const char *description);

    /// Sets the options that both commands share. An error is one of usage.
    Error convert(TraceOptions *options) const;

    /// The error of a check of options with the field's name as an argument: `--probability-tolerance is 2, must be
    /// ...`.
    static Error inFlags(const Error &error);

private:
    Error convertInputs(TraceOptions *options) const;
    Error convertExtraction(TraceOptions *options) const;
    Error convertTarget(TraceOptions *options) const;
    Error convertGroups(TraceOptions *options) const;
    Error convertOutput(TraceOptions *options) const;
    Error convertPictures(TraceOptions *options) const;
    Error checkOutputs(const TraceOptions &options) const;

    std::vector<std::string> m_inputs;
    NetworkArguments m_networks;
    std::string m_timeRange, m_targets, m_groupBy, m_format, m_output, m_report, m_plot, m_plotFormat;
    std::optional<double> m_mz, m_ppm;
    std::optional<int> m_threads, m_maxPointCount;
    bool m_groups = false;
    bool m_verbose = false;
};

} // namespace zav
