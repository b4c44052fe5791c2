// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FuzzSupport.h"
#include "ScriptedRuntime.h"
#include "TfApi.h"

#include <QtCore/QLibrary>
#include <QtCore/QPointF>

#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace zav::fuzz {

/// The stand-in for TensorFlow, whose outputs come from the fuzzer, without a record of earlier inputs.
inline ScriptedRuntime &runtime()
{
    static ScriptedRuntime *const access = [] {
        const QFunctionPointer found = QLibrary::resolve(TfApi::runtimeFileName(), "scriptedRuntime");
        require(found != nullptr, "the scripted runtime is there");
        return reinterpret_cast<ScriptedRuntime *(*)()>(found)();
    }();
    access->calls.clear();
    access->fedBytes.clear();
    return *access;
}

inline void requireNothingLives()
{
    require(runtime().liveCount.empty() && runtime().wrongDeletions == 0, "what was created is deleted, once");
}

inline FuzzedDataProvider dataOf(const QByteArray &input)
{
    return {reinterpret_cast<const std::uint8_t *>(input.constData()), static_cast<std::size_t>(input.size())};
}

/// A number of any kind: whole, a share of 1, what bits happen to say, one that is not finite.
inline double takeNumber(FuzzedDataProvider *data)
{
    constexpr double SPECIAL[] = {0.0,
                                  -0.0,
                                  std::numeric_limits<double>::infinity(),
                                  -std::numeric_limits<double>::infinity(),
                                  std::numeric_limits<double>::quiet_NaN(),
                                  std::numeric_limits<double>::max(),
                                  std::numeric_limits<double>::denorm_min(),
                                  1e-12,
                                  -1e300,
                                  3.5e38};
    switch (data->ConsumeIntegralInRange(0, 7)) {
    case 0:
        return data->PickValueInArray(SPECIAL);
    case 1:
        return data->ConsumeFloatingPoint<double>();
    case 2:
        return data->ConsumeIntegral<qint16>();
    default:
        return data->ConsumeIntegral<quint8>() / 255.0;
    }
}

/// Any number: NaN is no time.
inline double takeTime(FuzzedDataProvider *data)
{
    const double time = takeNumber(data);
    return std::isnan(time) ? 0.0 : time;
}

/// Up to `most` points, whose times ascend unless `anyTimes`.
inline QList<QPointF> takePoints(FuzzedDataProvider *data, int most, bool anyTimes)
{
    QList<QPointF> points;
    const int count = data->ConsumeIntegralInRange(0, most);
    for (int i = 0; i < count; ++i)
        points.append({anyTimes ? takeTime(data) : 100.0 + 0.5 * i, takeNumber(data)});
    return points;
}

inline std::vector<float> takeFloats(FuzzedDataProvider *data, int most)
{
    std::vector<float> values;
    const int count = data->ConsumeIntegralInRange(0, most);
    for (int i = 0; i < count; ++i)
        values.push_back(static_cast<float>(takeNumber(data)));
    return values;
}

inline bool isTimeOf(const QList<QPointF> &points, double time)
{
    return std::any_of(points.begin(), points.end(), [time](const QPointF &point) { return point.x() == time; });
}

} // namespace zav::fuzz
