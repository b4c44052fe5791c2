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

#include <zav/RetentionTimeCalibration.h>

#include <QtCore/QList>
#include <QtCore/QStringList>

#include <optional>
#include <vector>

namespace zav {

/// The precursors of a peptide that is too long for the network.
struct UnpredictedPrecursor
{
    LibraryPeptide peptide; ///< of the block that was asked for
    int charge = 0;
    int maximumLength = 0; ///< that the network allows
};

/// What became of the precursors of a library.
struct PrecursorCounts
{
    qint64 written = 0;
    qint64 outOfRange = 0; ///< by their m/z
    qint64 tooLong = 0;    ///< for the network
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
    QStringList remarks; ///< what the networks have not seen in training
    Error error;         ///< when something failed, the rest is not to be used
};

/// Predicts and formats the entries of peptides: what one thread of `zav library` does. The other arguments outlive
/// it; several objects may share them.
class SpectrumMaker
{
public:
    SpectrumMaker(const LibraryOptions &options, const ProteinTable &proteins, const LibraryWriter &writer,
                  const std::optional<RetentionTimeCalibration> &calibration);

    /// Loads the networks.
    Error load(const ModelFolder &folder);

    MadeSpectra make(PeptideBlock peptides);

private:
    struct Work;

    void collect(Work *work) const;
    bool isServed(const UnpredictedPrecursor &precursor, double mz, MadeSpectra *made) const;
    Error predictTimes(Work *work);
    Error predictSpectra(Work *work);
    WrittenEntry encode(Work *work, qsizetype index, int charge, const QList<FragmentPeak> &peaks);

    const LibraryOptions &m_options;
    LibraryPeptidoforms m_peptidoforms;
    const ProteinTable &m_proteins;
    const LibraryWriter &m_writer;
    const std::optional<RetentionTimeCalibration> &m_calibration; ///< none: the times are iRT
    LibraryPredictor m_predictor;
    PeakFilter m_filter;
    LibraryEntry m_entry; ///< being encoded; its lists keep their memory
};

} // namespace zav
