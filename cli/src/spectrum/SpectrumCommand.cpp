// SPDX-License-Identifier: Apache-2.0
#include "SpectrumCommand.h"

#include "NetworkLoading.h"
#include "OutputFile.h"
#include "PictureFile.h"
#include "PrintableText.h"
#include "SpectrumPlot.h"
#include "Terminal.h"

#include <zav/MsMsFragmentationPredictomatic.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zav {

namespace {

// How many precursors are predicted before the bar moves. With isotopes the network runs for each alone; without them
// on the whole block, which is therefore larger.
constexpr qsizetype BLOCK_WITH_ISOTOPES = 32;
constexpr qsizetype BLOCK_WITHOUT_ISOTOPES = 512;

OutputFormat formatOf(const SpectrumOptions &options)
{
    if (options.format)
        return *options.format;
    return options.outputPath.isEmpty() && terminal::standardOutputIsTerminal() ? OutputFormat::Table
                                                                                : OutputFormat::Tsv;
}

Error writeToStandardOutput(const QByteArray &text)
{
    OutputFile file(QStringLiteral("-"));
    if (Error error = file.open(); error.hasError())
        return error;
    if (Error error = file.write(text); error.hasError())
        return error;
    return file.commit();
}

QString comparisonText(const SpectrumComparison &comparison)
{
    return QStringLiteral(
               "spectral angle %1, cosine %2 over b and y ions\n%3 of %4 observed peaks explained, %5 % of the "
               "intensity\n")
        .arg(QString::number(comparison.spectralAngle, 'f', 3), QString::number(comparison.cosine, 'f', 3),
             QString::number(comparison.explainedPeaks), QString::number(comparison.observedPeaks),
             QString::number(100 * comparison.explainedIntensity, 'f', 1));
}

} // namespace

SpectrumCommand::SpectrumCommand(const SpectrumOptions &options)
    : Command(options.verbose), m_options(options), m_format(formatOf(options))
{}

/// The error is one that ends the run; a peptide that fails is reported at once and counted.
Error SpectrumCommand::work()
{
    Error error =
        inTurn(this, {&SpectrumCommand::readPeptides, &SpectrumCommand::readObserved, &SpectrumCommand::loadNetworks,
                      &SpectrumCommand::predictAll, &SpectrumCommand::finishOutput, &SpectrumCommand::showComparisons,
                      &SpectrumCommand::draw});
    if (!error.hasError() && isList())
        noteFailures();
    return error;
}

void SpectrumCommand::noteFailures()
{
    if (m_failed > 0)
        messages().note(QStringLiteral("%1 of %2 precursors could not be predicted").arg(m_failed).arg(m_rows.size()));
    if (m_notCompared > 0)
        messages().note(QStringLiteral("%1 of %2 predictions could not be compared")
                            .arg(m_notCompared)
                            .arg(m_rows.size() - m_failed));
}

Error SpectrumCommand::readPeptides()
{
    if (m_options.annotate && m_format == OutputFormat::Mgf)
        messages().note(QStringLiteral("MGF cannot hold ion names; --annotate has no effect"));
    if (isList()) {
        const Result<QList<PeptideListRow>> rows = readPeptideList(m_options.peptideList);
        if (rows.hasError())
            return rows.error();
        m_rows = rows.value();
    } else {
        m_rows = {PeptideListRow{{m_options.peptide, m_options.charge}, m_options.scan, 0, {}}};
    }
    for (PeptideListRow &row : m_rows) {
        if (std::isnan(row.precursor.collisionEnergy))
            row.precursor.collisionEnergy = m_options.collisionEnergy;
    }
    if (m_rows.isEmpty())
        return Error(InvalidInput, QStringLiteral("no peptides in %1").arg(inputName(m_options.peptideList)));
    checkPeptides();
    prepareOutput();
    return {};
}

void SpectrumCommand::checkPeptides()
{
    MsMsFragmentationPredictomatic limits;
    const auto maximumLength = [&](int charge) { return limits.getMaximumPeptideLengthForCharge(charge); };
    for (const PeptideListRow &row : m_rows)
        m_problems.append(row.problem.isEmpty() ? checkPrecursor(row.precursor, maximumLength)
                                                : Error(InvalidInput, row.problem));
}

bool SpectrumCommand::hasEnergies() const
{
    return std::any_of(m_rows.begin(), m_rows.end(),
                       [](const PeptideListRow &row) { return !std::isnan(row.precursor.collisionEnergy); });
}

void SpectrumCommand::prepareOutput()
{
    m_output = std::make_unique<SpectrumOutput>(m_options.outputPath, m_format,
                                                WriterOptions{m_options.annotate, isList(), hasEnergies()});
}

Error SpectrumCommand::loadNetworks()
{
    QList<Precursor> precursors;
    for (qsizetype i = 0; i < m_rows.size(); ++i) {
        if (!m_problems[i].hasError())
            precursors.append(m_rows[i].precursor);
    }
    if (precursors.isEmpty())
        return {};
    noteTrust(m_options.networks, &messages());
    m_predictor = std::make_unique<SpectrumPredictor>(
        m_options.cysteineMass, m_options.isotopes ? IsotopePeaks::Included : IsotopePeaks::LeftOut);
    const QuietStandardError quiet(!m_options.verbose);
    return m_predictor->load(m_options.networks, precursors);
}

Error SpectrumCommand::predictAll()
{
    Progress progress = startProgress(m_rows.size(), QStringLiteral("peptides"), m_options.outputPath);
    const qsizetype blockSize = m_options.isotopes ? BLOCK_WITH_ISOTOPES : BLOCK_WITHOUT_ISOTOPES;
    for (qsizetype first = 0; first < m_rows.size(); first += blockSize) {
        progress.update(first);
        if (Error error = predictBlock(first, std::min(first + blockSize, m_rows.size())); error.hasError())
            return error;
    }
    return {};
}

/// The error is one of writing, or of the file of measured spectra.
Error SpectrumCommand::predictBlock(qsizetype first, qsizetype end)
{
    QList<Precursor> precursors;
    for (qsizetype i = first; i < end; ++i) {
        if (!m_problems[i].hasError())
            precursors.append(m_rows[i].precursor);
    }
    QList<Result<PredictedSpectrum>> outcomes;
    if (!precursors.isEmpty())
        outcomes = m_predictor->predict(precursors);
    if (m_predictor)
        noteRemarks();
    for (qsizetype i = first; i < end; ++i) {
        Error error = accept(i, m_problems[i].hasError() ? m_problems[i] : outcomes.takeFirst());
        if (error.hasError())
            return error;
    }
    return {};
}

/// Each once in a run.
void SpectrumCommand::noteRemarks()
{
    for (const QString &remark : m_predictor->takeRemarks()) {
        if (m_noted.contains(remark))
            continue;
        m_noted.append(remark);
        messages().note(remark.left(1).toLower() + remark.mid(1) +
                        QStringLiteral(": m/z are right, intensities may be wrong"));
    }
}

/// The error is one of writing, or of the file of measured spectra.
Error SpectrumCommand::accept(qsizetype number, const Result<PredictedSpectrum> &outcome)
{
    if (outcome.hasError()) {
        ++m_failed;
        reportFailure(m_rows[number], outcome.error());
        return compare(number, outcome);
    }
    if (!isList())
        m_spectrum = outcome.value();
    if (m_options.writesSpectra) {
        if (Error error = m_output->write(outcome.value()); error.hasError())
            return error;
    }
    return compare(number, outcome);
}

Error SpectrumCommand::finishOutput()
{
    return m_output->finish();
}

/// Before the prediction, so that a mistyped path costs no time and writes nothing.
Error SpectrumCommand::readObserved()
{
    if (!m_options.picturePath.isEmpty() && !canWritePictures())
        return Error(Failure, QStringLiteral("this build of zav cannot draw pictures"));
    if (m_options.observedPath.isEmpty() || (!isList() && m_problems.first().hasError()))
        return {};
    m_comparisons = std::make_unique<ComparisonOutput>(
        ComparisonPaths{m_options.observedPath, m_options.scoresPath, m_options.reportPath}, hasEnergies());
    if (isList())
        return openRun();
    const Result<ObservedSpectrum> observed = readObservedSpectrum(m_options.observedPath, m_options.scan);
    if (observed.hasError())
        return observed.error();
    m_observed = observed.value();
    return {};
}

/// Scans of which none is to be found end the run.
Error SpectrumCommand::openRun()
{
    QStringList scans;
    for (const PeptideListRow &row : m_rows)
        scans.append(row.scan);
    Result<std::unique_ptr<ObservedSpectra>> run = ObservedSpectra::open(m_options.observedPath, scans);
    if (run.hasError())
        return run.error();
    m_run = std::move(run).value();
    for (qsizetype i = 0; i < m_rows.size(); ++i) {
        if (!m_run->problem(i).hasError())
            return {};
    }
    return m_run->problem(0);
}

/// The error is one of writing, or of the file of measured spectra.
Error SpectrumCommand::compare(qsizetype number, const Result<PredictedSpectrum> &outcome)
{
    if (!m_comparisons)
        return {};
    const PeptideListRow &row = m_rows[number];
    ComparedSpectrum compared;
    compared.precursor = row.precursor;
    compared.scan = row.scan;
    if (outcome.hasError()) {
        compared.problem = outcome.error().message();
        return m_comparisons->add(compared);
    }
    compared.predicted = outcome.value();
    const Result<SpectrumOutcome> observed =
        isList() ? m_run->read(number) : Result<SpectrumOutcome>(SpectrumOutcome{*m_observed, {}});
    if (observed.hasError())
        return observed.error();
    compareWith(observed.value(), &compared);
    if (!compared.problem.isEmpty()) {
        ++m_notCompared;
        reportFailure(row, Error(Failure, compared.problem));
    }
    if (!isList())
        m_comparison = compared.comparison;
    return m_comparisons->add(compared);
}

void SpectrumCommand::compareWith(const SpectrumOutcome &observed, ComparedSpectrum *compared)
{
    if (observed.problem.hasError()) {
        compared->problem = observed.problem.message();
        return;
    }
    compared->observed = observed.spectrum;
    compared->comparison = compareSpectra(*compared->predicted, *compared->observed, m_options.tolerance);
}

/// On standard output, unless another program reads the spectrum there.
Error SpectrumCommand::showComparisons()
{
    if (!m_comparisons)
        return {};
    if (Error error = m_comparisons->finish(); error.hasError())
        return error;
    const QString text = m_comparison ? comparisonText(*m_comparison) : m_comparisons->summary();
    if (isStandardOutputFree())
        return writeToStandardOutput(text.toUtf8());
    std::fputs(qUtf8Printable(text), stderr);
    return {};
}

bool SpectrumCommand::isStandardOutputFree() const
{
    for (const QString &path : {m_options.scoresPath, m_options.reportPath}) {
        if (!path.isEmpty() && terminal::isStandardOutput(path))
            return false;
    }
    return m_format == OutputFormat::Table || !m_options.writesSpectra ||
           !terminal::isStandardOutput(m_options.outputPath);
}

Error SpectrumCommand::draw()
{
    if (!m_spectrum || m_options.picturePath.isEmpty())
        return {};
    const Precursor &precursor = m_spectrum->precursor;
    // The modification of all cysteines is not worth a mark: it is in every peptide that is written without any.
    const Peptidoform marked = isProForma(precursor.peptide) ? m_spectrum->peptidoform : Peptidoform(precursor.peptide);
    return drawSpectrum({marked, precursor.charge, precursor.collisionEnergy, m_spectrum->precursorMz,
                         m_spectrum->peaks, m_observed, m_comparison},
                        m_options.picturePath);
}

void SpectrumCommand::reportFailure(const PeptideListRow &row, const Error &error)
{
    const bool hasCharge = row.precursor.charge != 0 || row.problem.isEmpty();
    const QString name = hasCharge ? displayName(row.precursor) : displayText(row.precursor.peptide);
    const QString line = QStringLiteral("%1:%2: ").arg(inputName(m_options.peptideList)).arg(row.line);
    fail(error, isList() ? line + name : name);
}

} // namespace zav
