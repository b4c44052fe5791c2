// SPDX-License-Identifier: Apache-2.0
#include "RetentionCommand.h"

#include "NetworkLoading.h"
#include "PictureFile.h"
#include "PrintableText.h"
#include "RetentionTimePlot.h"
#include "Terminal.h"

#include <QtCore/QFileInfo>
#include <QtCore/QPointF>

#include <cmath>

namespace zav {

namespace {

// Rows that are read, predicted and written at once: many runs of the network, few megabytes.
constexpr qsizetype BLOCK = 8192;

/// The library names a network of another shape by a message of its own, and fails without one elsewhere.
Error predictionFailure(const Error &error)
{
    throwIfOutOfMemory(error);
    return error.message().isEmpty() ? explainedError(error, QStringLiteral("cannot predict retention times")) : error;
}

} // namespace

RetentionCommand::RetentionCommand(const RetentionOptions &options)
    : Command(options.verbose), m_options(options), m_table(options.outputPath, !options.observedPath.isEmpty())
{}

/// The error is one that ends the run; a peptide that fails is reported at once and counted.
Error RetentionCommand::work()
{
    Error error =
        inTurn(this, {&RetentionCommand::openList, &RetentionCommand::loadNetwork, &RetentionCommand::calibrate,
                      &RetentionCommand::drawCalibration, &RetentionCommand::predictAll});
    if (!error.hasError() && m_failed > 0)
        messages().note(QStringLiteral("%1 of %2 peptides could not be predicted").arg(m_failed).arg(m_count));
    return error;
}

Error RetentionCommand::openList()
{
    if (m_options.drawsPictures() && !canWritePictures())
        return Error(Failure, QStringLiteral("this build of zav cannot draw pictures"));
    return m_list.open(m_options.peptideList);
}

Error RetentionCommand::loadNetwork()
{
    noteTrust(m_options.networks, &messages());
    const Result<ModelFolder> folder = ModelFolder::find(m_options.networks, NetworkUse::RetentionTimes);
    if (folder.hasError())
        return folder.error();
    const QuietStandardError quiet(!m_options.verbose);
    return zav::loadNetwork(folder.value(), NetworkUse::RetentionTimes, &m_predictor);
}

Error RetentionCommand::calibrate()
{
    if (m_options.observedPath.isEmpty())
        return {};
    Result<ObservedTimes> observed = readObservedTimes(m_options.observedPath);
    if (observed.hasError())
        return observed.error();
    m_observed = std::move(observed).value();
    const Result<FittedTimes> fitted = fitTimes(m_observed, m_options.observedPath, &m_predictor);
    if (fitted.hasError())
        return fitted.error();
    noteOnce(fitted.value().remarks);
    m_calibration = fitted.value().calibration;
    return {};
}

Error RetentionCommand::drawCalibration()
{
    if (m_options.picturePath.isEmpty())
        return {};
    QList<Peptidoform> peptidoforms;
    for (const ObservedRetentionTime &pair : m_observed.pairs)
        peptidoforms.append(pair.peptidoform);
    QList<QList<double>> heads;
    if (const Error error = m_predictor.predictHeads(peptidoforms, &heads); error.hasError())
        return predictionFailure(error);
    const Result<QList<double>> indices = m_calibration->indicesOf(heads);
    if (indices.hasError())
        return indices.error();
    QList<QPointF> pairs;
    for (qsizetype i = 0; i < heads.size(); ++i) {
        if (!heads[i].isEmpty())
            pairs.append({indices.value()[i], m_observed.pairs[i].time});
    }
    const auto timeAt = [this](double index) { return m_calibration->timeAt(index); };
    return drawRetentionTimes({QFileInfo(inputName(m_options.observedPath)).fileName(), pairs, timeAt,
                               m_calibration->width95(), m_calibration->outlierCount()},
                              m_options.picturePath);
}

Error RetentionCommand::predictAll()
{
    Progress progress = startProgress(-1, QStringLiteral("peptides"), m_options.outputPath);
    while (true) {
        const Result<QList<RetentionRow>> rows = m_list.next(BLOCK);
        if (rows.hasError())
            return rows.error();
        if (rows.value().isEmpty())
            break;
        if (Error error = predictBlock(rows.value()); error.hasError())
            return error;
        m_count += rows.value().size();
        progress.update(m_count);
    }
    if (m_count == 0)
        return Error(InvalidInput, QStringLiteral("no peptides in %1").arg(inputName(m_options.peptideList)));
    return m_table.finish();
}

Error RetentionCommand::predictBlock(const QList<RetentionRow> &rows)
{
    QList<Peptidoform> peptidoforms;
    for (const RetentionRow &row : rows) {
        if (!row.peptidoform.hasError())
            peptidoforms.append(row.peptidoform.value());
    }
    QList<QList<double>> heads;
    const Error outcome = m_predictor.predictHeads(peptidoforms, &heads);
    if (outcome.hasError())
        return predictionFailure(outcome);
    Result<QList<double>> indices = QList<double>(heads.size(), 0.0);
    if (m_calibration)
        indices = m_calibration->indicesOf(heads);
    if (indices.hasError())
        return indices.error();
    QList<QString> warnings = outcome.warnings();
    qsizetype next = 0; // of the peptidoforms
    for (const RetentionRow &row : rows) {
        if (row.peptidoform.hasError()) {
            reportFailure(row, row.peptidoform.error(), QStringLiteral(": ") + displayText(row.text));
            continue;
        }
        // What cannot be predicted is named by the first warnings, in turn.
        if (heads[next].isEmpty())
            reportFailure(row, Error(InvalidInput, displayText(warnings.takeFirst(), 200)), {});
        else
            addRow(row, heads[next], indices.value()[next]);
        ++next;
    }
    noteOnce(warnings);
    return m_table.flush();
}

void RetentionCommand::addRow(const RetentionRow &row, const QList<double> &heads, double index)
{
    const double time = m_calibration ? m_calibration->timeAt(index) : 0.0;
    if (std::isfinite(heads.first()) && std::isfinite(time))
        m_table.add(row.text, heads.first(), time);
    else
        reportFailure(row, Error(Failure, QStringLiteral("the network predicts no finite time")),
                      QStringLiteral(": ") + displayText(row.text));
}

void RetentionCommand::reportFailure(const RetentionRow &row, const Error &error, const QString &subject)
{
    ++m_failed;
    fail(error, QStringLiteral("%1:%2").arg(inputName(m_options.peptideList)).arg(row.line) + subject);
}

void RetentionCommand::noteOnce(const QList<QString> &remarks)
{
    for (const QString &remark : remarks) {
        const auto before = m_noted.size();
        m_noted.insert(remark);
        if (m_noted.size() > before)
            messages().note(displayText(remark, 200));
    }
}

} // namespace zav
