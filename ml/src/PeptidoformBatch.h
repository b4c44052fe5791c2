// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PeptidoformSpectrumAssembler.h"
#include "Tensor.h"

#include <zav/Error.h>
#include <zav/FragmentPeak.h>
#include <zav/PeptidoformSpectrumPredictor.h>

#include <QtCore/QList>
#include <QtCore/QStringList>

#include <cstddef>
#include <vector>

namespace zav {

class Model;

/// One prediction of the spectra of many precursors.
///
/// They go through the network in blocks of similar length: it looks no further than the longest peptidoform of a run.
/// Neighbours of one peptidoform share its rows in a run, and what is computed of them.
class PeptidoformBatch
{
public:
    /// The size of a block: enough to hide what a run costs by itself, few enough for the activations to stay near the
    /// processor.
    static constexpr std::size_t PRECURSORS_PER_RUN = 256;

    /// `model` has to outlive the batch.
    PeptidoformBatch(Model &model, IsotopePeaks isotopePeaks);

    /// Predicts every precursor that can be; the others get an empty list and a warning on the returned (no-error)
    /// `Error`, in the order of the precursors. Once per object.
    Error predict(const QList<PeptidoformPrecursor> &precursors);

    /// The spectra, one for each precursor in their order.
    QList<QList<FragmentPeak>> takeSpectra();

private:
    Error bindTensors();
    std::vector<qsizetype> selectByLength(const QList<PeptidoformPrecursor> &precursors);
    Error predictBlock(const QList<PeptidoformPrecursor> &precursors, const qsizetype *first, std::size_t count);
    Error fillInputs(const QList<PeptidoformPrecursor> &precursors, const qsizetype *first, std::size_t count);

    Model &network;
    PeptidoformSpectrumAssembler assembler;
    Tensor peptidoformInput;
    Tensor precursorInput;
    Tensor output;
    QStringList remarks;
    QList<QList<FragmentPeak>> spectra;
};

} // namespace zav
