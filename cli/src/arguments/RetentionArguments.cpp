// SPDX-License-Identifier: Apache-2.0
#include "CommandArguments.h"
#include "PrintableText.h"

#include <CLI/CLI.hpp>

namespace zav {

namespace {

constexpr char EXAMPLES[] =
    R"(LIST has one peptide a line, or a heading with a column peptide; it may be gzipped. A peptide is plain,
PEPTIDEK, or ProForma, AC[Carbamidomethyl]DM[Oxidation]K. The cysteines of a plain one are
carbamidomethylated; a text that names a modification is taken as it stands.

The output is tab-separated: peptide, irt on the scale of Escher et al. 2012 and, with --calibrate, rt in the unit of
the observed times. OBSERVED.tsv has the columns peptide and rt, 10 rows or more; some 200 that span the gradient are
worth having. A few wrong times among them do no harm.

Modifications that the network was not trained on are named on standard error: their times may be far off.

Exit code: 0 everything asked was predicted, 1 something was not (standard error says what and why), 2 wrong usage.

Examples:
  zav retention --peptides peptides.txt
  zav retention --peptides library.tsv.gz --calibrate observed.tsv --plot calibration.svg -o times.tsv
)";

class RetentionArguments : public CommandArguments
{
public:
    const char *name() const override { return "retention"; }
    const char *summary() const override { return "Predict the retention times of peptides"; }
    void addTo(CLI::App *command) override;
    Result<CommandLine> options() const override;

private:
    std::string m_peptides, m_output, m_calibrate, m_plot;
    NetworkArguments m_networks;
    bool m_verbose = false;
};

} // namespace

void RetentionArguments::addTo(CLI::App *command)
{
    command->add_option("--peptides", m_peptides, "a list of peptides; - is standard input")->type_name("LIST");
    offerChoices(command->get_option("--peptides"), {ANY_FILE});
    m_networks.addTo(command);
    command->add_option("--calibrate", m_calibrate, "observed times of a run: also predict the times in that run")
        ->type_name("OBSERVED.tsv");
    command->add_option("--plot", m_plot, "draw the calibration: .svg, .png or .pdf")->type_name("FILE");
    command->add_option("-o,--output", m_output, "write to FILE, which appears only when it is complete")
        ->type_name("FILE");
    command->add_flag("-v,--verbose", m_verbose, "also show where in the program each failure occurred");
    command->footer(EXAMPLES);
}

Result<CommandLine> RetentionArguments::options() const
{
    if (m_peptides.empty())
        return wrongArgument(QStringLiteral("--peptides is missing"));
    if (m_peptides == "-" && m_calibrate == "-")
        return wrongArgument(QStringLiteral("--peptides and --calibrate cannot both be standard input"));
    if (!m_plot.empty() && m_calibrate.empty())
        return wrongArgument(QStringLiteral("--plot needs --calibrate"));
    if (!m_plot.empty() && !isPicture(text(m_plot)))
        return wrongArgument(QStringLiteral("--plot draws a file ending in .svg, .png or .pdf, not '%1'")
                                 .arg(displayText(text(m_plot))));
    if (Error error = checkNotAmong({text(m_output)}, text(m_plot)); error.hasError())
        return error;
    if (Error error = checkNotOverwritten({text(m_peptides), text(m_calibrate)}, {text(m_output), text(m_plot)});
        error.hasError())
        return error;
    return CommandLine(RetentionOptions{text(m_peptides), m_networks.choice(), text(m_output), text(m_calibrate),
                                        text(m_plot), m_verbose});
}

std::unique_ptr<CommandArguments> retentionArguments()
{
    return std::make_unique<RetentionArguments>();
}

} // namespace zav
