// SPDX-License-Identifier: Apache-2.0
#include "TraceArguments.h"

#include "PredictorPool.h"
#include "PrintableText.h"
#include "RuntimeThreads.h"

#include <CLI/CLI.hpp>

#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>

#include <cmath>
#include <map>

namespace zav {

namespace {

constexpr double HIGHEST_PPM = 1e5;
constexpr int MOST_POINTS = 1 << 20; // for the network: seconds a trace
constexpr int MOST_THREADS = 1024;
constexpr char DEFAULT_PICTURE[] = "svg";

const std::map<std::string, TraceFormat> FORMATS = {
    {"json", TraceFormat::Json}, {"table", TraceFormat::Table}, {"tsv", TraceFormat::Tsv}};

std::optional<TraceFormat> formatNamed(const std::string &name)
{
    const auto known = FORMATS.find(name);
    return known == FORMATS.end() ? std::nullopt : std::optional(known->second);
}

std::string sizesText()
{
    return "[" + std::to_string(NETWORK_SIZES.front()) + " to " + std::to_string(NETWORK_SIZES.back()) +
           ", the smallest that holds the trace]";
}

/// An empty text leaves the value as it is.
bool parseTime(const QString &time, double *value)
{
    bool isNumber = true;
    if (!time.isEmpty())
        *value = time.toDouble(&isNumber);
    return isNumber && !std::isnan(*value);
}

/// Reads `FROM-TO`; without one of them there is no limit on that side. False for any other text.
bool parseTimeRange(const QString &range, ExtractionTarget *target)
{
    const qsizetype dash = range.indexOf(QLatin1Char('-'));
    return dash >= 0 && range.size() > 1 && parseTime(range.left(dash), &target->rtFrom) &&
           parseTime(range.mid(dash + 1), &target->rtTo) && target->rtFrom <= target->rtTo;
}

/// `maxPointCount` is given as --max-point-count.
QString flagOf(const QString &field)
{
    QString flag = QStringLiteral("--");
    for (const QChar character : field)
        flag += character.isUpper() ? QLatin1Char('-') + QString(character.toLower()) : QString(character);
    return flag;
}

} // namespace

void TraceArguments::addInputTo(CLI::App *command)
{
    command->add_option("FILE", m_inputs, "mzML, TSV or JSON lines, gzipped too; - is standard input")->type_name("");
    command->add_option("--mz", m_mz, "extract the trace of this m/z from the MS1 spectra of mzML")->type_name("M");
    command
        ->add_option("--ppm", m_ppm,
                     "tolerance on either side of the m/z [" + std::to_string(int(ExtractionTarget().ppm)) + "]")
        ->type_name("P");
    command->add_option("--rt", m_timeRange, "extract these times only, in the file's unit; with --mz")
        ->type_name("FROM-TO");
    command->add_option("--targets", m_targets, "extract one trace for each row of this list")->type_name("FILE.tsv");
}

void TraceArguments::addGroupsTo(CLI::App *command, const char *found)
{
    command->add_flag("--group", m_groups,
                      std::string("read the traces of a precursor together and find the same ") + found +
                          " for all of them");
    command
        ->add_option("--group-by", m_groupBy,
                     "with --group: traces belong together whose ids have the same first capture of this regular "
                     "expression")
        ->type_name("REGEX");
}

void TraceArguments::addNetworkTo(CLI::App *command)
{
    m_networks.addTo(command);
    command->add_option("--max-point-count", m_maxPointCount, "length of the network's input " + sizesText())
        ->type_name("N");
}

void TraceArguments::addOutputTo(CLI::App *command, const char *shownInPictures)
{
    command->add_option("-f,--format", m_format, "tsv, json or table")->type_name("FORMAT");
    offerChoices(command->get_option("--format"), {"tsv", "json", "table"});
    command->add_option("-o,--output", m_output, "write to FILE, which appears only when it is complete")
        ->type_name("FILE");
    command
        ->add_option("--plot", m_plot,
                     std::string("draw the trace with ") + shownInPictures +
                         ": .svg, .png or .pdf; or a folder, for a picture of each trace")
        ->type_name("FILE|DIR");
    command
        ->add_option("--plot-format", m_plotFormat,
                     std::string("of the pictures in the folder: svg, png or pdf [") + DEFAULT_PICTURE + "]")
        ->type_name("FORMAT");
    offerChoices(command->get_option("--plot-format"), {"svg", "png", "pdf"});
    command
        ->add_option("--report", m_report,
                     "write an HTML page of all traces: pictures, measures, marks and notes; - is standard output")
        ->type_name("FILE");
    command->add_option("--threads", m_threads, "number of threads [one per core]")->type_name("N");
    command->add_flag("-v,--verbose", m_verbose, "also show where in the program each failure occurred");
}

void TraceArguments::addField(CLI::App *command, const char *name, double *field, const char *description)
{
    command->add_option(name, *field, withDefault(description, *field))->type_name("X");
}

void TraceArguments::addField(CLI::App *command, const char *name, int *field, const char *description)
{
    command->add_option(name, *field, withDefault(description, *field))->type_name("N");
}

Error TraceArguments::convert(TraceOptions *options) const
{
    options->networks = m_networks.choice();
    options->outputPath = text(m_output);
    options->reportPath = text(m_report);
    options->verbose = m_verbose;
    options->threads = m_threads.value_or(usableCores());
    if (options->threads < 1 || options->threads > MOST_THREADS)
        return wrongArgument(
            QStringLiteral("--threads is %1, must be within 1 to %2").arg(options->threads).arg(MOST_THREADS));
    if (m_maxPointCount.value_or(0) > MOST_POINTS)
        return wrongArgument(
            QStringLiteral("--max-point-count is %1, must be %2 or less").arg(*m_maxPointCount).arg(MOST_POINTS));
    options->maxPointCount = m_maxPointCount;
    for (auto part :
         {&TraceArguments::convertInputs, &TraceArguments::convertExtraction, &TraceArguments::convertGroups,
          &TraceArguments::convertOutput, &TraceArguments::convertPictures}) {
        if (Error error = (this->*part)(options); error.hasError())
            return error;
    }
    return checkOutputs(*options);
}

Error TraceArguments::checkOutputs(const TraceOptions &options) const
{
    const QString standardOutput = QStringLiteral("-");
    if (options.reportPath == standardOutput && (options.outputPath.isEmpty() || options.outputPath == standardOutput))
        return wrongArgument(QStringLiteral("--report - needs -o FILE: both would go to standard output"));
    if (Error error = checkNotAmong({options.outputPath}, options.picturePath); error.hasError())
        return error;
    const QStringList others = {options.outputPath, options.picturePath};
    if (Error error = checkNotAmong(others, options.reportPath); error.hasError())
        return error;
    return checkNotOverwritten(options.inputs + QStringList{options.targetList},
                               others + QStringList{options.reportPath});
}

Error TraceArguments::convertInputs(TraceOptions *options) const
{
    for (const std::string &input : m_inputs)
        options->inputs.append(text(input));
    if (options->inputs.isEmpty())
        return wrongArgument(QStringLiteral("FILE is missing"));
    if (options->inputs.count(QStringLiteral("-")) > 1)
        return wrongArgument(QStringLiteral("standard input can be read only once"));
    return {};
}

Error TraceArguments::convertExtraction(TraceOptions *options) const
{
    if (m_mz && !m_targets.empty())
        return wrongArgument(QStringLiteral("--mz and --targets cannot be used together"));
    if (!m_mz && !m_timeRange.empty())
        return wrongArgument(QStringLiteral("--rt needs --mz"));
    if (m_ppm && !m_mz && m_targets.empty())
        return wrongArgument(QStringLiteral("--ppm needs --mz or --targets"));
    options->targetPpm = m_ppm.value_or(ExtractionTarget().ppm);
    if (!(options->targetPpm > 0 && options->targetPpm <= HIGHEST_PPM))
        return wrongArgument(QStringLiteral("--ppm must be above 0 and at most %1").arg(HIGHEST_PPM));
    options->targetList = text(m_targets);
    return m_mz ? convertTarget(options) : Error();
}

Error TraceArguments::convertTarget(TraceOptions *options) const
{
    if (!(std::isfinite(*m_mz) && *m_mz > 0))
        return wrongArgument(QStringLiteral("--mz must be above 0"));
    ExtractionTarget target;
    target.id = QStringLiteral("m/z %1").arg(QString::number(*m_mz, 'g', 10));
    target.mz = *m_mz;
    target.ppm = options->targetPpm;
    if (!m_timeRange.empty() && !parseTimeRange(text(m_timeRange), &target))
        return wrongArgument(
            QStringLiteral("--rt '%1' is not a time range such as 12.5-14").arg(displayText(text(m_timeRange))));
    options->target = target;
    return {};
}

Error TraceArguments::convertGroups(TraceOptions *options) const
{
    options->groupsTraces = m_groups;
    options->groupPattern = text(m_groupBy);
    if (!m_groupBy.empty() && !m_groups)
        return wrongArgument(QStringLiteral("--group-by needs --group"));
    const QRegularExpression pattern(options->groupPattern);
    return pattern.isValid() ? Error()
                             : wrongArgument(QStringLiteral("--group-by '%1' is not a regular expression: %2")
                                                 .arg(displayText(options->groupPattern), pattern.errorString()));
}

Error TraceArguments::convertOutput(TraceOptions *options) const
{
    if (m_format.empty()) {
        options->format = formatNamed(QFileInfo(text(m_output)).suffix().toLower().toStdString());
        return {};
    }
    options->format = formatNamed(m_format);
    return options->format
               ? Error()
               : wrongArgument(
                     QStringLiteral("--format '%1' is not one of tsv, json, table").arg(displayText(text(m_format))));
}

Error TraceArguments::convertPictures(TraceOptions *options) const
{
    options->picturePath = text(m_plot);
    const bool isFolder = !m_plot.empty() && (!isPicture(text(m_plot)) || QFileInfo(text(m_plot)).isDir());
    if (!m_plotFormat.empty() && !isFolder)
        return wrongArgument(QStringLiteral("--plot-format needs --plot with a folder"));
    if (!isFolder)
        return {};
    options->pictureFolderFormat = m_plotFormat.empty() ? QString::fromLatin1(DEFAULT_PICTURE) : text(m_plotFormat);
    return isPicture(QLatin1Char('.') + options->pictureFolderFormat)
               ? Error()
               : wrongArgument(QStringLiteral("--plot-format '%1' is not one of svg, png, pdf")
                                   .arg(displayText(text(m_plotFormat))));
}

Error TraceArguments::inFlags(const Error &error)
{
    if (!error.hasError())
        return error;
    const QString field = error.message().section(QLatin1Char(' '), 0, 0);
    return wrongArgument(flagOf(field) + error.message().mid(field.size()));
}

} // namespace zav
