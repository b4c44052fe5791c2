// SPDX-License-Identifier: Apache-2.0
#include "TraceArguments.h"

#include <CLI/CLI.hpp>

namespace zav {

namespace {

constexpr char EXAMPLES[] =
    R"(FILE holds chromatograms, as for zav limits ('zav limits --help' tells which); a trace should hold one peak or a few
that overlap, and a --rt range cuts one out of a long trace.

One line per split: its time in the unit of the file, which the header names (split_min; split where the file does not
say; of several files, that of the first), and its probability.

With --group the traces of a precursor share their splits ('zav limits --help' tells which belong together). Each trace
has its own lines, with the columns group, members (traces of the group) and shape (how alike the trace and the sum of
all are, Pearson's r).

A trace of more than 512 points (or than --max-point-count) is first read with neighbouring points averaged, then more
closely where nothing is found; the pieces between splits are searched again. Times are always those of the trace's own
points. Without --format the output is a table on a terminal, what the ending of the -o FILE says (.tsv, .json), and TSV
otherwise; JSON lists every trace, with or without splits. A file that cannot be read to its end ends the run, and the
-o FILE does not appear. --report writes a page for paging through all traces, as for zav limits.

Exit code: 0 every trace was searched, 1 something failed (standard error says what and why), 2 wrong usage. A trace
without a split, or too short to have one, is not a failure; standard error says which.

Examples:
  zav split peak.tsv --plot peak.svg
  zav split run.mzML --mz 524.2648 --ppm 10 --rt 14.2-15.1
  zav split run.mzML --report splits.html -o splits.tsv
  zav split run.mzML.gz --format json -o splits.json
)";

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

} // namespace

void SplitArguments::addTo(CLI::App *command)
{
    addInputTo(command);
    addGroupsTo(command, "splits");
    addNetworkTo(command);
    addSplitterTo(command);
    addOutputTo(command, "its splits");
    command->footer(EXAMPLES);
}

void SplitArguments::addSplitterTo(CLI::App *command)
{
    addField(command, "--probability-tolerance", &m_splitter.probabilityTolerance,
             "a split needs a probability of at least 1 - X; a higher X gives more splits");
    addField(command, "--gaussian-filter-size", &m_splitter.gaussianFilterSize, "taps of the smoothing filter");
    addField(command, "--smoothing-pass-count", &m_splitter.smoothingPassCount, "how often the trace is smoothed");
}

Result<CommandLine> SplitArguments::options() const
{
    SplitOptions options;
    if (Error error = convert(&options); error.hasError())
        return error;
    options.splitter = m_splitter;
    XicPeakSplitterOptions checked = m_splitter;
    checked.modelFilePath = QStringLiteral("chosen later");
    checked.maxPointCount = options.maxPointCount.value_or(checked.maxPointCount);
    if (Error error = inFlags(checked.checkForParameterErrors()); error.hasError())
        return error;
    return CommandLine(options);
}

std::unique_ptr<CommandArguments> splitArguments()
{
    return std::make_unique<SplitArguments>();
}

} // namespace zav
