// SPDX-License-Identifier: Apache-2.0
#include "PrintableText.h"
#include "TraceArguments.h"

#include <CLI/CLI.hpp>

#include <cmath>

namespace zav {

namespace {

constexpr char NETWORK[] = "network";
constexpr char WALK[] = "walk";

constexpr char EXAMPLES[] =
    R"(FILE holds chromatograms: those stored in mzML (also TIC and BPC), TSV with the columns rt, intensity and, for more
than one trace, id, or JSON lines with id, rt and intensity. With --mz or --targets they are extracted from the MS1
spectra of mzML; the list of targets has the columns mz and, optionally, id, ppm, rt_from and rt_to. Without times the
whole run is the trace of a target, in which --best 3 writes the three largest peaks. The file is read once for all
targets. A trace is searched when its times are over and those in front of it in the list are done, so a list sorted by
rt_to takes the least memory.

One line per peak: start, end and apex are times in the unit of the file, which the header names (start_min; start where
the file does not say; of several files, that of the first). height is the intensity at the apex; area, by the trapezoid
rule over the points within the limits, is intensity times that unit, area_above_line the part above the line between
the first and the last of these points; points counts them. Nothing is smoothed for these measures.

With --group the traces of a precursor share their limits: they are found in the square of the sum of the square roots
of all intensities. Traces belong together that the file gives the same group (a column group in TSV and in the list of
targets, the key group in JSON lines) or whose ids have the same first capture of --group-by; in mzML, otherwise, those
with the same isolation target, peptide and polarity whose times overlap by half. Each trace has its own line, with the
columns group, members (traces of the group) and shape (how alike trace and sum are within the limits, Pearson's r). A
trace without signal there has the area 0, no apex and no shape. The input is read twice; gzipped input and standard
input are copied to a temporary file.

The length of the network's input sets the cost of a trace. A longer trace is thinned to it, with a note. Without
--format the output is a table on a terminal, what the ending of the -o FILE says (.tsv, .json), and TSV otherwise; JSON
lists every trace, with or without peaks. A file that cannot be read to its end ends the run, and the -o FILE does
not appear.

--report writes one HTML file that any browser opens, without the network: a table of all traces (of groups, with
--group) to filter and sort, the picture and the measures of the chosen one, and for each trace a mark (accepted or
rejected) and a note. j and k step to the next and the previous trace, a accepts, r rejects, n goes to the note; the
page names its other keys. The browser keeps marks and notes for that report, and the page saves them as TSV, with the
measures. The file appears only when it is complete; --report - writes to standard output and needs -o FILE.

Exit code: 0 every trace was searched, 1 something failed (standard error says what and why), 2 wrong usage. A trace in
which no peak is found, or that is too short to have one, is not a failure; standard error says which.

Examples:
  zav limits run.mzML -o peaks.tsv
  zav limits run.mzML --mz 524.2648 --ppm 10 --rt 12-18 --plot trace.png
  zav limits run.mzML --targets targets.tsv --best 3 -o peaks.tsv
  zav limits run.mzML.gz --targets targets.tsv --plot pictures --plot-format pdf
  zav limits srm.mzML --group --plot pictures -o peaks.tsv
  zav limits srm.mzML --group --report peaks.html -o peaks.tsv
  zav limits *.mzML --threads 8 --format json -o peaks.json
  zcat traces.jsonl.gz | zav limits - --method walk
)";

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
    std::optional<int> m_best;
};

} // namespace

void LimitsArguments::addTo(CLI::App *command)
{
    addInputTo(command);
    addGroupsTo(command, "limits");
    command
        ->add_option("--method", m_method,
                     std::string("network, or walk: outward from each highest point, without the network [") + NETWORK +
                         "]")
        ->type_name("METHOD");
    offerChoices(command->get_option("--method"), {NETWORK, WALK});
    command
        ->add_option("--hint", m_hint,
                     "a retention time with a peak: where none is found there, the network looks again, with faint "
                     "peaks amplified")
        ->type_name("RT");
    command
        ->add_option("--best", m_best,
                     "write at most N peaks of each trace, those of the largest area_above_line; with --group, of the "
                     "sum of its traces")
        ->type_name("N");
    addNetworkTo(command);
    addDetectorTo(command);
    addOutputTo(command, "its limits");
    command->footer(EXAMPLES);
}

void LimitsArguments::addDetectorTo(CLI::App *command)
{
    addField(command, "--probability-tolerance", &m_detector.probabilityTolerance,
             "a point belongs to a peak if its probability is at least 1 - X; a higher X gives more and wider peaks");
    addField(command, "--dbscan-epsilon", &m_detector.dbscanEpsilon,
             "peak points at most this many points apart belong together");
    addField(command, "--dbscan-min-points", &m_detector.dbscanMinPoints,
             "a peak needs a point with this many points, itself included, within --dbscan-epsilon");
    addField(command, "--min-point-count", &m_detector.minPointCount,
             "the network finds no peaks in a trace of this many points or fewer");
    addField(command, "--smoothing-pass-count", &m_detector.smoothingPassCount, "how often the trace is smoothed");
    addField(command, "--gaussian-filter-size", &m_detector.gaussianFilterSize, "taps of the smoothing filter");
    addField(command, "--limit-threshold", &m_detector.limitThreshold,
             "for the walk: a peak ends where it falls to this share of its apex");
}

Result<CommandLine> LimitsArguments::options() const
{
    LimitsOptions options;
    if (Error error = convert(&options); error.hasError())
        return error;
    if (Error error = convertDetector(&options); error.hasError())
        return error;
    return CommandLine(options);
}

Error LimitsArguments::convertDetector(LimitsOptions *options) const
{
    options->detector = m_detector;
    if (!m_method.empty() && m_method != NETWORK && m_method != WALK)
        return wrongArgument(
            QStringLiteral("--method '%1' is neither network nor walk").arg(displayText(text(m_method))));
    options->usesNetwork = m_method != WALK;
    if (m_hint && !options->usesNetwork)
        return wrongArgument(QStringLiteral("--hint needs --method network"));
    if (m_hint && !(std::isfinite(*m_hint) && *m_hint > options->retentionTimeHint))
        return wrongArgument(QStringLiteral("--hint must be above %1").arg(options->retentionTimeHint));
    options->retentionTimeHint = m_hint.value_or(options->retentionTimeHint);
    if (m_best.value_or(1) < 1)
        return wrongArgument(QStringLiteral("--best must be 1 or more"));
    options->bestPeaks = m_best;

    XicBaselineLimitsDetectorOptions checked = m_detector;
    checked.modelFilePath = QStringLiteral("chosen later");
    checked.maxPointCount = options->maxPointCount.value_or(checked.maxPointCount);
    return inFlags(checked.checkForParameterErrors());
}

std::unique_ptr<CommandArguments> limitsArguments()
{
    return std::make_unique<LimitsArguments>();
}

} // namespace zav
