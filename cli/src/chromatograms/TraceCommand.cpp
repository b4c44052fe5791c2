// SPDX-License-Identifier: Apache-2.0
#include "TraceCommand.h"

#include "ByteStream.h"
#include "ConsensusTrace.h"
#include "NetworkLoading.h"
#include "OrderedPipeline.h"
#include "PeakMeasures.h"
#include "PrintableText.h"
#include "RuntimeThreads.h"
#include "TargetList.h"
#include "Terminal.h"

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

} // namespace

TraceCommand::TraceCommand(const TraceOptions &options, const TraceTable &table)
    : Command(options.verbose), m_options(options), m_table(table),
      m_pictures(options.picturePath, options.pictureFolderFormat,
                 options.target ? std::optional(options.target->ppm) : std::nullopt),
      m_report(options.reportPath, options.inputs, table),
      m_output(options.outputPath, makeTraceWriter(formatOf(options), table, fileWidth(options.inputs)))
{}

/// The error is one that ends the run; a trace that fails is told at once and counted.
Error TraceCommand::work()
{
    if (Error error =
            inTurn(this, {&TraceCommand::preparePictures, &TraceCommand::openTraces, &TraceCommand::loadNetwork,
                          &TraceCommand::analyseAll, &TraceCommand::finishOutput});
        error.hasError())
        return error;
    messages().note(m_tally.text(QString::fromLatin1(m_table.rowsName)));
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
        const Result<QList<ExtractionTarget>> list =
            readTargetList(m_options.targetList, m_options.targetPpm, m_options.groupsTraces);
        if (list.hasError())
            return list.error();
        targets = list.value();
    }
    m_stream = std::make_unique<TraceStream>(m_options.inputs, targets);
    if (m_options.groupsTraces)
        m_stream->group(QRegularExpression(m_options.groupPattern));
    return m_stream->open();
}

/// Makes an analysis for each thread and loads the network of the first. That is done before any thread starts: only
/// while nothing else writes to the terminal can the runtime's messages be kept off it.
Error TraceCommand::loadNetwork()
{
    noteTrust(m_options.networks, &messages());
    const Result<ModelFolder> folder = ModelFolder::find(m_options.networks, networkUse());
    if (folder.hasError())
        return folder.error();
    if (Error error = folder.value().checkNetwork(networkUse()); error.hasError())
        return error;
    for (int thread = 0; thread < m_options.threads; ++thread)
        m_analyses.push_back(makeAnalysis(folder.value().network(networkUse())));
    keepRuntimeInCallingThreads();
    const QuietStandardError quiet(!m_options.verbose);
    return m_analyses.front()->load();
}

/// The error is one of a file or of writing.
Error TraceCommand::analyseAll()
{
    Progress progress = startProgress(m_stream->count(), QStringLiteral("traces"), m_options.outputPath);
    // A thread that waits for standard input cannot be woken: an interrupt then ends the process at once.
    if (!m_options.inputs.contains(QStringLiteral("-")))
        noteInterrupts();
    OrderedPipeline<TraceGroup, TraceGroup> pipeline({m_options.threads}, [this] { return isInterrupted(); });
    return pipeline.run([this] { return read(); },
                        [this](int thread, TraceGroup group) {
                            return analyse(m_analyses[static_cast<size_t>(thread)].get(), std::move(group));
                        },
                        [&](const TraceGroup &group) { return accept(group, &progress); });
}

Error TraceCommand::finishOutput()
{
    if (Error error = m_report.finish(); error.hasError())
        return error;
    return m_output.finish();
}

Result<std::optional<TraceGroup>> TraceCommand::read()
{
    Result<std::optional<TraceGroup>> input = m_stream->next();
    if (input.hasError() || !input.value() || !m_pictures.isOneFile() || input.value()->number > 1)
        return input;
    const Result<std::optional<TraceGroup>> second = m_stream->next();
    if (second.hasError())
        return second.error();
    if (second.value())
        return Error(InvalidInput,
                     QStringLiteral("--plot %1 holds one %2 and there are several; give a folder to draw them all")
                         .arg(displayText(m_options.picturePath, 300),
                              m_options.groupsTraces ? QStringLiteral("group") : QStringLiteral("trace")));
    return input;
}

/// In one of the pipeline's threads.
TraceGroup TraceCommand::analyse(TraceAnalysis *analysis, TraceGroup group) const
{
    QList<Trace *> sound;
    QList<QList<QPointF>> points;
    for (Trace &trace : group.traces) {
        if (trace.isBroken)
            continue;
        sound.append(&trace);
        points.append(trace.chromatogram.points);
    }
    if (sound.isEmpty())
        return group;
    group.consensus = points.size() == 1 ? points.first() : consensusOf(points);
    Result<TraceFindings> findings = analysis->analyse(group.consensus);
    for (Trace *trace : sound)
        trace->problem = findings.error();
    if (findings.hasError())
        return group;
    group.findings = std::move(findings).value();
    for (Trace *trace : sound)
        trace->findings = group.isGrouped()
                              ? memberFindings(group.findings, trace->chromatogram.points, group.consensus)
                              : group.findings;
    sound.first()->pictureProblem = m_pictures.draw(group);
    return group;
}

/// The error is one of writing.
Error TraceCommand::accept(const TraceGroup &group, Progress *progress)
{
    if (!group.note.isEmpty())
        messages().note(group.note);
    if (group.isGrouped()) {
        m_tally.addGroup();
        tell(group.findings, group.title());
    }
    for (const Trace &trace : group.traces) {
        Error error = accept(trace);
        progress->update(m_tally.traces());
        if (error.hasError())
            return error;
    }
    return m_report.add(group);
}

Error TraceCommand::accept(const Trace &trace)
{
    if (!trace.problem.hasError())
        return write(trace);
    countFailure(trace.problem, trace.isBroken ? QString() : trace.name());
    return {};
}

Error TraceCommand::write(const Trace &trace)
{
    const Result<QByteArray> text = m_output.text(trace);
    if (text.hasError()) {
        countFailure(text.error(), trace.name());
        return {};
    }
    tell(trace.findings, trace.name());
    if (trace.pictureProblem.hasError())
        return trace.pictureProblem;
    m_tally.addTrace(m_table.rows(trace.findings).size(), trace.findings.leftOut);
    return m_output.write(text.value());
}

void TraceCommand::tell(const TraceFindings &findings, const QString &subject)
{
    const QList<QString> remarks = {findings.remark, findings.nothingFound};
    for (const QString &remark : findings.warnings + remarks) {
        if (!remark.isEmpty())
            messages().note(subject + QStringLiteral(": ") + remark);
    }
}

void TraceCommand::countFailure(const Error &error, const QString &subject)
{
    m_tally.addFailure();
    fail(error, subject);
}

} // namespace zav
