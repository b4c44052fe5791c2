// SPDX-License-Identifier: Apache-2.0
#include "SpectrumMaker.h"

#include "PeptideMasses.h"

#include <zav/MsMsFragmentationPredictomatic.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace zav {

namespace {

constexpr double SAME_MASS = 1e-3; // Da

} // namespace

/// The peptides on their way, with a place for the entry of each of their precursors.
struct SpectrumMaker::Work
{
    MadeSpectra made;
    QList<LibraryPeptidoform> peptidoforms; ///< peptide by peptide
    QList<qsizetype> peptides;              ///< of each peptidoform, its peptide in the block
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

SpectrumMaker::SpectrumMaker(const LibraryOptions &options, const ProteinTable &proteins, const LibraryWriter &writer)
    : m_options(options), m_peptidoforms(options), m_proteins(proteins), m_writer(writer),
      m_predictor(options.cysteineMass), m_filter(options.peaks)
{}

Error SpectrumMaker::load(const ModelFolder &folder)
{
    return m_predictor.load(folder, m_options.charges);
}

MadeSpectra SpectrumMaker::make(PeptideBlock peptides)
{
    Work work;
    work.made.peptides = std::move(peptides);
    for (qsizetype i = 0; i < work.made.peptides.size(); ++i) {
        for (const LibraryPeptidoform &one : m_peptidoforms.of(work.made.peptides[i])) {
            if (work.made.error = checkModifications(one.peptidoform); work.made.error.hasError())
                return std::move(work.made);
            work.peptidoforms.append(one);
            work.peptides.append(i);
        }
    }
    work.slots.resize(static_cast<size_t>(work.peptidoforms.size() * m_options.charges.size()));
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
    const PeptideBlock &block = work->made.peptides;
    const int maximumLength = MsMsFragmentationPredictomatic().getMaximumPeptideLengthForCharge(charge);
    QStringList sequences;
    QList<double> precursorMz;
    QList<qsizetype> indices; // of the sequences among the peptidoforms
    for (qsizetype i = 0; i < work->peptidoforms.size(); ++i) {
        const QString &sequence = work->peptidoforms[i].peptidoform.sequence();
        const double mz = peptideMasses::precursorMz(sequence, charge, m_options.cysteineMass);
        if (!isServed({block[work->peptides[i]], charge, maximumLength}, mz, &work->made))
            continue;
        sequences.append(sequence);
        precursorMz.append(mz);
        indices.append(i);
    }
    const qsizetype slotOfCharge = m_options.charges.indexOf(charge);
    work->made.error = m_predictor.predict(sequences, charge, [&](qsizetype i, const QList<FragmentPeak> &peaks) {
        WrittenEntry entry = encode(block[work->peptides[indices[i]]], work->peptidoforms[indices[i]], charge,
                                    precursorMz[i], peaks, &work->made.arena);
        work->made.counts.withoutPeaks += entry.isEmpty();
        work->slots[static_cast<size_t>(indices[i] * m_options.charges.size() + slotOfCharge)] = std::move(entry);
    });
}

/// The five networks know one modification, that of cysteine, which is the same for all.
Error SpectrumMaker::checkModifications(const Peptidoform &peptidoform) const
{
    const auto isOfCysteine = [&](const PlacedModification &placed) {
        return placed.position > 0 && placed.position <= peptidoform.length() &&
               peptidoform.sequence()[placed.position - 1] == u'C' && isCysteineModified(m_options.cysteineMass) &&
               std::abs(placed.modification.mass - m_options.cysteineMass) < SAME_MASS;
    };
    const qsizetype modified = isCysteineModified(m_options.cysteineMass) ? peptidoform.sequence().count(u'C') : 0;
    const QList<PlacedModification> &placed = peptidoform.modifications();
    if (placed.size() == modified && std::all_of(placed.begin(), placed.end(), isOfCysteine))
        return {};
    return Error(InvalidInput, QStringLiteral("no network predicts %1: they know one fixed modification of cysteine")
                                   .arg(peptidoform.toProForma()));
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
    // Its other peptidoforms are as long.
    const bool isTold = !made->tooLong.isEmpty() && made->tooLong.constLast().charge == precursor.charge &&
                        made->tooLong.constLast().peptide.sequence == precursor.peptide.sequence;
    if (!isTold)
        made->tooLong.append(precursor);
    return false;
}

WrittenEntry SpectrumMaker::encode(const LibraryPeptide &peptide, const LibraryPeptidoform &peptidoform, int charge,
                                   double mz, const QList<FragmentPeak> &peaks, TextArena *arena)
{
    LibraryEntry &entry = m_entry;
    m_filter.apply(peaks, &entry.peaks);
    if (entry.peaks.isEmpty())
        return {};
    entry.peptidoform = peptidoform.peptidoform;
    entry.isVariant = peptidoform.isVariant;
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
