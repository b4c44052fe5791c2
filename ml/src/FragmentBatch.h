// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SpectrumAssembler.h"
#include "Tensor.h"

#include <zav/Error.h>
#include <zav/FragmentPeak.h>

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstddef>
#include <map>
#include <vector>

namespace zav {

class Model;

/// One prediction of the annotated fragments of many peptides of one precursor charge.
///
/// The peptides go through the network in blocks of similar length: a network that looks no further than the longest
/// peptide of its batch then does little work on fillers.
class FragmentBatch
{
public:
    /// The size of a block. Enough to hide what a run costs by itself, few enough for the activations to stay near the
    /// processor: 128 and 256 were the fastest of 32 to 512.
    static constexpr std::size_t PEPTIDES_PER_RUN = 128;

    /// `model` has to outlive the batch; `fixedMass` in Da weighs on every cysteine.
    FragmentBatch(Model &model, int precursorCharge, double fixedMass, IsotopePeaks isotopePeaks);

    /// Predicts every peptide that can be; the others get an empty list and a warning on the returned (no-error)
    /// `Error`, in the order of the peptides. Once per object.
    Error predict(const QStringList &peptides);

    /// The spectra, one for each peptide in their order.
    QList<QList<FragmentPeak>> takeSpectra();

private:
    Error bindTensors();
    std::size_t mostPeptidesPerRun() const;
    std::vector<qsizetype> selectByLength(const QStringList &peptides);
    Error predictBlock(const QStringList &peptides, const qsizetype *first, std::size_t count);
    std::vector<float> encodeBlock(const QStringList &peptides, const qsizetype *first, std::size_t count) const;
    void keepSpectrum(const QString &peptide, qsizetype index, const float *intensities);

    Model &network;
    int charge; ///< of the precursors
    int maximumLength;
    SpectrumAssembler assembler;
    Tensor input;
    Tensor output;
    std::map<qsizetype, QString> remarks; ///< by index of the peptide
    QList<QList<FragmentPeak>> spectra;
};

} // namespace zav
