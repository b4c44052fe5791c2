// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NetworkLoading.h"
#include "NetworkSize.h"

#include <zav/Result.h>

#include <map>
#include <memory>

namespace zav {

/// The predictors of one thread: one for each length of network input, made when a trace first needs it.
///
/// `Predictor` is `XicBaselineLimitsDetector` or `XicPeakSplitter`, `Options` its record of options, whose
/// `maxPointCount` is replaced.
template <typename Predictor, typename Options>
class PredictorPool
{
public:
    /// `fixedSize` above 0 is the only length used; otherwise it is chosen by the length of the trace.
    PredictorPool(const Options &options, int fixedSize) : m_options(options), m_fixedSize(fixedSize) {}

    int sizeFor(qsizetype pointCount) const { return m_fixedSize > 0 ? m_fixedSize : networkSizeFor(pointCount); }

    /// The predictor whose `maxPointCount` is `size`. It belongs to the pool. Fails when it cannot be loaded, and names
    /// the network's file.
    Result<Predictor *> predictor(int size)
    {
        std::unique_ptr<Predictor> &known = m_predictors[size];
        if (known)
            return known.get();
        auto made = std::make_unique<Predictor>();
        m_options.maxPointCount = size;
        if (const Error error = loadNetwork(m_options, made.get()); error.hasError())
            return error;
        known = std::move(made);
        return known.get();
    }

private:
    Options m_options;
    int m_fixedSize = 0;
    std::map<int, std::unique_ptr<Predictor>> m_predictors;
};

} // namespace zav
