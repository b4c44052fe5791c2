// SPDX-License-Identifier: Apache-2.0
#include "CommandArguments.h"
#include "PrintableText.h"

#include <CLI/CLI.hpp>

#include <QtCore/QFileInfo>

#include <cmath>
#include <map>
#include <utility>

namespace zav {

namespace {

constexpr char EXAMPLES[] =
    R"(The peptide is written in upper-case one-letter code or, with modifications, in ProForma:
AC[Carbamidomethyl]DM[Oxidation]K, [Acetyl]-AM[UNIMOD:35]K, AM[+15.9949]K, <[Carbamidomethyl]@C>ACDMK. The charge is
that of the precursor, 1 to 5; with modifications or --energy, 1 to 6. FILE.tsv of --peptides has the columns peptide
and charge, with or without a header line; with one, also energy and scan, which may be empty.

Without modifications and --energy, the network of the charge predicts, at about 28 to 40 of normalised collision
energy. Otherwise the network of peptides with modifications does, at an energy of 30 unless --energy says another.
It was trained on energies from 20 to 35.

In a peptide without modifications every cysteine is carbamidomethylated (--cysteine sets another mass). One with
modifications is taken as it is written: its plain C are free cysteines, which no training spectrum held.

Without --format the output is a table on a terminal, what the ending of the -o FILE says (.tsv, .msp, .mgf,
.json), and TSV otherwise. Intensities are relative to the base peak. Peaks over 2000 m/z are left out, and those under
0.025; with modifications or --energy those under 0.04, isotopes apart.

--against compares a prediction with the spectrum that --scan names, or with --peptides each with the one that the column
scan names: a native id, a title or a scan number; in a file without scan numbers the place, from 0; index=N is always
the place. --scores and --report say how well they agree: the spectral angle over b and y ions, and how much of the
measured intensity is explained. With either, the predicted spectra are written only where -o or --format asks for them.

Exit code: 0 everything asked was done, 1 something was not (standard error says what and why), 2 wrong usage.

Examples:
  zav spectrum LQSRPAAPPAPGPGQLTLR 3
  zav spectrum LQSRPAAPPAPGPGQLTLR 3 --annotate --no-isotopes --format tsv
  zav spectrum LQSRPAAPPAPGPGQLTLR 3 --plot mirror.svg --against run.mzML --scan 30069
  zav spectrum 'AC[Carbamidomethyl]DM[Oxidation]K' 2 --energy 27
  zav spectrum --peptides peptides.tsv --no-isotopes -o library.msp
  zav spectrum --peptides identified.tsv --against run.mzML --scores scores.tsv --report report.html
  cut -f 1,2 peptides.tsv | zav spectrum --peptides - --format json > spectra.json
)";

const std::map<std::string, OutputFormat> FORMATS = {{"json", OutputFormat::Json},
                                                     {"mgf", OutputFormat::Mgf},
                                                     {"msp", OutputFormat::Msp},
                                                     {"table", OutputFormat::Table},
                                                     {"tsv", OutputFormat::Tsv}};

std::optional<OutputFormat> formatNamed(const std::string &name)
{
    const auto known = FORMATS.find(name);
    return known == FORMATS.end() ? std::nullopt : std::optional(known->second);
}

class SpectrumArguments : public CommandArguments
{
public:
    const char *name() const override { return "spectrum"; }
    const char *summary() const override { return "Predict the spectrum of a peptide, or of many"; }
    void addTo(CLI::App *command) override;
    Result<CommandLine> options() const override;

private:
    QString contradiction() const;
    Error checkOutputs() const;

    /// Who asks for comparisons, and not where to write spectra or how, wants no spectra.
    bool writesSpectra() const
    {
        return (m_scores.empty() && m_report.empty()) || !m_output.empty() || !m_format.empty();
    }
    QString convert(SpectrumOptions *options) const;

    std::string m_peptide, m_charge, m_energy, m_peptides, m_format, m_output, m_plot, m_against, m_scan, m_scores,
        m_report, m_tolerance;
    double m_cysteine = SpectrumOptions().cysteineMass;
    NetworkArguments m_networks;
    bool m_noIsotopes = false, m_annotate = false, m_verbose = false;
};

} // namespace

void SpectrumArguments::addTo(CLI::App *command)
{
    command->add_option("PEPTIDE", m_peptide, "the peptide")->type_name("");
    command->add_option("CHARGE", m_charge, "charge of its precursor, 1 to 6")->type_name("");
    command->add_option("--energy", m_energy, "normalised collision energy, 10 to 60")->type_name("NCE");
    command->add_option("--peptides", m_peptides, "a list of peptides and charges; - is standard input")
        ->type_name("FILE.tsv");
    m_networks.addTo(command);
    command
        ->add_option("--cysteine", m_cysteine,
                     withDefault("added to every cysteine of a peptide without modifications, in Da", m_cysteine))
        ->type_name("MASS");
    command->add_option("-f,--format", m_format, "tsv, msp, mgf, json or table")->type_name("FORMAT");
    offerChoices(command->get_option("--format"), {"tsv", "msp", "mgf", "json", "table"});
    command->add_option("-o,--output", m_output, "write to FILE, which appears only when it is complete")
        ->type_name("FILE");
    command->add_flag("--no-isotopes", m_noIsotopes, "monoisotopic peaks only");
    command->add_flag("--annotate", m_annotate,
                      "name the ion of each peak, as y7-H2O++; its heavier isotopes as y7-H2O++ i1");
    command->add_option("--plot", m_plot, "draw the spectrum: .svg, .png or .pdf")->type_name("FILE");
    command
        ->add_option("--against", m_against,
                     "compare with a measured spectrum, or with those that --peptides names: .mzML, .mgf or .tsv")
        ->type_name("FILE");
    command->add_option("--scan", m_scan, "which spectrum of that file: scan number, native id or title")
        ->type_name("SCAN");
    command->add_option("--scores", m_scores, "write a table of the comparisons (TSV); - is standard output")
        ->type_name("FILE");
    command
        ->add_option(
            "--report", m_report,
            "write an HTML page of the comparisons: mirror plots, scores, marks and notes; - is standard output")
        ->type_name("FILE");
    command->add_option("--tolerance", m_tolerance, "of the comparison, such as 20ppm or 0.02Da [20ppm]")
        ->type_name("WIDTH");
    command->add_flag("-v,--verbose", m_verbose, "also show where in the program each failure occurred");
    command->footer(EXAMPLES);
}

/// How the arguments contradict each other; empty when they do not.
QString SpectrumArguments::contradiction() const
{
    const bool isList = !m_peptides.empty();
    if (isList && !(m_peptide.empty() && m_charge.empty()))
        return QStringLiteral("PEPTIDE and --peptides cannot be used together");
    if (!isList && m_charge.empty())
        return m_peptide.empty() ? QStringLiteral("PEPTIDE and CHARGE, or --peptides, are missing")
                                 : QStringLiteral("CHARGE is missing");
    if (isList && !m_plot.empty())
        return QStringLiteral("--plot is for one peptide, not for --peptides");
    if (isList && !m_scan.empty())
        return QStringLiteral("--scan is for one peptide; a list of --peptides has the column scan");
    if (m_against.empty() && !(m_scan.empty() && m_tolerance.empty() && m_scores.empty() && m_report.empty()))
        return QStringLiteral("--scan, --tolerance, --scores and --report need --against");
    if (!m_plot.empty() && !isPicture(text(m_plot)))
        return QStringLiteral("--plot draws a file ending in .svg, .png or .pdf, not '%1'")
            .arg(displayText(text(m_plot)));
    if (!std::isfinite(m_cysteine))
        return QStringLiteral("--cysteine is not a finite mass");
    return {};
}

/// Converts the arguments that are still text. The result says what is wrong with them; empty when nothing is.
QString SpectrumArguments::convert(SpectrumOptions *options) const
{
    if (m_peptides.empty()) {
        bool isNumber = false;
        options->charge = text(m_charge).toInt(&isNumber);
        if (!isNumber)
            return QStringLiteral("CHARGE '%1' is not a whole number").arg(displayText(text(m_charge)));
    }
    if (!m_energy.empty()) {
        bool isNumber = false;
        options->collisionEnergy = text(m_energy).toDouble(&isNumber);
        if (!isNumber || !isCollisionEnergy(options->collisionEnergy))
            return QStringLiteral("--energy '%1' is not a number from 10 to 60").arg(displayText(text(m_energy)));
    }
    if (!m_format.empty()) {
        options->format = formatNamed(m_format);
        if (!options->format)
            return QStringLiteral("--format '%1' is not one of tsv, msp, mgf, json, table")
                .arg(displayText(text(m_format)));
    } else if (!m_output.empty()) {
        options->format = formatNamed(QFileInfo(text(m_output)).suffix().toLower().toStdString());
    }
    if (!m_tolerance.empty()) {
        const Result<MassTolerance> tolerance = parseMassTolerance(text(m_tolerance));
        if (tolerance.hasError())
            return QStringLiteral("--tolerance: ") + tolerance.error().message();
        options->tolerance = tolerance.value();
    }
    return {};
}

/// No two outputs go to one place, and none over an input.
Error SpectrumArguments::checkOutputs() const
{
    const QString standardOutput = QStringLiteral("-");
    QStringList outputs;
    if (writesSpectra())
        outputs.append(m_output.empty() ? standardOutput : text(m_output));
    for (const auto &[option, path] : {std::pair("--plot", text(m_plot)), std::pair("--scores", text(m_scores)),
                                       std::pair("--report", text(m_report))}) {
        if (path == standardOutput && outputs.contains(standardOutput))
            return wrongArgument(
                QStringLiteral("%1 -: only one output can go to standard output").arg(QLatin1String(option)));
        if (Error error = checkNotAmong(outputs, path); error.hasError())
            return error;
        outputs.append(path);
    }
    return checkNotOverwritten({text(m_peptides), text(m_against)}, outputs);
}

Result<CommandLine> SpectrumArguments::options() const
{
    SpectrumOptions options;
    QString problem = contradiction();
    if (problem.isEmpty())
        problem = convert(&options);
    if (!problem.isEmpty())
        return wrongArgument(problem);
    if (Error error = checkOutputs(); error.hasError())
        return error;
    options.peptide = text(m_peptide);
    options.peptideList = text(m_peptides);
    options.networks = m_networks.choice();
    options.cysteineMass = m_cysteine;
    options.outputPath = text(m_output);
    options.writesSpectra = writesSpectra();
    options.isotopes = !m_noIsotopes;
    options.annotate = m_annotate;
    options.picturePath = text(m_plot);
    options.observedPath = text(m_against);
    options.scan = text(m_scan);
    options.scoresPath = text(m_scores);
    options.reportPath = text(m_report);
    options.verbose = m_verbose;
    return CommandLine(options);
}

std::unique_ptr<CommandArguments> spectrumArguments()
{
    return std::make_unique<SpectrumArguments>();
}

} // namespace zav
