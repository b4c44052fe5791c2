// SPDX-License-Identifier: Apache-2.0
#include "TraceCommand.h"

#include "Command.h"
#include "OrderedPipeline.h"
#include "PrintableText.h"
#include "Progress.h"
#include "RuntimeThreads.h"
#include "TargetList.h"
#include "Terminal.h"

#include <QtCore/QFileInfo>

#include <algorithm>
#include <utility>

namespace zav {

namespace {

TraceFormat formatOf(const TraceOptions &options)
{
    if (options.format)
        return *options.format;
    return options.outputPath.isEmpty() && terminal::standardOutputIsTerminal() ? TraceFormat::Table : TraceFormat::Tsv;
}

/// Of the longest file name; 0 when there is one file, which no row then names.
int fileWidth(const QStringList &inputs)
{
    if (inputs.size() < 2)
        return 0;
    return static_cast<int>(std::max_element(inputs.begin(), inputs.end(), [](const QString &a, const QString &b) {
                                return a.size() < b.size();
                            })->size());
}

bool writesToStandardOutput(const QString &outputPath)
{
    return outputPath.isEmpty() || outputPath == QLatin1String("-");
}

/// The file's name, and how wide the trace was extracted where that is the same for all.
QString sourceText(const QString &file, const std::optional<ExtractionTarget> &target)
{
    const QString name = QFileInfo(inputName(file)).fileName();
    return target ? QStringLiteral("%1, %2 %3 ppm").arg(name, QChar(0xb1), QString::number(target->ppm)) : name;
}

ChromatogramPlotData plotData(const TraceReport &report, const Chromatogram &chromatogram, const QString &source)
{
    ChromatogramPlotData data;
    data.id = report.id;
    data.source = source;
    data.points = chromatogram.points;
    data.timeUnit = report.timeUnit;
    data.intensityUnit = report.intensityUnit;
    for (const TracePeak &peak : report.findings.peaks)
        data.peaks.append({peak.start, peak.end, peak.apex});
    for (const TraceSplit &split : report.findings.splits)
        data.splits.append({split.time, split.probability});
    return data;
}

TraceRecord recordOf(const TraceReport &report, const TraceTable &table)
{
    return {report.file, report.id, report.timeUnit, report.intensityUnit, report.points, table.rows(report.findings)};
}

QString subjectOf(const TraceReport &report)
{
    return inputName(report.file) + QStringLiteral(": ") + displayText(report.id, 120);
}

} // namespace

TraceCommand::TraceCommand(const TraceOptions &options, const TraceTable &table)
    : m_options(options), m_table(table), m_messages(options.verbose),
      m_pictures(options.picturePath, options.pictureFolderFormat),
      m_output(std::make_unique<TraceOutput>(options.outputPath,
                                             makeTraceWriter(formatOf(options), table, fileWidth(options.inputs))))
{}

TraceCommand::~TraceCommand() = default;

int TraceCommand::run()
{
    const Error error = runSteps();
    if (error.hasError())
        m_messages.failure(error);
    if (isInterrupted())
        return m_interruption->exitCode();
    return error.hasError() || m_tally.failures() > 0 ? SomeFailed : AllDone;
}

/// The error is one that ends the run; a trace that fails is told at once and counted.
Error TraceCommand::runSteps()
{
    for (auto step : {&TraceCommand::preparePictures, &TraceCommand::openTraces, &TraceCommand::loadNetwork,
                      &TraceCommand::analyseAll, &TraceCommand::finishOutput}) {
        if (Error error = (this->*step)(); error.hasError())
            return error;
    }
    m_messages.note(m_tally.text(QString::fromLatin1(m_table.rowsName)));
    return {};
}

Error TraceCommand::preparePictures()
{
    return m_pictures.prepare();
}

Error TraceCommand::openTraces()
{
    QList<ExtractionTarget> targets;
    if (m_options.target)
        targets.append(*m_options.target);
    if (!m_options.targetList.isEmpty()) {
        const Result<QList<ExtractionTarget>> list = readTargetList(m_options.targetList, m_options.targetPpm);
        if (list.hasError())
            return list.error();
        targets = list.value();
    }
    m_stream = std::make_unique<TraceStream>(m_options.inputs, targets);
    return m_stream->open();
}

/// The first thread's, before it starts: what the runtime says when it is loaded can be kept off the terminal only
/// while nobody else writes there.
Error TraceCommand::loadNetwork()
{
    const Result<ModelFolder> folder = ModelFolder::find(m_options.modelFolder, networkUse());
    if (folder.hasError())
        return folder.error();
    for (int thread = 0; thread < m_options.threads; ++thread)
        m_analyses.push_back(makeAnalysis(folder.value().network(networkUse())));
    keepRuntimeInCallingThreads();
    const QuietStandardError quiet(!m_options.verbose);
    return m_analyses.front()->load();
}

/// The error is one of a file or of writing.
Error TraceCommand::analyseAll()
{
    const bool mixesWithOutput = writesToStandardOutput(m_options.outputPath) && terminal::standardOutputIsTerminal();
    Progress progress(m_stream->count(), QStringLiteral("traces"),
                      terminal::standardErrorIsTerminal() && !mixesWithOutput);
    m_messages.setProgress(&progress);
    // Nothing wakes a thread that waits for standard input: there an interrupt ends the process as it stands.
    if (!m_options.inputs.contains(QStringLiteral("-")))
        m_interruption.emplace();
    OrderedPipeline<TraceInput, TraceReport> pipeline({m_options.threads}, [this] { return isInterrupted(); });
    Error error = pipeline.run([this] { return read(); },
                               [this](int thread, TraceInput input) {
                                   return analyse(m_analyses[static_cast<size_t>(thread)].get(), std::move(input));
                               },
                               [&](const TraceReport &report) { return accept(report, &progress); });
    m_messages.setProgress(nullptr);
    return error;
}

Error TraceCommand::finishOutput()
{
    return m_output->finish();
}

Result<std::optional<TraceInput>> TraceCommand::read()
{
    Result<std::optional<TraceInput>> input = m_stream->next();
    if (input.hasError() || !input.value() || !m_pictures.isOneFile() || input.value()->number > 1)
        return input;
    const Result<std::optional<TraceInput>> second = m_stream->next();
    if (second.hasError())
        return second.error();
    if (second.value())
        return Error(InvalidInput, QStringLiteral("there is more than one trace, and --plot %1 has room for one; with "
                                                  "the name of a folder it draws each")
                                       .arg(displayText(m_options.picturePath, 300)));
    return input;
}

/// In one of the pipeline's threads.
TraceReport TraceCommand::analyse(TraceAnalysis *analysis, TraceInput input) const
{
    const Chromatogram &chromatogram = input.chromatogram;
    TraceReport report;
    report.number = input.number;
    report.file = input.file;
    report.id = chromatogram.id;
    report.timeUnit = chromatogram.timeUnit;
    report.intensityUnit = chromatogram.intensityUnit;
    report.points = chromatogram.points.size();
    report.problem = input.problem;
    report.isBroken = input.problem.hasError();
    if (report.isBroken)
        return report;
    Result<TraceFindings> findings = analysis->analyse(chromatogram.points);
    report.problem = findings.error();
    if (!findings.hasError()) {
        report.findings = std::move(findings).value();
        report.pictureProblem = drawReport(report, chromatogram);
    }
    return report;
}

Error TraceCommand::drawReport(const TraceReport &report, const Chromatogram &chromatogram) const
{
    if (!m_pictures.areDrawn())
        return {};
    return m_pictures.draw(report.number, plotData(report, chromatogram, sourceText(report.file, m_options.target)));
}

/// The error is one of writing.
Error TraceCommand::accept(const TraceReport &report, Progress *progress)
{
    Error error;
    if (report.problem.hasError())
        fail(report.problem, report.isBroken ? QString() : subjectOf(report));
    else
        error = write(report);
    progress->update(m_tally.traces());
    return error;
}

Error TraceCommand::write(const TraceReport &report)
{
    const Result<QByteArray> text = m_output->text(recordOf(report, m_table));
    if (text.hasError()) {
        fail(text.error(), subjectOf(report));
        return {};
    }
    tell(report);
    if (report.pictureProblem.hasError())
        return report.pictureProblem;
    m_tally.addTrace(m_table.rows(report.findings).size());
    return m_output->write(text.value());
}

void TraceCommand::tell(const TraceReport &report)
{
    const QList<QString> remarks = {report.findings.remark, report.findings.nothingFound};
    for (const QString &remark : report.findings.warnings + remarks) {
        if (!remark.isEmpty())
            m_messages.note(subjectOf(report) + QStringLiteral(": ") + remark);
    }
}

void TraceCommand::fail(const Error &error, const QString &subject)
{
    m_tally.addFailure();
    m_messages.failure(error, subject);
}

} // namespace zav
