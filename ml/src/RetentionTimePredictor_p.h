// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Model.h"
#include "Tensor.h"

#include <zav/RetentionTimePredictor.h>

#include <QtCore/QStringList>

#include <cstddef>
#include <optional>
#include <vector>

namespace zav {

namespace retentionTimeNetwork {

/// The operation that gives the times: float, [peptidoforms, heads]. Head 0 is on the iRT scale.
inline constexpr char OUTPUT[] = "retention_times";

/// The size of a block. Enough to hide what a run costs by itself, few enough for the activations to stay near the
/// processor.
inline constexpr std::size_t PEPTIDOFORMS_PER_RUN = 256;

/// The modifications of the training data, each with its place. The contract of the network lists them too.
QStringList trainedModifications();

} // namespace retentionTimeNetwork

class RetentionTimePredictor::Private
{
public:
    Error init(const QString &networkPath);

    /// The heads of each peptidoform, one row after the other; rows of NaN for those that cannot be predicted.
    /// `headCount` is 0 when none can. The warnings are those of the public calls.
    Error predict(const QList<Peptidoform> &peptidoforms);

    Model model;
    std::optional<Tensor> input; ///< bound anew for each prediction: a failure makes a tensor invalid
    std::optional<Tensor> output;
    bool initialised = false;
    std::size_t headCount = 0;
    std::vector<float> heads;

private:
    Error bindTensors();
    std::vector<qsizetype> selectByLength(const QList<Peptidoform> &peptidoforms, Error *remarks) const;
    Error predictBlock(const QList<Peptidoform> &peptidoforms, const qsizetype *first, std::size_t count);
    Error keepHeads(const std::vector<float> &values, const qsizetype *first, std::size_t count,
                    std::size_t peptidoformCount);
};

} // namespace zav
