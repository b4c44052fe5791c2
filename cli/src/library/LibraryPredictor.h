// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ModelFolder.h"

#include <zav/Error.h>
#include <zav/MsMsFragmentationPredictomatic.h>

#include <QtCore/QList>
#include <QtCore/QStringList>

#include <functional>
#include <memory>

namespace zav {

/// Predicts the fragments of many peptides so that the result for a peptide does not depend on the others.
///
/// The last bits of a network's results depend on the shape of the block that it runs on: the number of peptides and
/// the length of the longest. Here every block has the same number of peptides, all of one length; a block with fewer
/// is filled up. The other peptides of a block, and the place in it, do not matter. One thread at a time.
class LibraryPredictor
{
public:
    /// Peptides in a block. At 32 a peptide costs 5 to 10 % more than at 128, but four times fewer places are only
    /// filled up where the peptides of a length run out.
    static constexpr qsizetype PEPTIDES_PER_RUN = 32;

    explicit LibraryPredictor(double cysteineMass);

    /// Loads the networks of the charges, each within 1 to 5. The error names the file.
    Error load(const ModelFolder &folder, const QList<int> &charges);

    /// Takes the peaks of a peptide, none where they could not be predicted. The index is its place in the list.
    using Visitor = std::function<void(qsizetype index, const QList<FragmentPeak> &peaks)>;

    /// Shows every peptide's peaks to `visit`, the shortest peptides first. None is longer than the charge allows.
    Error predict(const QStringList &peptides, int charge, const Visitor &visit);

private:
    Error predictBlock(const QStringList &peptides, const QList<qsizetype> &indices, int charge, const Visitor &visit);

    std::unique_ptr<MsMsFragmentationPredictomatic> m_predictor;
};

} // namespace zav
