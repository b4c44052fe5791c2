// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PeptidoformRows.h"
#include "PredictorSupport.h"

#include <zav/RetentionTimePredictor.h>

#include <functional>

namespace zav::fuzz {

/// The network gives rows of `headCount` of these values.
inline void setResults(const std::vector<float> &values, std::size_t headCount)
{
    runtime().results = values;
    runtime().resultShape = {static_cast<std::int64_t>(values.size() / headCount),
                             static_cast<std::int64_t>(headCount)};
}

inline void withPredictor(const std::function<void(RetentionTimePredictor *)> &use)
{
    runtime().operations = {
        {"init"},
        {peptidoformRows::NETWORK_INPUT, 1, {-1, peptidoformRows::ROW_COUNT, peptidoformRows::COLUMN_COUNT}},
        {"retention_times"}};
    {
        RetentionTimePredictor predictor;
        require(!predictor.init(fileWith("network.pb", "graph")).hasError(), "the network is loaded");
        use(&predictor);
    }
    requireNothingLives();
}

} // namespace zav::fuzz
