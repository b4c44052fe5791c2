// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryOptions.h"
#include "PeptideSet.h"

#include <zav/Peptidoform.h>

#include <QtCore/QList>
#include <QtCore/QString>

#include <functional>

namespace zav {

/// How much a library, or a shard of one, will hold.
struct PeptidoformCounts
{
    qint64 peptides = 0; ///< with decoys
    qint64 peptidoforms = 0;
    qint64 precursors = 0;  ///< within the range of m/z, and not too long for the network
    qint64 cutPeptides = 0; ///< with more peptidoforms than `PeptidoformMaker::MOST_OF_A_PEPTIDE`

    /// "1,301,818 peptides, 2,140,332 peptidoforms, 4,216,004 precursors"
    QString text() const;
};

/// A peptidoform of a library.
struct LibraryPeptidoform
{
    Peptidoform peptidoform;
    bool isVariant = false; ///< has other than the fixed modifications
};

/// The peptidoforms of a library's peptides: those that the rules make, in their order, then those that the list names
/// and the rules did not make, in the order of their ProForma. One object may serve several threads.
class LibraryPeptidoforms
{
public:
    explicit LibraryPeptidoforms(const LibraryOptions &options) : m_options(options), m_maker(options.modifications) {}

    QList<LibraryPeptidoform> of(const LibraryPeptide &peptide) const;

    /// Counts those of the peptides [first, end). `Failure` for a temporary file that cannot be read, and "interrupted"
    /// when `isInterrupted` says so.
    Result<PeptidoformCounts> count(PeptideSet *peptides, qint64 first, qint64 end,
                                    const std::function<bool()> &isInterrupted) const;

private:
    void add(const LibraryPeptide &peptide, PeptidoformCounts *counts) const;
    QList<double> addedMasses(const LibraryPeptide &peptide) const;

    LibraryOptions m_options;
    PeptidoformMaker m_maker;
};

} // namespace zav
