// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ModelFolder.h"

#include <zav/Error.h>
#include <zav/PeptidoformSpectrumPredictor.h>
#include <zav/RetentionTimePredictor.h>

#include <QtCore/QList>
#include <QtCore/QStringList>

#include <functional>

namespace zav {

/// The precursors of one peptidoform that a library is to hold.
struct LibraryPrecursors
{
    Peptidoform peptidoform;
    quint8 charges = 0; ///< bit z stands for charge z

    bool isOf(int charge) const { return (charges >> charge & 1) != 0; }
};

/// Predicts the spectra and the retention times of many peptidoforms so that the result for one does not depend on the
/// others.
///
/// The last bits of a network's results depend on the shape of the block that it runs on. Every block here holds
/// peptidoforms of one length, in one of two sizes that are multiples of 32: the vector instructions of every processor
/// then divide a block without a remainder, which they would compute in another way. A block with fewer is filled up.
/// There are no more sizes because the runtime generates code for each. One thread at a time.
class LibraryPredictor
{
public:
    /// Loads the network of spectra and, if asked for, that of retention times. The error names the file.
    Error load(const ModelFolder &folder, bool withTimes);

    /// Takes the peaks of a precursor, none where they could not be predicted. The index is the peptidoform's place in
    /// the list.
    using Visitor = std::function<void(qsizetype index, int charge, const QList<FragmentPeak> &peaks)>;

    /// Shows every precursor's peaks to `visit`, the shortest peptides first. `energy` is the normalised collision
    /// energy, NaN for the network's default. Peptidoforms with precursors have 2 to 52 standard residues.
    Error predictSpectra(const QList<LibraryPrecursors> &precursors, double energy, const Visitor &visit);

    /// What `RetentionTimePredictor::predict` gives, in the order of the peptidoforms; NaN for one without precursors.
    Error predictTimes(const QList<LibraryPrecursors> &precursors, QList<double> *times);

    /// What `RetentionTimePredictor::predictHeads` gives, in the order of the peptidoforms; an empty list for one
    /// without precursors.
    Error predictHeads(const QList<LibraryPrecursors> &precursors, QList<QList<double>> *heads);

    /// What the predictors remarked so far, such as modifications that they have not seen; each remark once.
    QStringList takeRemarks();

private:
    struct BlockSize
    {
        qsizetype peptidoforms = 0;
        qsizetype precursors = 0;
    };

    Error predictBlock(const QList<LibraryPrecursors> &precursors, const QList<qsizetype> &indices,
                       const BlockSize &size, double energy, const Visitor &visit);
    template <typename Value>
    Error predictWith(Error (RetentionTimePredictor::*predict)(const QList<Peptidoform> &, QList<Value> *),
                      const QList<LibraryPrecursors> &precursors, QList<Value> *values);
    void keepRemarks(const Error &outcome);

    PeptidoformSpectrumPredictor m_spectra;
    RetentionTimePredictor m_times;
    QStringList m_remarks;
};

} // namespace zav
