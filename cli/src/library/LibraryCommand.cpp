// SPDX-License-Identifier: Apache-2.0
#include "LibraryCommand.h"

#include "FileDigest.h"
#include "NetworkLoading.h"
#include "OrderedPipeline.h"
#include "OutputFile.h"
#include "PrintableText.h"
#include "RuntimeThreads.h"
#include "Terminal.h"

#include <QtCore/QFileInfo>

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

// Peptidoforms that a worker takes at a time, about. Many, because each length needs whole blocks; bounded, because
// their entries stay in memory until their turn has come.
constexpr qint64 MOST_AT_ONCE = 8192;
constexpr qint64 FEWEST_AT_ONCE = 512;

constexpr double MEGABYTE = 1e6;

qint64 dividedUp(qint64 dividend, qint64 divisor)
{
    return (dividend + divisor - 1) / divisor;
}

/// Drops peaks that the format cannot hold before --top and before scaling to the base peak.
PeakFilterOptions peaksFor(const LibraryOptions &options)
{
    PeakFilterOptions peaks = options.peaks;
    if (isTransitionList(options.kind)) {
        peaks.aIons = false;
        peaks.isotopes = false;
    }
    return peaks;
}

QString counted(qint64 count, const QString &what)
{
    return QStringLiteral("%1 %2").arg(QString::number(count), what);
}

} // namespace

LibraryCommand::LibraryCommand(const LibraryOptions &options)
    : Command(options.verbose), m_options(options), m_skipped(options.skippedPath)
{
    m_options.peaks = peaksFor(options);
    if (m_options.threads == 0)
        m_options.threads = usableCores();
    if (options.peaks.isotopes && !m_options.peaks.isotopes)
        messages().note(QStringLiteral("%1 cannot hold isotope peaks; --isotopes has no effect")
                            .arg(libraryFileKindNames()[static_cast<int>(options.kind)].toUpper()));
}

Error LibraryCommand::work()
{
    noteInterrupts();
    if (Error error = identify(); error.hasError())
        return error;
    if (!m_options.shard.isWhole())
        messages().note(QStringLiteral("shard %1").arg(m_options.shard.name()));
    if (!m_options.resume || !isMadeAlready())
        return makeLibrary();
    messages().note(QStringLiteral("%1 is complete").arg(displayText(m_options.outputPath, 300)));
    return {};
}

/// Finds out what the library is made from, before anything is made.
Error LibraryCommand::identify()
{
    noteTrust(m_options.networks, &messages());
    const Result<ModelFolder> folder = ModelFolder::find(m_options.networks, NetworkUse::Peptidoforms);
    if (folder.hasError())
        return folder.error();
    m_folder = folder.value();
    const Result<QByteArray> settings = librarySettings(m_options, *m_folder);
    if (settings.hasError())
        return settings.error();
    m_manifest.settings = settings.value();
    m_manifest.shard = m_options.shard;
    if (!hasManifest())
        return {};
    const Result<QByteArray> input = fileSha256(m_options.inputPath());
    if (input.hasError())
        return input.error();
    m_manifest.inputSha256 = input.value();
    return {};
}

bool LibraryCommand::isMadeAlready() const
{
    const Result<LibraryManifest> made = LibraryManifest::readFor(m_options.outputPath);
    if (made.hasError() || made.value().shard != m_manifest.shard ||
        !differenceOfOrigin(m_manifest, made.value()).isEmpty())
        return false;
    const Result<QByteArray> file = fileSha256(m_options.outputPath);
    return !file.hasError() && file.value() == made.value().file.sha256;
}

Error LibraryCommand::makeLibrary()
{
    if (Error error = inTurn(this, {&LibraryCommand::openOutputs, &LibraryCommand::calibrate, &LibraryCommand::digest,
                                    &LibraryCommand::countPeptidoforms, &LibraryCommand::loadNetworks,
                                    &LibraryCommand::predictAll, &LibraryCommand::finishOutputs});
        error.hasError())
        return error;
    tellTotals();
    return {};
}

/// Opens them before the work, so that a mistyped path costs no time.
Error LibraryCommand::openOutputs()
{
    m_writer = makeLibraryWriter(m_options.kind, m_options.outputPath, m_manifest.info());
    if (Error error = m_writer->open(); error.hasError())
        return error;
    return m_skipped.open();
}

Error LibraryCommand::digest()
{
    const double size = double(QFileInfo(m_options.inputPath()).size()) / MEGABYTE;
    Progress progress =
        startProgress(qint64(std::ceil(size)), QStringLiteral("MB of %1").arg(displayText(m_options.inputPath())),
                      m_options.outputPath);
    DigestionHooks hooks;
    hooks.skipped = [this](const SkippedPeptide &skipped) { return m_skipped.add(skipped); };
    hooks.progress = [&progress, size](double done) { progress.update(qint64(size * done)); };
    hooks.isInterrupted = [this] { return isInterrupted(); };

    PeptideRequest request{m_options.digestion, m_options.decoys, {}};
    request.space.onDisk = m_options.lowMemory;
    Result<DigestedPeptides> digested = m_options.proteins.isEmpty()
                                            ? readPeptideTable(m_options.peptideList, request, hooks)
                                            : digestFasta(m_options.proteins, request, hooks);
    if (digested.hasError())
        return digested.error();
    m_digested = std::move(digested).value();
    m_manifest.peptideCount = m_digested.peptides->count();
    return {};
}

/// Says what is to be made before it takes its time.
Error LibraryCommand::countPeptidoforms()
{
    const Result<PeptidoformCounts> counts = LibraryPeptidoforms(m_options).count(
        m_digested.peptides.get(), m_options.shard.first(m_manifest.peptideCount),
        m_options.shard.end(m_manifest.peptideCount), [this] { return isInterrupted(); });
    if (counts.hasError())
        return counts.error();
    m_planned = counts.value();
    messages().note(m_planned.text());
    return {};
}

/// Fits the times to those that were observed, where the user gives some.
Error LibraryCommand::calibrate()
{
    if (!m_options.retentionTimes || m_options.observedTimes.isEmpty())
        return {};
    const Result<ObservedTimes> observed = readObservedTimes(m_options.observedTimes);
    if (observed.hasError())
        return observed.error();
    const Result<FittedTimes> fitted = fit(observed.value());
    if (fitted.hasError())
        return fitted.error();
    for (const QString &remark : fitted.value().remarks)
        noteOnce(remark);
    m_calibration = fitted.value().calibration;
    return {};
}

Result<FittedTimes> LibraryCommand::fit(const ObservedTimes &observed) const
{
    keepRuntimeInCallingThreads();
    const QuietStandardError quiet(!m_options.verbose);
    RetentionTimePredictor predictor;
    if (Error error = loadNetwork(*m_folder, NetworkUse::RetentionTimes, &predictor); error.hasError())
        return error;
    return fitTimes(observed, m_options.observedTimes, &predictor);
}

void LibraryCommand::noteOnce(const QString &remark)
{
    if (m_noted.contains(remark))
        return;
    m_noted.append(remark);
    messages().note(remark);
}

Error LibraryCommand::loadNetworks()
{
    keepRuntimeInCallingThreads();
    const QuietStandardError quiet(!m_options.verbose);
    for (int thread = 0; thread < m_options.threads; ++thread) {
        m_makers.push_back(
            std::make_unique<SpectrumMaker>(m_options, m_digested.peptides->proteins(), *m_writer, m_calibration));
        if (Error error = m_makers.back()->load(*m_folder); error.hasError())
            return error;
    }
    return {};
}

Error LibraryCommand::predictAll()
{
    const qint64 first = m_options.shard.first(m_manifest.peptideCount);
    const qint64 end = m_options.shard.end(m_manifest.peptideCount);
    const qint64 size = pieceSize();
    Progress progress = startProgress(end - first, QStringLiteral("peptides"), m_options.outputPath);
    qint64 next = first;
    const auto read = [&]() -> Result<std::optional<PeptideBlock>> {
        if (next == end)
            return std::optional<PeptideBlock>();
        PeptideBlock block;
        const qint64 begin = std::exchange(next, std::min(next + size, end));
        Error error = m_digested.peptides->read(begin, next, &block);
        return error.hasError() ? Result<std::optional<PeptideBlock>>(error) : std::optional(std::move(block));
    };
    const auto make = [this](int worker, PeptideBlock block) {
        return m_makers[static_cast<size_t>(worker)]->make(std::move(block));
    };
    qint64 done = 0;
    const auto accept = [&](const MadeSpectra &made) {
        Error error = consume(made);
        progress.update(done += made.peptides.size());
        return error;
    };
    OrderedPipeline<PeptideBlock, MadeSpectra> pipeline({m_options.threads, m_options.threads + 2},
                                                        [this] { return isInterrupted(); });
    return pipeline.run(read, make, accept);
}

Error LibraryCommand::consume(const MadeSpectra &made)
{
    if (made.error.hasError())
        return made.error;
    for (const QString &remark : made.remarks)
        noteOnce(displayText(remark, 200));
    for (const WrittenEntry &entry : made.entries) {
        if (Error error = m_writer->add(entry); error.hasError())
            return error;
    }
    for (const UnpredictedPrecursor &precursor : made.tooLong) {
        if (Error error = m_skipped.add(precursor, m_digested.peptides->proteins()); error.hasError())
            return error;
    }
    m_counts += made.counts;
    return {};
}

/// The manifest last: what it describes is there.
Error LibraryCommand::finishOutputs()
{
    if (m_counts.written == 0 && m_options.shard.isWhole())
        return nothingToWrite();
    if (Error error = m_skipped.commit(); error.hasError())
        return error;
    Result<LibraryFileFacts> facts = m_writer->finish();
    if (facts.hasError())
        return facts.error();
    m_manifest.file = std::move(facts).value();
    return hasManifest() ? m_manifest.writeFor(m_options.outputPath) : Error();
}

Error LibraryCommand::nothingToWrite() const
{
    const QString reasons = leftOut();
    if (!reasons.isEmpty())
        return Error(Failure, QStringLiteral("no precursor is left for the library (%1)").arg(reasons));
    return Error(Failure,
                 QStringLiteral("no peptide of %1 to %2 residues in %3")
                     .arg(QString::number(m_options.digestion.minimumLength),
                          QString::number(m_options.digestion.maximumLength), inputName(m_options.inputPath())));
}

/// Only where a file is made from a file: a pipe cannot be read a second time for its digest.
bool LibraryCommand::hasManifest() const
{
    return isRegularFile(m_options.inputPath()) && isRegularFile(m_options.outputPath);
}

/// Every thread gets the same number of pieces, and as few as the limits allow. The library does not depend on it.
qint64 LibraryCommand::pieceSize() const
{
    const qint64 rounds = dividedUp(m_planned.peptidoforms, MOST_AT_ONCE * m_options.threads);
    const qint64 pieces = std::max<qint64>(1, rounds * m_options.threads);
    const qint64 peptidoformsOfEach = dividedUp(m_planned.peptidoforms, std::max<qint64>(1, m_planned.peptides));
    return std::max(std::max<qint64>(1, FEWEST_AT_ONCE / std::max<qint64>(1, peptidoformsOfEach)),
                    dividedUp(m_planned.peptides, pieces));
}

void LibraryCommand::tellTotals()
{
    const DigestionCounts &digested = m_digested.counts;
    messages().note(QStringLiteral("%1 proteins, %2 peptides, %3 decoys; %4 precursors written")
                        .arg(digested.proteins)
                        .arg(digested.targets)
                        .arg(digested.decoys)
                        .arg(m_counts.written));
    const QString rest = leftOut();
    if (!rest.isEmpty())
        messages().note(rest);
}

/// What the library lacks and why; empty when it lacks nothing.
QString LibraryCommand::leftOut() const
{
    const DigestionCounts &digested = m_digested.counts;
    const QList<std::pair<qint64, QString>> reasons = {
        {digested.skipped, m_options.proteins.isEmpty()
                               ? QStringLiteral("peptides with non-standard residues, or of another length")
                               : QStringLiteral("peptides with non-standard residues")},
        {digested.unreadable, QStringLiteral("peptides with modifications that cannot be read")},
        {m_planned.cutPeptides, QStringLiteral("peptides with more than %1 peptidoforms (the first %1 are in)")
                                    .arg(PeptidoformMaker::MOST_OF_A_PEPTIDE)},
        {digested.decoysEqualToTarget, QStringLiteral("decoys that equal a target")},
        {digested.decoysTooSimilar, QStringLiteral("decoys too similar to their target")},
        {m_counts.outOfRange, QStringLiteral("precursors outside %1 to %2 m/z")
                                  .arg(m_options.lowestPrecursorMz)
                                  .arg(m_options.highestPrecursorMz)},
        {m_counts.tooLong, QStringLiteral("precursors too long for the network")},
        {m_counts.withoutPeaks, QStringLiteral("precursors without a peak")}};
    QStringList parts;
    for (const auto &[count, what] : reasons) {
        if (count > 0)
            parts.append(counted(count, what));
    }
    return parts.isEmpty() ? QString() : QStringLiteral("left out: ") + parts.join(QStringLiteral(", "));
}

} // namespace zav
