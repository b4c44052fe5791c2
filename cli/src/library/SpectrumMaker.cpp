// SPDX-License-Identifier: Apache-2.0
#include "SpectrumMaker.h"

#include "PeptideMasses.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace zav {

namespace {

constexpr qsizetype FEWEST_RESIDUES = 2; // fewer have no bond to break

} // namespace

/// The peptides on their way, with a place for the entry of each of their precursors.
struct SpectrumMaker::Work
{
    MadeSpectra made;
    QList<LibraryPeptidoform> peptidoforms; ///< peptide by peptide
    QList<qsizetype> peptides;              ///< of each peptidoform, its peptide in the block
    QList<LibraryPrecursors> precursors;    ///< of each peptidoform, those to be predicted
    QList<double> times;                    ///< of each peptidoform, NaN where there is none
    std::vector<WrittenEntry> slots;        ///< peptidoform by peptidoform, each with all charges
};

PrecursorCounts &PrecursorCounts::operator+=(const PrecursorCounts &other)
{
    written += other.written;
    outOfRange += other.outOfRange;
    tooLong += other.tooLong;
    withoutPeaks += other.withoutPeaks;
    return *this;
}

SpectrumMaker::SpectrumMaker(const LibraryOptions &options, const ProteinTable &proteins, const LibraryWriter &writer,
                             const std::optional<RetentionTimeCalibration> &calibration)
    : m_options(options), m_peptidoforms(options), m_proteins(proteins), m_writer(writer), m_calibration(calibration),
      m_filter(options.peaks)
{}

Error SpectrumMaker::load(const ModelFolder &folder)
{
    return m_predictor.load(folder, m_options.retentionTimes);
}

MadeSpectra SpectrumMaker::make(PeptideBlock peptides)
{
    Work work;
    work.made.peptides = std::move(peptides);
    collect(&work);
    work.made.error = predictTimes(&work);
    if (!work.made.error.hasError())
        work.made.error = predictSpectra(&work);
    for (WrittenEntry &entry : work.slots) {
        if (!entry.isEmpty())
            work.made.entries.push_back(std::move(entry));
    }
    work.made.counts.written = static_cast<qint64>(work.made.entries.size());
    work.made.remarks = m_predictor.takeRemarks();
    return std::move(work.made);
}

/// Finds the peptidoforms of the peptides, and which of their precursors are to be predicted.
void SpectrumMaker::collect(Work *work) const
{
    for (qsizetype i = 0; i < work->made.peptides.size(); ++i) {
        const LibraryPeptide &peptide = work->made.peptides[i];
        for (const LibraryPeptidoform &one : m_peptidoforms.of(peptide)) {
            LibraryPrecursors precursors{one.peptidoform, 0};
            for (const int charge : m_options.charges) {
                const double mz = peptideMasses::precursorMz(one.peptidoform, charge);
                if (isServed({peptide, charge, PeptidoformSpectrumPredictor::LONGEST_PEPTIDE}, mz, &work->made))
                    precursors.charges |= static_cast<quint8>(1 << charge);
            }
            work->peptidoforms.append(one);
            work->peptides.append(i);
            work->precursors.append(precursors);
        }
    }
    work->times.fill(std::numeric_limits<double>::quiet_NaN(), work->peptidoforms.size());
    work->slots.resize(static_cast<size_t>(work->peptidoforms.size() * m_options.charges.size()));
}

Error SpectrumMaker::predictTimes(Work *work)
{
    if (!m_options.retentionTimes)
        return {};
    if (!m_calibration)
        return m_predictor.predictTimes(work->precursors, &work->times);
    QList<QList<double>> heads;
    if (Error error = m_predictor.predictHeads(work->precursors, &heads); error.hasError())
        return error;
    const Result<QList<double>> indices = m_calibration->indicesOf(heads);
    if (indices.hasError())
        return indices.error();
    for (qsizetype i = 0; i < heads.size(); ++i)
        work->times[i] = m_calibration->timeAt(indices.value()[i]);
    return {};
}

Error SpectrumMaker::predictSpectra(Work *work)
{
    const auto keep = [&](qsizetype index, int charge, const QList<FragmentPeak> &peaks) {
        WrittenEntry entry = encode(work, index, charge, peaks);
        work->made.counts.withoutPeaks += entry.isEmpty();
        const qsizetype slot = index * m_options.charges.size() + m_options.charges.indexOf(charge);
        work->slots[static_cast<size_t>(slot)] = std::move(entry);
    };
    return m_predictor.predictSpectra(work->precursors, m_options.collisionEnergy, keep);
}

/// Whether a precursor is to be predicted; counts it where not.
bool SpectrumMaker::isServed(const UnpredictedPrecursor &precursor, double mz, MadeSpectra *made) const
{
    if (!(mz >= m_options.lowestPrecursorMz && mz <= m_options.highestPrecursorMz)) {
        ++made->counts.outOfRange;
        return false;
    }
    if (precursor.peptide.sequence.size() < FEWEST_RESIDUES) {
        ++made->counts.withoutPeaks;
        return false;
    }
    if (precursor.peptide.sequence.size() <= precursor.maximumLength)
        return true;
    ++made->counts.tooLong;
    // Its other peptidoforms are as long, and come next.
    const auto isSame = [&](const UnpredictedPrecursor &told) {
        return told.charge == precursor.charge && told.peptide.sequence == precursor.peptide.sequence;
    };
    const auto last = std::min(made->tooLong.size(), m_options.charges.size());
    if (std::none_of(made->tooLong.cend() - last, made->tooLong.cend(), isSame))
        made->tooLong.append(precursor);
    return false;
}

WrittenEntry SpectrumMaker::encode(Work *work, qsizetype index, int charge, const QList<FragmentPeak> &peaks)
{
    const LibraryPeptide &peptide = work->made.peptides[work->peptides[index]];
    const LibraryPeptidoform &peptidoform = work->peptidoforms[index];
    LibraryEntry &entry = m_entry;
    m_filter.apply(peaks, &entry.peaks);
    if (entry.peaks.isEmpty())
        return {};
    entry.peptidoform = peptidoform.peptidoform;
    entry.isVariant = peptidoform.isVariant;
    entry.charge = charge;
    entry.precursorMz = peptideMasses::precursorMz(entry.peptidoform, charge);
    entry.retentionTime = work->times[index];
    entry.timeScale = m_calibration ? TimeScale::Minutes : TimeScale::Irt;
    entry.isDecoy = peptide.isDecoy;
    entry.proteins.clear();
    for (const int protein : peptide.proteins) {
        const ProteinNames names = m_proteins.names(protein, peptide.isDecoy);
        entry.proteins.append({names.accession, names.gene, names.name});
    }
    return m_writer.encode(entry, &work->made.arena);
}

} // namespace zav
