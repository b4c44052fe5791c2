// SPDX-License-Identifier: Apache-2.0
#include "SpectrumMaker.h"

#include "PeptideMasses.h"

#include <zav/MsMsFragmentationPredictomatic.h>

#include <utility>

namespace zav {

/// The peptides on their way, with a place for the entry of each of their precursors.
struct SpectrumMaker::Work
{
    MadeSpectra made;
    std::vector<WrittenEntry> slots; ///< peptide by peptide, each with all charges
};

PrecursorCounts &PrecursorCounts::operator+=(const PrecursorCounts &other)
{
    written += other.written;
    outOfRange += other.outOfRange;
    tooLong += other.tooLong;
    withoutPeaks += other.withoutPeaks;
    return *this;
}

SpectrumMaker::SpectrumMaker(const LibraryOptions &options, const ProteinTable &proteins, const LibraryWriter &writer)
    : m_options(options), m_proteins(proteins), m_writer(writer), m_predictor(options.cysteineMass),
      m_filter(options.peaks)
{}

Error SpectrumMaker::load(const ModelFolder &folder)
{
    return m_predictor.load(folder, m_options.charges);
}

MadeSpectra SpectrumMaker::make(PeptideBlock peptides)
{
    Work work;
    work.made.peptides = std::move(peptides);
    work.slots.resize(static_cast<size_t>(work.made.peptides.size() * m_options.charges.size()));
    for (const int charge : m_options.charges) {
        if (!work.made.error.hasError())
            makeCharge(&work, charge);
    }
    for (WrittenEntry &entry : work.slots) {
        if (!entry.isEmpty())
            work.made.entries.push_back(std::move(entry));
    }
    work.made.counts.written = static_cast<qint64>(work.made.entries.size());
    return std::move(work.made);
}

void SpectrumMaker::makeCharge(Work *work, int charge)
{
    const PeptideBlock &peptides = work->made.peptides;
    const int maximumLength = MsMsFragmentationPredictomatic().getMaximumPeptideLengthForCharge(charge);
    QStringList sequences;
    QList<double> precursorMz;
    QList<qsizetype> indices; // of the sequences in the block
    for (qsizetype i = 0; i < peptides.size(); ++i) {
        const QString sequence = QString::fromLatin1(peptides[i].sequence);
        const double mz = peptideMasses::precursorMz(sequence, charge, m_options.cysteineMass);
        if (!isServed({peptides[i], charge, maximumLength}, mz, &work->made))
            continue;
        sequences.append(sequence);
        precursorMz.append(mz);
        indices.append(i);
    }
    const qsizetype slotOfCharge = m_options.charges.indexOf(charge);
    work->made.error = m_predictor.predict(sequences, charge, [&](qsizetype i, const QList<FragmentPeak> &peaks) {
        WrittenEntry entry = encode(peptides[indices[i]], charge, precursorMz[i], peaks, &work->made.arena);
        work->made.counts.withoutPeaks += entry.isEmpty();
        work->slots[static_cast<size_t>(indices[i] * m_options.charges.size() + slotOfCharge)] = std::move(entry);
    });
}

/// Whether a precursor is to be predicted; counts it where not.
bool SpectrumMaker::isServed(const UnpredictedPrecursor &precursor, double mz, MadeSpectra *made) const
{
    if (!(mz >= m_options.lowestPrecursorMz && mz <= m_options.highestPrecursorMz)) {
        ++made->counts.outOfRange;
        return false;
    }
    if (precursor.peptide.sequence.size() <= precursor.maximumLength)
        return true;
    ++made->counts.tooLong;
    made->tooLong.append(precursor);
    return false;
}

WrittenEntry SpectrumMaker::encode(const LibraryPeptide &peptide, int charge, double mz,
                                   const QList<FragmentPeak> &peaks, TextArena *arena)
{
    LibraryEntry &entry = m_entry;
    m_filter.apply(peaks, &entry.peaks);
    if (entry.peaks.isEmpty())
        return {};
    entry.peptidoform = withCysteines(QString::fromLatin1(peptide.sequence), m_options.cysteineMass);
    entry.charge = charge;
    entry.precursorMz = mz;
    entry.isDecoy = peptide.isDecoy;
    entry.proteins.clear();
    for (const int index : peptide.proteins) {
        const ProteinNames names = m_proteins.names(index, peptide.isDecoy);
        entry.proteins.append({names.accession, names.gene, names.name});
    }
    return m_writer.encode(entry, arena);
}

} // namespace zav
