// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NetworkLoading.h"

#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>

#include <array>
#include <map>
#include <memory>
#include <utility>

namespace zav {

/// The lengths of network input that the program uses, in points. The time that a trace takes depends on this length
/// and not on its own.
constexpr std::array<int, 4> NETWORK_SIZES = {512, 1024, 2048, 4096};

/// The smallest of them that holds so many points; the largest when none does.
int networkSizeFor(qsizetype pointCount);

/// The trace in at most `size` points. A longer one is thinned to exactly `size`: neighbouring points, as equal in
/// number as can be, become one of their mean intensity at the time of the first. The whole trace keeps its shape, and
/// its times stay times of the trace.
QList<QPointF> thinnedTo(int size, const QList<QPointF> &points);

/// What to tell of a trace that is longer than the network's input; empty when it is not.
QString thinningRemark(qsizetype pointCount, int size);

/// The error of a run on an input of `size` points, with a message in any case: the library's own error has none when
/// the network does not fit the input. Throws std::bad_alloc for that of memory that ran out.
Error runError(const Error &error, const QString &modelFilePath, int size);

/// The predictors of one thread: one for each length of network input, made when a trace first needs it.
///
/// `Predictor` is `XicBaselineLimitsDetector` or `XicPeakSplitter`, `Options` its record of options.
template <typename Predictor, typename Options>
class PredictorPool
{
public:
    /// The network's file and the lengths of its input replace `modelFilePath` and `maxPointCount` of the options.
    /// `fixedSize` above 0 is the only length used; otherwise it is chosen by the length of the trace.
    PredictorPool(const Options &options, const QString &modelFilePath, int fixedSize)
        : m_options(options), m_fixedSize(fixedSize)
    {
        m_options.modelFilePath = modelFilePath;
    }

    QString modelFilePath() const { return m_options.modelFilePath; }

    int sizeFor(qsizetype pointCount) const { return m_fixedSize > 0 ? m_fixedSize : networkSizeFor(pointCount); }

    /// Makes the predictor of the smallest length, to learn whether the network is usable.
    Error load() { return predictor(sizeFor(0)).error(); }

    /// The predictor whose `maxPointCount` is `size`. It belongs to the pool. Fails when it cannot be loaded, and names
    /// the network's file.
    Result<Predictor *> predictor(int size)
    {
        std::unique_ptr<Predictor> &known = m_predictors[size];
        if (known)
            return known.get();
        auto made = std::make_unique<Predictor>();
        m_options.maxPointCount = size;
        if (Error error = loadNetwork(m_options, made.get()); error.hasError())
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
