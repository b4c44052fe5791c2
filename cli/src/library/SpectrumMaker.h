// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryOptions.h"
#include "LibraryPeptidoforms.h"
#include "LibraryPredictor.h"
#include "LibraryWriter.h"
#include "PeakFilter.h"
#include "PeptidePages.h"
#include "ProteinTable.h"
#include "TextArena.h"

#include <QtCore/QList>
#include <QtCore/QString>

#include <vector>

namespace zav {

/// The precursors of a peptide at a charge whose network takes no peptide so long.
struct UnpredictedPrecursor
{
    LibraryPeptide peptide; ///< of the block that was asked for
    int charge = 0;
    int maximumLength = 0; ///< that the charge allows
};

/// What became of the precursors of a library.
struct PrecursorCounts
{
    qint64 written = 0;
    qint64 outOfRange = 0; ///< by their m/z
    qint64 tooLong = 0;    ///< for the network of their charge
    qint64 withoutPeaks = 0;

    PrecursorCounts &operator+=(const PrecursorCounts &other);
};

/// The entries of consecutive peptides, as they will be written.
struct MadeSpectra
{
    PeptideBlock peptides;
    std::vector<WrittenEntry> entries; ///< in the order of the library; their texts lie in the arena
    TextArena arena;
    QList<UnpredictedPrecursor> tooLong;
    PrecursorCounts counts;
    Error error; ///< when something failed, the rest is not to be used
};

/// Predicts and formats the entries of peptides: what one thread of `zav library` does. The other arguments outlive
/// it; several objects may share them.
class SpectrumMaker
{
public:
    SpectrumMaker(const LibraryOptions &options, const ProteinTable &proteins, const LibraryWriter &writer);

    /// Loads the networks.
    Error load(const ModelFolder &folder);

    MadeSpectra make(PeptideBlock peptides);

private:
    struct Work;

    void makeCharge(Work *work, int charge);
    Error checkModifications(const Peptidoform &peptidoform) const;
    bool isServed(const UnpredictedPrecursor &precursor, double mz, MadeSpectra *made) const;
    WrittenEntry encode(const LibraryPeptide &peptide, const LibraryPeptidoform &peptidoform, int charge, double mz,
                        const QList<FragmentPeak> &peaks, TextArena *arena);

    const LibraryOptions &m_options;
    LibraryPeptidoforms m_peptidoforms;
    const ProteinTable &m_proteins;
    const LibraryWriter &m_writer;
    LibraryPredictor m_predictor;
    PeakFilter m_filter;
    LibraryEntry m_entry; ///< being encoded; its lists keep their memory
};

} // namespace zav
