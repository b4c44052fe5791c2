// SPDX-License-Identifier: Apache-2.0
#include "CommandLine.h"

#include "Precursor.h"

#include <CLI/CLI.hpp>

#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

namespace zav {

namespace {

constexpr char SPECTRUM_EXAMPLES[] =
    R"(The peptide is written in upper-case one-letter code; the charge is that of the precursor, 1 to 5.
FILE.tsv of --peptides has the columns peptide and charge, with or without a header line.

Without --format the output is a table on a terminal, what the ending of the -o FILE says (.tsv, .msp, .mgf,
.json), and TSV otherwise. Intensities are relative to the base peak; peaks under 0.025 or over 2000 m/z are left out.

Exit code: 0 everything asked was predicted, 1 something was not (standard error says what and why), 2 wrong usage.

Examples:
  zav spectrum LQSRPAAPPAPGPGQLTLR 3
  zav spectrum LQSRPAAPPAPGPGQLTLR 3 --annotate --no-isotopes --format tsv
  zav spectrum LQSRPAAPPAPGPGQLTLR 3 --plot mirror.svg --against run.mzML --scan 30069
  zav spectrum --peptides peptides.tsv --no-isotopes -o library.msp
  cut -f 1,2 peptides.tsv | zav spectrum --peptides - --format json > spectra.json
)";

constexpr char INSPECT_EXAMPLES[] =
    R"(Exit code: 0 every network is the one its contract describes and runs, 1 otherwise, 2 wrong usage.

Examples:
  zav inspect
  zav inspect models
)";

const std::map<std::string, OutputFormat> FORMATS = {{"json", OutputFormat::Json},
                                                     {"mgf", OutputFormat::Mgf},
                                                     {"msp", OutputFormat::Msp},
                                                     {"table", OutputFormat::Table},
                                                     {"tsv", OutputFormat::Tsv}};

/// What CLI11 fills, before it is checked and converted.
struct SpectrumArguments
{
    std::string peptide, charge, peptides, models, format, output, plot, against, scan, tolerance;
    double cysteine = SpectrumOptions().cysteineMass;
    bool noIsotopes = false, annotate = false, verbose = false;
};

struct InspectArguments
{
    std::string folder, models;
    bool verbose = false;
};

QString text(const std::string &utf8)
{
    return QString::fromStdString(utf8);
}

EarlyExit wrongUsage(const QString &message, const QString &command = QString())
{
    const QString help =
        command.isEmpty() ? QStringLiteral("zav --help") : QStringLiteral("zav %1 --help").arg(command);
    return {WrongUsage, {}, QStringLiteral("zav: %1\nzav: '%2' explains the usage\n").arg(message.simplified(), help)};
}

/// Levenshtein distance.
int editDistance(const std::string &a, const std::string &b)
{
    std::vector<int> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (size_t i = 1; i <= a.size(); ++i) {
        int diagonal = std::exchange(row[0], int(i));
        for (size_t j = 1; j <= b.size(); ++j) {
            const int replaced = diagonal + (a[i - 1] != b[j - 1]);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

EarlyExit unknownCommand(const std::string &word)
{
    QString hint;
    for (const char *known : {"spectrum", "inspect"}) {
        if (editDistance(word, known) <= 3)
            hint = QStringLiteral(", did you mean '%1'?").arg(QString::fromUtf8(known));
    }
    return wrongUsage(QStringLiteral("unknown command '%1'%2").arg(displayText(text(word)), hint));
}

void addSpectrumArguments(CLI::App *command, SpectrumArguments *arguments)
{
    command->add_option("PEPTIDE", arguments->peptide, "the peptide")->type_name("");
    command->add_option("CHARGE", arguments->charge, "charge of its precursor, 1 to 5")->type_name("");
    command->add_option("--peptides", arguments->peptides, "a list of peptides and charges; - is standard input")
        ->type_name("FILE.tsv");
    command->add_option("--models", arguments->models, "folder of the networks")->type_name("DIR");
    command->add_option("--cysteine", arguments->cysteine, "added to every cysteine, in Da [57.02146]")
        ->type_name("MASS");
    command->add_option("-f,--format", arguments->format, "tsv, msp, mgf, json or table")->type_name("FORMAT");
    command->add_option("-o,--output", arguments->output, "write to FILE, which appears only when it is complete")
        ->type_name("FILE");
    command->add_flag("--no-isotopes", arguments->noIsotopes, "monoisotopic peaks only");
    command->add_flag("--annotate", arguments->annotate,
                      "name the ion of each peak, as y7-H2O++; its heavier isotopes as y7-H2O++ i1");
    command->add_option("--plot", arguments->plot, "draw the spectrum: .svg, .png or .pdf")->type_name("FILE");
    command->add_option("--against", arguments->against, "compare with a measured spectrum: .mzML, .mgf or .tsv")
        ->type_name("FILE");
    command->add_option("--scan", arguments->scan, "which spectrum of that file: scan number, native id or title")
        ->type_name("SCAN");
    command->add_option("--tolerance", arguments->tolerance, "for the comparison, as 20ppm or 0.02Da [20ppm]")
        ->type_name("WIDTH");
    command->add_flag("-v,--verbose", arguments->verbose, "with each failure, where in the program it passed");
    command->footer(SPECTRUM_EXAMPLES);
}

void addInspectArguments(CLI::App *command, InspectArguments *arguments)
{
    command->add_option("DIR", arguments->folder, "folder of the networks; default: the installed ones")->type_name("");
    command->add_option("--models", arguments->models, "the same, named as for zav spectrum")->type_name("DIR");
    command->add_flag("-v,--verbose", arguments->verbose, "with each failure, where in the program it passed");
    command->footer(INSPECT_EXAMPLES);
}

bool isPicture(const QString &path)
{
    const QString ending = QFileInfo(path).suffix().toLower();
    return ending == QLatin1String("svg") || ending == QLatin1String("png") || ending == QLatin1String("pdf");
}

/// What the options contradict, empty when nothing.
QString contradiction(const SpectrumArguments &a)
{
    const bool isList = !a.peptides.empty();
    if (isList && !(a.peptide.empty() && a.charge.empty()))
        return QStringLiteral("PEPTIDE and --peptides exclude each other");
    if (!isList && a.charge.empty())
        return a.peptide.empty() ? QStringLiteral("PEPTIDE and CHARGE, or --peptides, are missing")
                                 : QStringLiteral("CHARGE is missing");
    if (isList && !(a.plot.empty() && a.against.empty()))
        return QStringLiteral("--plot and --against are for one peptide, not for --peptides");
    if (a.against.empty() && !(a.scan.empty() && a.tolerance.empty()))
        return QStringLiteral("--scan and --tolerance belong to --against");
    if (!a.plot.empty() && !isPicture(text(a.plot)))
        return QStringLiteral("--plot draws a file ending in .svg, .png or .pdf, not '%1'")
            .arg(displayText(text(a.plot)));
    if (!std::isfinite(a.cysteine))
        return QStringLiteral("--cysteine is not a finite mass");
    return {};
}

std::optional<OutputFormat> formatNamed(const std::string &name)
{
    const auto known = FORMATS.find(name);
    return known == FORMATS.end() ? std::nullopt : std::optional(known->second);
}

/// Converts what is plain text so far; what is wrong with it, or empty.
QString convert(const SpectrumArguments &arguments, SpectrumOptions *options)
{
    if (arguments.peptides.empty()) {
        bool isNumber = false;
        options->charge = text(arguments.charge).toInt(&isNumber);
        if (!isNumber)
            return QStringLiteral("CHARGE '%1' is not a whole number").arg(displayText(text(arguments.charge)));
    }
    if (!arguments.format.empty()) {
        options->format = formatNamed(arguments.format);
        if (!options->format)
            return QStringLiteral("--format '%1' is none of tsv, msp, mgf, json and table")
                .arg(displayText(text(arguments.format)));
    } else if (!arguments.output.empty()) {
        options->format = formatNamed(QFileInfo(text(arguments.output)).suffix().toLower().toStdString());
    }
    if (!arguments.tolerance.empty()) {
        const Result<MassTolerance> tolerance = parseMassTolerance(text(arguments.tolerance));
        if (tolerance.hasError())
            return QStringLiteral("--tolerance: ") + tolerance.error().message();
        options->tolerance = tolerance.value();
    }
    return {};
}

CommandLine spectrumOptions(const SpectrumArguments &arguments)
{
    SpectrumOptions options;
    QString problem = contradiction(arguments);
    if (problem.isEmpty())
        problem = convert(arguments, &options);
    if (!problem.isEmpty())
        return wrongUsage(problem, QStringLiteral("spectrum"));
    options.peptide = text(arguments.peptide);
    options.peptideList = text(arguments.peptides);
    options.modelFolder = text(arguments.models);
    options.cysteineMass = arguments.cysteine;
    options.outputPath = text(arguments.output);
    options.isotopes = !arguments.noIsotopes;
    options.annotate = arguments.annotate;
    options.picturePath = text(arguments.plot);
    options.observedPath = text(arguments.against);
    options.scan = text(arguments.scan);
    options.verbose = arguments.verbose;
    return options;
}

CommandLine inspectOptions(const InspectArguments &arguments)
{
    if (!arguments.folder.empty() && !arguments.models.empty())
        return wrongUsage(QStringLiteral("DIR and --models exclude each other"), QStringLiteral("inspect"));
    return InspectOptions{text(arguments.folder.empty() ? arguments.models : arguments.folder), arguments.verbose};
}

EarlyExit earlyExit(const CLI::App &app, const CLI::ParseError &stop, const QString &command)
{
    if (stop.get_exit_code() != int(CLI::ExitCodes::Success))
        return wrongUsage(QString::fromUtf8(stop.what()), command);
    std::ostringstream output;
    app.exit(stop, output, output);
    return {AllDone, text(output.str()), {}};
}

} // namespace

CommandLine parseCommandLine(int argc, const char *const *argv)
{
    if (argc > 1 && argv[1][0] != '-' && std::string(argv[1]) != "spectrum" && std::string(argv[1]) != "inspect")
        return unknownCommand(argv[1]);

    CLI::App app("Predicts peptide MS/MS spectra with trained networks.", "zav");
    app.set_version_flag("--version", "zav " ZAV_VERSION);
    app.require_subcommand(1);
    app.footer("'zav COMMAND --help' explains a command, with examples.");
    SpectrumArguments spectrum;
    CLI::App *spectrumCommand = app.add_subcommand("spectrum", "Predict the spectrum of a peptide, or of many");
    addSpectrumArguments(spectrumCommand, &spectrum);
    InspectArguments inspect;
    addInspectArguments(app.add_subcommand("inspect", "Check a folder of networks and try each"), &inspect);

    const QString command = argc > 1 && argv[1][0] != '-' ? QString::fromUtf8(argv[1]) : QString();
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &stop) {
        return earlyExit(app, stop, command);
    }
    return spectrumCommand->parsed() ? spectrumOptions(spectrum) : inspectOptions(inspect);
}

} // namespace zav
